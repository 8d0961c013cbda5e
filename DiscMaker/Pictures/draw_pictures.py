#!/usr/bin/python3
"""Draws Disc Maker's icon and the pictures of its buttons beside this script.

Usage: draw_pictures.py
"""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "Tools"))

from button_drawing import (  # noqa: E402
    FACE, GLASS, GREEN, INK, NAVY, SKY, WHITE, Button, write_strips)
from skin_drawing import Canvas, write_icon  # noqa: E402


class Tool(Button):
    def new(self):
        self.polygon(WHITE, (3, 1), (9, 1), (13, 5), (13, 14), (3, 14))
        self.line((9, 1), (9, 5), (13, 5))

    def save(self):
        self.box(NAVY, (2, 2), (14, 14))
        self.box(WHITE, (4, 2), (12, 7))
        self.box(FACE, (5, 9), (12, 14))
        self.box(INK, (6, 10), (8, 13))

    def arrow_back(self, side=1):
        def x(n):
            return n if side > 0 else 16 - n
        self.line((x(4), 6), (x(10), 6), (x(12), 8), (x(12), 11), (x(10), 13), (x(5), 13),
                  width=1.6, colour=NAVY)
        self.polygon(NAVY, (x(1), 6), (x(5), 2), (x(5), 10), line=NAVY)

    def undo(self):
        self.arrow_back()

    def redo(self):
        self.arrow_back(-1)

    def zones(self):
        self.box(WHITE, (1, 3), (15, 13), line=1)
        self.box(FACE, (3, 6), (13, 10), line=14)

    def snap(self):
        self.line((8, 1), (8, 15), colour=14)
        self.box(SKY, (2, 4), (8, 8))
        self.box(SKY, (8, 9), (14, 13))

    def align_left(self):
        self.line((2, 1), (2, 15), colour=NAVY)
        self.box(SKY, (3, 3), (9, 7))
        self.box(SKY, (3, 9), (14, 13))

    def align_top(self):
        self.line((1, 2), (15, 2), colour=NAVY)
        self.box(SKY, (3, 3), (7, 9))
        self.box(SKY, (9, 3), (13, 14))

    def space_down(self):
        for y in (1, 6, 11):
            self.box(SKY, (3, y), (13, y + 3))

    def preview(self):
        self.box(WHITE, (1, 2), (15, 13))
        self.box(NAVY, (1, 2), (15, 4))
        self.polygon(GREEN, (6, 5.5), (11, 8.5), (6, 11.5))

    def disc(self):
        left, right = self.at((1, 1), (14.5, 14.5))
        self.draw.ellipse((*left, *right), fill=GLASS, outline=INK)
        left, right = self.at((5.5, 5.5), (10, 10))
        self.draw.ellipse((*left, *right), fill=FACE, outline=INK)
        self.line((3, 5), (5, 3), colour=SKY)
        self.line((11, 13), (13, 11), colour=SKY)


TOOLS = (Tool.new, Tool.open, Tool.save, Tool.undo, Tool.redo, Tool.zoom_in, Tool.zoom_out,
         Tool.zones, Tool.snap, Tool.align_left, Tool.align_top, Tool.space_down, Tool.preview,
         Tool.disc)


def draw_icon(side):
    unit = side / 32
    canvas = Canvas(side, side, [(0, (200, 214, 232)), (side, (120, 146, 190))])

    def round_at(radius):
        return canvas.ellipse_mask(16 * unit, 16 * unit, radius * unit)
    canvas.paint(round_at(15), (60, 74, 104))
    canvas.paint(round_at(14), [(0, (232, 240, 250)), (side, (150, 176, 220))])
    canvas.paint(round_at(6), (60, 74, 104))
    canvas.paint(round_at(5), (236, 236, 228))
    canvas.paint(round_at(2), (60, 74, 104))
    brush = [(31 * unit, 3 * unit), (28 * unit, 1 * unit), (17 * unit, 16 * unit),
             (15 * unit, 20 * unit), (19 * unit, 19 * unit)]
    canvas.paint(canvas.polygon_mask(brush), (216, 96, 32))
    return canvas.finished_icon()


write_strips(HERE, Tool, TOOLS)
write_icon(HERE / "DiscMaker.ico", [draw_icon(side) for side in (16, 32, 48)])
