#!/usr/bin/python3
"""Draws the pictures of the Harbour Tides disc beside this script. Usage: draw_skin.py

The three bitmaps have different depths: a true-colour background, which needs no palette, a
product picture of 256 colours and a bullet of 16.
"""

import math
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[2] / "Tools"))

from skin_drawing import (  # noqa: E402
    Canvas, curve, in_palette, mix, shared_palette, small_palette, write_bitmap, write_icon)

WIDTH, HEIGHT = 440, 300
PRODUCT = (14, 40, 178, 256)
BULLET_SIZE = 14
BULLETS = ((194, 114), (194, 140), (194, 166), (352, 252))

NAVY = (22, 50, 84)
PAPER = (196, 216, 226)
PAPER_LIGHT = (222, 234, 240)
SEA = (58, 128, 160)
SEA_DEEP = (24, 74, 114)
FOAM = (236, 246, 250)
WHITE = (252, 252, 248)
RED = (196, 54, 46)
RED_SHADE = (150, 34, 34)
LIGHT = (255, 236, 160)
ROCK = (70, 76, 88)


def tide_curve(left, right, middle, height, waves):
    """The tide as a tide table draws it."""
    return [(x, middle - height * math.sin((x - left) / (right - left) * 2 * math.pi * waves))
            for x in range(left, right + 1, 2)]


def draw_scene():
    """A sheet of a tide table on a sea chart."""
    canvas = Canvas(WIDTH, HEIGHT, [(30, PAPER_LIGHT), (104, PAPER)])
    for x in range(20, WIDTH, 40):
        canvas.paint(canvas.line_mask([(x, 0), (x, HEIGHT)], 0.7), SEA, 0.22)
    for y in range(20, HEIGHT, 40):
        canvas.paint(canvas.line_mask([(0, y), (WIDTH, y)], 0.7), SEA, 0.22)
    tide = tide_curve(0, WIDTH, 284, 7, 2.5)
    canvas.paint(canvas.polygon_mask(tide + [(WIDTH, HEIGHT), (0, HEIGHT)]),
                 [(276, mix(PAPER, SEA, 0.34)), (HEIGHT, mix(PAPER, SEA, 0.5))])
    canvas.paint(canvas.line_mask(tide, 1.6), SEA, 0.9)

    canvas.paint(canvas.polygon_mask([(0, 0), (WIDTH, 0), (WIDTH, 30), (0, 30)]),
                 [(0, mix(NAVY, SEA, 0.35)), (30, NAVY)])
    canvas.paint(canvas.line_mask([(0, 30), (WIDTH, 30)], 2), LIGHT, 0.9)
    for i in range(5):
        wave = tide_curve(0, WIDTH, 17 + 2 * i, 4 - 0.5 * i, 6 + i)
        canvas.paint(canvas.line_mask(wave, 0.9), FOAM, 0.35 - 0.05 * i)

    # The rule under the title, and plain paper under each bullet's square.
    canvas.paint(canvas.line_mask([(192, 98), (426, 98)], 1.2), NAVY, 0.6)
    for x, y in BULLETS:
        canvas.paint(canvas.rounded_mask(x, y, x + BULLET_SIZE, y + BULLET_SIZE, 0), PAPER)
    canvas.frame(NAVY)
    return canvas


def draw_lighthouse(canvas, x, base, height):
    """A striped lighthouse, `x` its axis, `base` the foot of its tower."""
    def width(y):
        return height * (0.085 + 0.075 * (y - base + height) / height)

    def band(top, bottom):
        return [(x - width(top), top), (x + width(top), top),
                (x + width(bottom), bottom), (x - width(bottom), bottom)]

    unit = height / 100
    gallery = base - height * 0.72
    tower = canvas.polygon_mask(band(gallery, base))
    canvas.paint(tower, WHITE)
    for i in range(3):
        top = gallery + (base - gallery) * (0.14 + 0.3 * i)
        canvas.paint(canvas.polygon_mask(band(top, top + (base - gallery) * 0.15)), RED)
    shade = canvas.polygon_mask([(x + 3 * unit, 0), (WIDTH, 0), (WIDTH, HEIGHT),
                                 (x + 3 * unit, HEIGHT)])
    canvas.paint(shade, NAVY, 0.3, within=tower, blur=2.5 * unit)
    for share in (0.36, 0.66):
        y = gallery + (base - gallery) * share
        canvas.paint(canvas.rounded_mask(x - 1.8 * unit, y, x + 1.8 * unit, y + 5.5 * unit,
                                         1.6 * unit), NAVY)
    canvas.paint(canvas.rounded_mask(x - 12 * unit, gallery - 2 * unit, x + 12 * unit,
                                     gallery + 1.5 * unit, unit), NAVY)
    lantern = gallery - 13 * unit
    canvas.paint(canvas.rounded_mask(x - 6.5 * unit, lantern, x + 6.5 * unit, gallery - 2 * unit,
                                     0.5 * unit), LIGHT)
    for dx in (-6.5, -2.2, 2.2, 6.5):
        canvas.paint(canvas.line_mask([(x + dx * unit, lantern), (x + dx * unit,
                                                                 gallery - 2 * unit)], unit), NAVY)
    canvas.paint(canvas.polygon_mask([(x - 9 * unit, lantern), (x, lantern - 9 * unit),
                                      (x + 9 * unit, lantern)]), RED_SHADE)
    canvas.paint(canvas.ellipse_mask(x, lantern - 9.5 * unit, 1.6 * unit), RED_SHADE)
    return gallery - 7 * unit


def draw_view(canvas, left, top, right, bottom, radius):
    """A window onto the sea at dusk with the lighthouse in front."""
    frame = canvas.rounded_mask(left, top, right, bottom, radius)
    view = Canvas(*canvas.size, [(top, (54, 96, 146)), ((top + bottom) * 0.5, (176, 206, 220)),
                                 (bottom, (250, 222, 180))], scale=canvas.scale)
    width, height = right - left, bottom - top
    x, base = left + width * 0.44, top + height * 0.83
    lamp = base - height * 0.66 * 0.79
    for reach in (-1, 1):
        beam = [(x, lamp), (x + reach * width, lamp - height * 0.16),
                (x + reach * width, lamp + height * 0.08)]
        view.paint(view.polygon_mask(beam), LIGHT, 0.5, blur=width * 0.012)
    view.glow(x, lamp, width * 0.24, LIGHT, 0.9)
    horizon = top + height * 0.68
    view.paint(view.polygon_mask([(left, horizon), (right, horizon), (right, bottom),
                                  (left, bottom)]), [(horizon, SEA), (bottom, SEA_DEEP)])
    for i in range(5):
        y = horizon + height * (0.04 + 0.06 * i)
        crest = [(px, py) for px, py in tide_curve(
            round(left), round(right), y, height * 0.008 * (1 + i * 0.5), 3.5 - 0.3 * i)]
        view.paint(view.line_mask(crest, height * 0.007), FOAM, 0.5)
    rock = [(left - width * 0.1, bottom + 9), (left + width * 0.06, top + height * 0.88),
            (left + width * 0.24, top + height * 0.82), (left + width * 0.5, top + height * 0.81),
            (left + width * 0.7, top + height * 0.87), (left + width * 0.92, bottom + 9)]
    outline = view.polygon_mask(curve(rock, closed=False))
    draw_lighthouse(view, x, base, height * 0.66)
    view.paint(outline, [(top + height * 0.8, mix(ROCK, PAPER, 0.2)), (bottom, ROCK)])
    view.paint(view.line_mask(curve([(px, py + 1) for px, py in rock], closed=False),
                              height * 0.01), FOAM, 0.45, within=outline)
    canvas.image.paste(view.image, mask=frame)


def draw_buoy(canvas, x, y, side):
    """The bullet: a lifebelt."""
    cx, cy = x + side / 2, y + side / 2
    ring = canvas.ellipse_mask(cx, cy, side * 0.46)
    canvas.paint(ring, NAVY)
    ring = canvas.ellipse_mask(cx, cy, side * 0.4)
    canvas.paint(ring, WHITE)
    for angle in (45, 135, 225, 315):
        directions = [math.radians(angle + d) for d in (-22, 0, 22)]
        spread = [(cx, cy)] + [(cx + side * math.cos(direction), cy + side * math.sin(direction))
                               for direction in directions]
        canvas.paint(canvas.polygon_mask(spread), RED, within=ring)
    canvas.paint(canvas.ellipse_mask(cx, cy, side * 0.2), NAVY)
    canvas.paint(canvas.ellipse_mask(cx, cy, side * 0.15), PAPER)


def draw_icon(side):
    canvas = Canvas(side, side, PAPER, scale=8)
    draw_view(canvas, 0, 0, side, side, 0)
    return canvas.finished_icon()


def main():
    scene = draw_scene()
    front = scene.copy()
    front.paint(front.rounded_mask(20, 48, 176, 252, 10), NAVY, 0.4, blur=3)
    front.paint(front.rounded_mask(18, 44, 174, 250, 10), WHITE)
    draw_view(front, 22, 48, 170, 246, 7)
    button = scene.copy()
    x, y = BULLETS[0]
    draw_buoy(button, x, y, BULLET_SIZE)

    write_bitmap(HERE / "Background.bmp", scene.finished())
    product = front.finished(PRODUCT)
    palette = shared_palette([product])
    write_bitmap(HERE / "Product.bmp", in_palette(product, palette), palette)
    bullet = button.finished((x, y, x + BULLET_SIZE, y + BULLET_SIZE))
    indices, palette = small_palette(bullet, [PAPER])
    write_bitmap(HERE / "Bullet.bmp", indices, palette, bits=4)
    write_icon(HERE / "Tides.ico", [draw_icon(side) for side in (16, 32, 48)])


if __name__ == "__main__":
    main()
