"""What the scripts that draw skins share: shapes on an oversampled canvas, one palette for several
pictures, and the Windows file formats that the resource compiler takes.

Needs Pillow (Debian: python3-pil). The same commands give the same bytes.
"""

import struct

from PIL import Image, ImageChops, ImageDraw, ImageFilter

# Windows keeps twenty colours of a 256-colour screen to itself: the ten first and the ten last
# entries of its palette. A palette that has them in the same places is realised whole.
SYSTEM_COLOURS = [
    (0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128),
    (128, 0, 128), (0, 128, 128), (192, 192, 192), (192, 220, 192), (166, 202, 240),
    (255, 251, 240), (160, 160, 164), (128, 128, 128), (255, 0, 0), (0, 255, 0),
    (255, 255, 0), (0, 0, 255), (255, 0, 255), (0, 255, 255), (255, 255, 255),
]


def mix(first, second, share):
    """The colour between two others, `share` (0 to 1) of the second."""
    return tuple(round(a + (b - a) * share) for a, b in zip(first, second))


def curve(points, closed=True, steps=16):
    """A smooth line through the points (Catmull-Rom), as a list of points."""
    count = len(points)
    line = []
    for i in range(count if closed else count - 1):
        if closed:
            p = [points[(i + k) % count] for k in (-1, 0, 1, 2)]
        else:
            p = [points[min(max(i + k, 0), count - 1)] for k in (-1, 0, 1, 2)]
        for step in range(steps):
            t = step / steps
            line.append(tuple(
                0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t ** 2
                       + (3 * b - a - 3 * c + d) * t ** 3)
                for a, b, c, d in zip(*p)))
    if not closed:
        line.append(points[-1])
    return line


def mirrored(points, axis):
    """The points on the other side of the vertical line x = axis."""
    return [(2 * axis - x, y) for x, y in points]


class Canvas:
    """A picture drawn in pixels of the finished size, kept `scale` times as large for smooth edges.

    A fill is a colour, or a list of (position, colour) stops of a vertical gradient, position in
    pixels from the top of the picture.
    """

    def __init__(self, width, height, fill=(0, 0, 0), scale=4):
        self.size = (width, height)
        self.scale = scale
        self.image = Image.new("RGB", (width * scale, height * scale))
        self.image.paste(self._fill(fill))

    def copy(self):
        other = Canvas(*self.size, scale=self.scale)
        other.image.paste(self.image)
        return other

    def finished(self, box=None):
        """The picture in its real size, or the part of it inside (left, top, right, bottom)."""
        small = self.image.resize(self.size, Image.BOX)
        return small.crop(box) if box else small

    # -- masks: where a shape is --------------------------------------------------------------

    def _scaled(self, points):
        return [(x * self.scale, y * self.scale) for x, y in points]

    def polygon_mask(self, points):
        mask = Image.new("L", self.image.size)
        ImageDraw.Draw(mask).polygon(self._scaled(points), fill=255)
        return mask

    def ellipse_mask(self, x, y, rx, ry=None):
        mask = Image.new("L", self.image.size)
        ry = rx if ry is None else ry
        ImageDraw.Draw(mask).ellipse(self._scaled([(x - rx, y - ry), (x + rx, y + ry)]), fill=255)
        return mask

    def rounded_mask(self, left, top, right, bottom, radius):
        mask = Image.new("L", self.image.size)
        ImageDraw.Draw(mask).rounded_rectangle(
            self._scaled([(left, top), (right, bottom)]), radius * self.scale, fill=255)
        return mask

    def line_mask(self, points, width):
        mask = Image.new("L", self.image.size)
        ImageDraw.Draw(mask).line(
            self._scaled(points), fill=255, width=round(width * self.scale), joint="curve")
        return mask

    # -- painting ------------------------------------------------------------------------------

    def _fill(self, fill):
        if isinstance(fill[0], int):
            return Image.new("RGB", self.image.size, fill)
        column = Image.new("RGB", (1, self.image.size[1]))
        for y in range(column.size[1]):
            column.putpixel((0, y), self._at(fill, y / self.scale))
        return column.resize(self.image.size)

    @staticmethod
    def _at(stops, position):
        for (start, first), (end, second) in zip(stops, stops[1:]):
            if position <= end:
                return mix(first, second, min(max((position - start) / (end - start), 0), 1))
        return stops[-1][1]

    def paint(self, mask, fill, opacity=1.0, within=None, blur=0.0):
        """Paints where the mask is, and where `within` is too; `blur` in pixels softens the edge."""
        if blur:
            mask = mask.filter(ImageFilter.GaussianBlur(blur * self.scale))
        if within is not None:
            mask = ImageChops.multiply(mask, within)
        if opacity < 1:
            mask = mask.point([round(value * opacity) for value in range(256)])
        self.image.paste(self._fill(fill), mask=mask)

    def glow(self, x, y, radius, colour, opacity=1.0):
        """A round light that fades towards its edge."""
        self.paint(self.ellipse_mask(x, y, radius * 0.55), colour, opacity, blur=radius * 0.2)


    def frame(self, colour):
        """A line of one pixel all around."""
        width, height = self.size
        corners = [(0, 0), (width, 0), (width, height), (0, height), (0, 0)]
        self.paint(self.line_mask(corners, 2), colour)

    def finished_icon(self):
        """The picture with rounded corners, what is outside them transparent."""
        side = self.size[0]
        picture = self.finished().convert("RGBA")
        corners = self.rounded_mask(0, 0, side, side, side * 0.2)
        picture.putalpha(corners.resize(picture.size, Image.BOX))
        return picture


# -- palettes ------------------------------------------------------------------------------------

def shared_palette(pictures, wanted=()):
    """256 colours for all the pictures together: the system's in their places, the wanted ones
    exactly, and the rest chosen from what the pictures use."""
    width = max(picture.size[0] for picture in pictures)
    sheet = Image.new("RGB", (width, sum(picture.size[1] for picture in pictures)))
    y = 0
    for picture in pictures:
        sheet.paste(picture, (0, y))
        y += picture.size[1]
    room = 256 - len(SYSTEM_COLOURS) - len(wanted)
    found = sheet.quantize(room, method=Image.MEDIANCUT, kmeans=2).getpalette()
    chosen = [tuple(found[3 * i:3 * i + 3]) for i in range(room)]
    return SYSTEM_COLOURS[:10] + list(wanted) + chosen + SYSTEM_COLOURS[10:]


def _nearest(picture, palette, dither):
    holder = Image.new("P", (1, 1))
    padded = palette + palette[:1] * (256 - len(palette))
    holder.putpalette([part for colour in padded for part in colour])
    found = picture.quantize(
        palette=holder, dither=Image.FLOYDSTEINBERG if dither else Image.NONE)
    return found.point([index if index < len(palette) else 0 for index in range(256)])


def in_palette(picture, palette, dither=True):
    """The picture in the nearest colours of a shared palette."""
    # The system's colours are as far apart as can be: dithering with them would show as dots.
    return _nearest(picture, palette[10:246], dither).point([index + 10 & 255 for index in range(256)])


def small_palette(picture, wanted=()):
    """The picture in 16 colours of its own, the wanted ones among them, and these colours."""
    room = 16 - len(wanted)
    found = picture.quantize(room, method=Image.MEDIANCUT, kmeans=2).getpalette()
    palette = list(wanted) + [tuple(found[3 * i:3 * i + 3]) for i in range(room)]
    return _nearest(picture, palette, dither=False), palette


# -- files ---------------------------------------------------------------------------------------

def _rows(indices, bits):
    """Bottom-up rows of palette indices, each filled up to four bytes."""
    width, height = indices.size
    data = indices.tobytes()
    rows = []
    for y in reversed(range(height)):
        row = data[y * width:(y + 1) * width]
        if bits == 4:
            row += b"\0" * (width % 2)
            row = bytes(row[i] << 4 | row[i + 1] for i in range(0, len(row), 2))
        elif bits == 1:
            row += b"\0" * (-width % 8)
            row = bytes(sum((row[i + k] & 1) << (7 - k) for k in range(8))
                        for i in range(0, len(row), 8))
        rows.append(row + b"\0" * (-len(row) % 4))
    return b"".join(rows)


def _true_rows(picture, layout):
    """Bottom-up rows of 24- or 32-bit pixels (`layout` is "BGR" or "BGRA")."""
    width = picture.size[0] * len(layout)
    data = picture.tobytes("raw", layout)
    rows = [data[i:i + width] for i in range(0, len(data), width)]
    return b"".join(row + b"\0" * (-width % 4) for row in reversed(rows))


def _header(width, height, bits, colours=0):
    return struct.pack("<LllHHLLllLL", 40, width, height, 1, bits, 0, 0, 0, 0, colours, colours)


def _colour_table(palette):
    return b"".join(bytes((blue, green, red, 0)) for red, green, blue in palette)


def write_bitmap(path, picture, palette=None, bits=8):
    """Writes a .bmp: of palette indices (8 or 4 bits) when there is a palette, else of 24 bits."""
    width, height = picture.size
    if palette:
        head = _header(width, height, bits, len(palette)) + _colour_table(palette)
        body = _rows(picture, bits)
    else:
        head = _header(width, height, 24)
        body = _true_rows(picture, "BGR")
    offset = 14 + len(head)
    with open(path, "wb") as file:
        file.write(struct.pack("<2sLHHL", b"BM", offset + len(body), 0, 0, offset) + head + body)


def _icon_image(picture, bits):
    """One image of an icon, from an RGBA picture: its colours, and a mask of what is not drawn."""
    width, height = picture.size
    alpha = picture.getchannel("A")
    hidden = alpha.point([1 if value < 128 else 0 for value in range(256)])
    if bits == 32:
        table, body = b"", _true_rows(picture, "BGRA")
    else:
        flat = Image.new("RGB", picture.size)
        flat.paste(picture, mask=alpha.point([0 if value < 128 else 255 for value in range(256)]))
        palette = shared_palette([flat])
        table = _colour_table(palette)
        body = _rows(in_palette(flat, palette, dither=False), 8)
    # The height counts the colours and the mask.
    return _header(width, 2 * height, bits) + table + body + _rows(hidden, 1)


def write_icon(path, pictures):
    """Writes an .ico with every RGBA picture in 256 colours and in 32 bits."""
    images = [(picture.size[0], bits, _icon_image(picture, bits))
              for picture in pictures for bits in (8, 32)]
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for side, bits, data in images:
        directory += struct.pack("<BBBBHHLL", side, side, 0, 0, 1, bits, len(data), offset)
        offset += len(data)
    with open(path, "wb") as file:
        file.write(directory + b"".join(data for _, _, data in images))
