#!/usr/bin/python3
"""Draws Hills.bmp (256 colours, with their palette) and Sun.bmp (on magenta) beside this script."""

import math
import pathlib

from PIL import Image, ImageDraw

HERE = pathlib.Path(__file__).parent

hills = Image.new("RGB", (160, 100))
for x in range(160):
    far, near = 55 + 9 * math.sin(x / 17), 75 + 12 * math.sin(x / 29 + 2)
    for y in range(100):
        if y > near:
            color = (40, 150 - y, 60)
        elif y > far:
            color = (70, 120, 110 + (y - 40))
        else:
            color = (250 - y, 170 + y // 2, 120 + y)
        hills.putpixel((x, y), color)
hills.quantize(236, dither=Image.Dither.NONE).save(HERE / "Hills.bmp")

sun = Image.new("RGB", (64, 64), (255, 0, 255))
pen = ImageDraw.Draw(sun)
for ray in range(12):
    angle = ray * math.pi / 6
    pen.line((32, 32, 32 + 31 * math.cos(angle), 32 + 31 * math.sin(angle)), (255, 240, 120), 3)
pen.ellipse((14, 14, 50, 50), (255, 224, 64), (224, 160, 32))
sun.save(HERE / "Sun.bmp")
