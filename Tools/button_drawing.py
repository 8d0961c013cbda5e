"""What the scripts that draw pictures of buttons share.

Needs Pillow (Debian: python3-pil). The same commands give the same bytes.
"""

from PIL import Image, ImageDraw

from skin_drawing import write_bitmap

# The first four are those that the system's button colours take the place of.
PALETTE = [(0, 0, 0), (128, 128, 128), (192, 192, 192), (255, 255, 255), (0, 0, 128),
           (0, 128, 128), (128, 128, 0), (255, 255, 0), (0, 0, 255), (128, 192, 255),
           (0, 128, 0), (0, 160, 0), (255, 192, 64), (160, 96, 0), (255, 0, 0), (240, 240, 255)]
INK, FACE, WHITE, NAVY, SKY, GREEN, SUN, WOOD, GLASS = 0, 2, 3, 4, 9, 11, 12, 13, 15


class Button:
    """One picture of a button, drawn on 16 by 16 units."""

    def __init__(self, side):
        self.image = Image.new("P", (side, side), FACE)
        self.draw = ImageDraw.Draw(self.image)
        self.unit = side / 16

    def at(self, *points):
        return [tuple(int(part * self.unit) for part in point) for point in points]

    def polygon(self, fill, *points, line=INK):
        self.draw.polygon(self.at(*points), fill=fill, outline=line)

    def box(self, fill, first, last, line=INK):
        (left, top), (right, bottom) = self.at(first, last)
        self.draw.rectangle((left, top, right - 1, bottom - 1), fill=fill, outline=line)

    def line(self, *points, width=1, colour=INK):
        self.draw.line(self.at(*points), fill=colour, width=max(1, round(width * self.unit)))

    def open(self):
        self.polygon(SUN, (1, 13), (1, 3), (2, 2), (6, 2), (7, 4), (12, 4), (12, 13))
        self.polygon(7, (1, 13), (4, 7), (15, 7), (12, 13))

    def glass(self):
        self.line((9, 9), (14, 14), width=2, colour=WOOD)
        left, right = self.at((1, 1), (11, 11))
        self.draw.ellipse((*left, *right), fill=GLASS, outline=INK)

    def zoom_out(self):
        self.glass()
        self.line((4, 6), (8, 6), width=1.2, colour=NAVY)

    def zoom_in(self):
        self.zoom_out()
        self.line((6, 4), (6, 8), width=1.2, colour=NAVY)


def write_strips(folder, kind, pictures):
    """The pictures, functions of a kind of Button, side by side: Tools.bmp, and larger ones."""
    for name, side in (("Tools.bmp", 16), ("LargeTools.bmp", 24)):
        strip = Image.new("P", (side * len(pictures), side), FACE)
        for place, draw in enumerate(pictures):
            button = kind(side)
            draw(button)
            strip.paste(button.image, (place * side, 0))
        write_bitmap(folder / name, strip, PALETTE, bits=4)
