#!/usr/bin/python3
"""Draws the viewer's icon and the pictures of its buttons beside this script.

Usage: draw_pictures.py
"""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "Tools"))

from button_drawing import FACE, GREEN, NAVY, SKY, WHITE, Button, write_strips  # noqa: E402
from skin_drawing import Canvas, write_icon  # noqa: E402


class Tool(Button):
    def previous(self):
        self.polygon(GREEN, (1, 8), (8, 2), (8, 5), (14, 5), (14, 11), (8, 11), (8, 14))

    def next(self):
        self.polygon(GREEN, (14, 8), (7, 2), (7, 5), (1, 5), (1, 11), (7, 11), (7, 14))

    def slide_show(self):
        self.box(WHITE, (1, 2), (15, 12))
        self.polygon(NAVY, (6, 4), (11, 7), (6, 10), line=NAVY)
        self.line((8, 12), (4, 15))
        self.line((8, 12), (12, 15))

    def picture(self, first, last):
        self.box(SKY, first, last)
        (left, top), (right, bottom) = first, last
        self.polygon(GREEN, (left + 1, bottom - 1.5), ((left + right) / 2 - .5, (top + bottom) / 2),
                     (right - 2, bottom - 1.5), line=GREEN)

    def actual_size(self):
        self.box(WHITE, (1, 2), (15, 14))
        for x in (4, 11):
            self.line((x - 1, 5), (x, 5), colour=NAVY)
            self.line((x, 5), (x, 11), width=1.2, colour=NAVY)
        self.line((7, 6), (8, 6), colour=NAVY)
        self.line((7, 10), (8, 10), colour=NAVY)

    def fit(self):
        self.box(FACE, (1, 1), (15, 15), line=1)
        self.picture((3, 4), (13, 12))

    def full_screen(self):
        self.picture((4, 5), (12, 11))
        for x, dx in ((1, 3), (14, -3)):
            for y, dy in ((1, 3), (14, -3)):
                self.line((x, y), (x + dx, y), colour=NAVY)
                self.line((x, y), (x, y + dy), colour=NAVY)


TOOLS = (Tool.open, Tool.previous, Tool.next, Tool.slide_show, Tool.zoom_in, Tool.zoom_out,
         Tool.actual_size, Tool.fit, Tool.full_screen)


def draw_icon(side):
    unit = side / 32
    canvas = Canvas(side, side, [(0, (70, 130, 200)), (side, (190, 220, 240))])

    def at(*points):
        return [(x * unit, y * unit) for x, y in points]
    canvas.paint(canvas.ellipse_mask(23 * unit, 9 * unit, 4 * unit), (255, 226, 120))
    canvas.paint(canvas.polygon_mask(at((0, 30), (11, 13), (22, 30))), (60, 96, 84))
    canvas.paint(canvas.polygon_mask(at((9, 30), (21, 18), (32, 30))), (84, 132, 96))
    canvas.paint(canvas.polygon_mask(at((0, 27), (32, 27), (32, 32), (0, 32))), (46, 76, 66))
    return canvas.finished_icon()


write_strips(HERE, Tool, TOOLS)
write_icon(HERE / "Viewer.ico", [draw_icon(side) for side in (16, 32, 48)])
