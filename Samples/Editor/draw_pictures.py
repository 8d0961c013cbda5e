#!/usr/bin/python3
"""Draws the editor's icon and the pictures of its buttons beside this script.

Usage: draw_pictures.py
"""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "Tools"))

from button_drawing import FACE, GREEN, INK, NAVY, SUN, WHITE, WOOD, Button, write_strips  # noqa: E402
from skin_drawing import Canvas, write_icon  # noqa: E402


class Tool(Button):
    def sheet(self, first=(3, 1), last=(13, 15), rows=0):
        self.box(WHITE, first, last)
        for row in range(rows):
            y = first[1] + 2 + 2 * row
            self.line((first[0] + 2, y), (last[0] - 3, y), colour=NAVY)

    def new(self):
        self.sheet()

    def save(self):
        self.box(NAVY, (1, 1), (15, 15))
        self.box(WHITE, (4, 1), (12, 8))
        self.line((6, 4), (10, 4), colour=NAVY)
        self.box(FACE, (5, 10), (12, 15))

    def print(self):
        self.sheet((4, 1), (12, 8), 2)
        self.box(FACE, (1, 6), (15, 12))
        self.box(GREEN, (11, 8), (13, 10), line=GREEN)
        self.box(WHITE, (3, 10), (13, 15))

    def preview(self):
        self.sheet((1, 1), (9, 14), 5)
        self.line((12, 12), (14, 14), width=2, colour=WOOD)
        left, right = self.at((6, 5), (13, 12))
        self.draw.ellipse((*left, *right), fill=15, outline=INK)

    def cut(self):
        self.line((5, 1), (10, 10))
        self.line((10, 1), (5, 10))
        for x in (2, 9):
            left, right = self.at((x, 9.5), (x + 4, 14))
            self.draw.ellipse((*left, *right), outline=NAVY)

    def copy(self):
        self.sheet((1, 1), (9, 11), 3)
        self.sheet((6, 5), (15, 15), 4)

    def paste(self):
        self.box(WOOD, (1, 2), (12, 14))
        self.box(SUN, (4, 1), (9, 4))
        self.sheet((6, 6), (15, 15), 3)

    def undo(self):
        left, right = self.at((4, 4), (13, 13))
        self.draw.arc((*left, *right), -100, 110, fill=NAVY, width=max(1, round(1.5 * self.unit)))
        self.polygon(NAVY, (2, 5), (8, 1), (8, 9), line=NAVY)

    def options(self):
        self.sheet((1, 1), (15, 15))
        for y, x in ((4, 9), (8, 4), (12, 8)):
            self.line((3, y), (12, y), colour=1)
            self.box(SUN, (x, y - 1), (x + 3, y + 2))

    def previous_page(self):
        self.sheet((1, 1), (10, 15))
        self.polygon(GREEN, (10, 3), (15, 9), (12, 9), (12, 13), (8, 13), (8, 9), (5, 9))

    def next_page(self):
        self.sheet((1, 1), (10, 15))
        self.polygon(GREEN, (10, 13), (15, 7), (12, 7), (12, 3), (8, 3), (8, 7), (5, 7))

    def whole_page(self):
        self.sheet()
        self.line((8, 4), (8, 11), colour=NAVY)
        self.polygon(NAVY, (8, 3), (10, 6), (6, 6), line=NAVY)
        self.polygon(NAVY, (8, 12), (10, 9), (6, 9), line=NAVY)


TOOLS = (Tool.new, Tool.open, Tool.save, Tool.print, Tool.preview, Tool.cut, Tool.copy, Tool.paste,
         Tool.undo, Tool.glass, Tool.options, Tool.previous_page, Tool.next_page, Tool.zoom_in,
         Tool.zoom_out, Tool.whole_page)


def draw_icon(side):
    unit = side / 32
    canvas = Canvas(side, side, [(0, (70, 130, 200)), (side, (190, 220, 240))])

    def paint(colour, *points):
        canvas.paint(canvas.polygon_mask([(x * unit, y * unit) for x, y in points]), colour)
    paint((252, 252, 248), (6, 3), (26, 3), (26, 29), (6, 29))
    for y in (8, 13, 18, 23):
        paint((70, 90, 120), (9, y), (23 if y < 18 else 15, y), (23 if y < 18 else 15, y + 2), (9, y + 2))
    paint((232, 170, 40), (28, 10), (31, 13), (20, 25), (17, 22))
    paint((60, 50, 40), (17, 22), (20, 25), (15, 27))
    return canvas.finished_icon()


write_strips(HERE, Tool, TOOLS)
write_icon(HERE / "Editor.ico", [draw_icon(side) for side in (16, 32, 48)])
