#!/usr/bin/python3
"""Draws the pictures of the Fennick disc beside this script. Usage: draw_skin.py"""

import math
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "Tools"))

from skin_drawing import (  # noqa: E402
    Canvas, curve, in_palette, mirrored, mix, shared_palette, write_bitmap, write_icon)

WIDTH, HEIGHT = 514, 345
PRODUCT = (302, 73, 502, 271)
BULLET_SIZE = 16
BULLETS = ((15, 144), (15, 176), (15, 208), (15, 240))

INK = (38, 26, 30)
FILM = (44, 34, 44)
FILM_LIGHT = (92, 76, 90)
SAND = (222, 202, 166)
SAND_LIGHT = (238, 224, 196)
SAND_SHADE = (205, 181, 141)
CREAM = (255, 246, 228)
FUR = (233, 178, 108)
FUR_SHADE = (201, 136, 70)
FUR_LIGHT = (248, 210, 150)
EAR = (222, 140, 116)
RED = (212, 0, 0)
DUSK = [(0, (40, 36, 78)), (26, (96, 56, 104)), (50, (196, 94, 84)), (70, (246, 166, 92)),
        (84, (255, 214, 140))]


def draw_fennec(canvas, x, y, size):
    """A fennec's head seen from the front; `size` is the span of its ears."""
    unit = size / 200

    def at(points):
        return [(x + px * unit, y + py * unit) for px, py in points]

    def both(points, left, right, closed=True):
        """Paints a shape of the left half and its mirror image."""
        shape = at(curve(points) if closed else points)
        canvas.paint(canvas.polygon_mask(shape), left)
        canvas.paint(canvas.polygon_mask(mirrored(shape, x)), right)

    def fade(top, bottom, first, second):
        return [(y + top * unit, first), (y + bottom * unit, second)]

    ear = [(-18, -24), (-34, -58), (-62, -88), (-97, -100), (-100, -66), (-88, -26), (-62, 18)]
    inner = [(-30, -22), (-42, -54), (-64, -76), (-88, -88), (-88, -62), (-76, -28), (-56, 0)]
    tuft = [(-30, -14), (-36, -30), (-46, -48), (-48, -26), (-58, -36), (-56, -14), (-66, -16),
            (-58, 8)]
    both(ear, fade(-100, 10, FUR, FUR_SHADE), fade(-100, 10, mix(FUR, FUR_SHADE, 0.5), FUR_SHADE))
    both(inner, fade(-90, 0, mix(EAR, CREAM, 0.35), EAR),
         fade(-90, 0, mix(EAR, CREAM, 0.15), mix(EAR, INK, 0.12)))
    both(tuft, CREAM, mix(CREAM, FUR, 0.25), closed=False)

    # The head, lit from the left.
    half = [(0, -36), (-26, -34), (-50, -14), (-62, 12), (-76, 36), (-58, 50), (-38, 62),
            (-20, 82), (0, 92)]
    outline = at(curve(half, closed=False) + mirrored(curve(half, closed=False), 0)[::-1])
    head = canvas.polygon_mask(outline)
    canvas.paint(head, fade(-36, 60, FUR_LIGHT, FUR))
    canvas.paint(canvas.polygon_mask(at([(0, -60), (90, -60), (90, 110), (0, 110)])),
                 FUR_SHADE, 0.32, within=head, blur=8 * unit)

    # White cheeks and muzzle, the forehead running down between the eyes.
    cheek = [(-84, 40), (-62, 24), (-44, 26), (-30, 34), (-16, 22), (-9, 40), (-6, 62), (0, 66),
             (0, 110), (-90, 110)]
    shape = at(cheek)
    canvas.paint(canvas.polygon_mask(shape), CREAM, within=head, blur=0.8 * unit)
    canvas.paint(canvas.polygon_mask(mirrored(shape, x)), mix(CREAM, FUR, 0.22), within=head,
                 blur=0.8 * unit)
    brow = [(-34, -4), (-24, -10), (-16, -6), (-22, 0)]
    both(brow, CREAM, mix(CREAM, FUR, 0.2))

    # Eyes with their dark tear lines, nose and mouth.
    both([(-44, 8), (-34, 1), (-22, 6), (-17, 17), (-28, 20), (-39, 17)], INK, INK)
    canvas.paint(canvas.polygon_mask(at(curve([(-21, 14), (-15, 18), (-9, 40), (-14, 36)]))),
                 mix(INK, FUR_SHADE, 0.35))
    canvas.paint(canvas.polygon_mask(at(curve([(21, 14), (15, 18), (9, 40), (14, 36)]))),
                 mix(INK, FUR_SHADE, 0.35))
    for eye in (-30, 30):
        canvas.paint(canvas.ellipse_mask(x + eye * unit, y + 11 * unit, 6.6 * unit), (112, 62, 28))
        canvas.paint(canvas.ellipse_mask(x + eye * unit, y + 11 * unit, 4 * unit), INK)
        canvas.paint(canvas.ellipse_mask(x + (eye - 3) * unit, y + 8 * unit, 2.4 * unit),
                     (255, 255, 255))
    canvas.paint(canvas.polygon_mask(at(curve(
        [(-12, 66), (0, 62), (12, 66), (9, 75), (0, 82), (-9, 75)]))), INK)
    canvas.paint(canvas.ellipse_mask(x - 4 * unit, y + 68 * unit, 3 * unit, 1.8 * unit),
                 (150, 138, 146))


def draw_replay_sun(canvas, x, y, radius):
    """The setting sun inside a loop of film that ends in an arrow: replay."""
    def polar(degrees, distance):
        angle = math.radians(degrees)
        return x + distance * math.cos(angle), y + distance * math.sin(angle)

    def arc(start, end, distance):
        return [polar(start + (end - start) * i / 90, distance) for i in range(91)]

    canvas.paint(canvas.ellipse_mask(x, y, radius * 0.76),
                 [(y - radius * 0.7, (255, 232, 142)), (y + radius * 0.7, (234, 104, 60))])

    # Drawn against the clock, as a replay arrow is: from the left of the top around to the top.
    width, start, end = 17, 234, -86
    middle = radius - width / 2
    strip = arc(start, end, radius) + arc(end, start, radius - width)
    head = [polar(end + 1, middle - width), polar(end + 1, middle + width), polar(end - 19, middle)]
    for shape in (strip, head):
        canvas.paint(canvas.polygon_mask([(px + 1.5, py + 3) for px, py in shape]),
                     mix(SAND_SHADE, INK, 0.5), 0.45, blur=2.2)
    for shape in (strip, head):
        canvas.paint(canvas.polygon_mask(shape),
                     [(y - radius, FILM_LIGHT), (y + radius, FILM)])
    for degrees in range(end + 5, start - 2, 6):
        for distance in (radius - 3.6, radius - width + 3.6):
            corners = [polar(degrees - 3.3 + 1.6 * side * radius / distance, distance + out)
                       for side, out in ((0, -1.5), (1, -1.5), (1, 1.5), (0, 1.5))]
            canvas.paint(canvas.polygon_mask(corners), SAND_LIGHT)


def draw_perforations(canvas, top, step=13.5, offset=3.75):
    x = offset
    while x < WIDTH:
        canvas.paint(canvas.rounded_mask(x, top, x + 7, top + 5.5, 1.6), SAND_LIGHT)
        x += step


def draw_scene():
    """The window without what lies on top of it: dusk, dunes, the film's edges, the text card."""
    canvas = Canvas(WIDTH, HEIGHT, DUSK + [(HEIGHT, (255, 214, 140))])
    for x, y, r in ((38, 26, 0.9), (92, 33, 0.7), (150, 24, 1.0), (214, 30, 0.7), (262, 23, 0.8),
                    (486, 27, 0.9), (16, 42, 0.6), (120, 44, 0.6), (306, 35, 0.7), (450, 22, 0.6)):
        canvas.paint(canvas.ellipse_mask(x, y, r), (255, 240, 220), 0.9)
    canvas.glow(411, 88, 150, (255, 186, 104), 0.6)

    def dune(crest, fill, shade=None):
        line = curve(crest, closed=False)
        body = canvas.polygon_mask(line + [(WIDTH, HEIGHT), (0, HEIGHT)])
        canvas.paint(body, fill)
        if shade:
            canvas.paint(canvas.line_mask(line, 3), shade, 0.8, within=body, blur=0.8)

    dune([(0, 66), (60, 56), (120, 67), (190, 73), (250, 62), (330, 72), (420, 64), (514, 58)],
         [(54, (176, 84, 84)), (90, (226, 140, 96))], (246, 178, 120))
    dune([(0, 78), (50, 77), (110, 67), (150, 64), (200, 74), (270, 81), (340, 76), (514, 80)],
         [(62, (214, 142, 98)), (96, (232, 180, 124))], (255, 214, 150))
    dune([(0, 84), (90, 88), (190, 85), (260, 83), (350, 90), (440, 88), (514, 82)],
         [(82, SAND_SHADE), (100, mix(SAND, SAND_SHADE, 0.35)), (136, SAND), (HEIGHT, SAND)],
         SAND_LIGHT)

    # Wind ripples, kept away from the bullets, which are square pieces of the plain sand.
    for crest, shade in (
            ([(60, 168), (140, 158), (240, 170), (330, 160), (514, 172)], SAND_LIGHT),
            ([(50, 226), (150, 236), (260, 222), (380, 236), (514, 226)], SAND_LIGHT),
            ([(60, 172), (140, 162), (240, 174), (330, 164), (514, 176)], SAND_SHADE),
            ([(50, 230), (150, 240), (260, 226), (380, 240), (514, 230)], SAND_SHADE),
            ([(90, 260), (200, 254), (330, 264), (514, 252)], SAND_SHADE),
            ([(120, 128), (230, 122), (330, 134), (514, 124)], SAND_SHADE)):
        canvas.paint(canvas.line_mask(curve(crest, closed=False), 2.2), shade, 0.55, blur=1.6)

    # The card under the description.
    canvas.paint(canvas.rounded_mask(7, 276, 507, 324, 6), mix(SAND_SHADE, INK, 0.45), 0.5, blur=2)
    canvas.paint(canvas.rounded_mask(6, 273, 508, 322, 6), mix(SAND_SHADE, INK, 0.22))
    canvas.paint(canvas.rounded_mask(7, 274, 507, 321, 5), [(274, (248, 238, 216)),
                                                            (321, (234, 218, 186))])

    # The window is a frame of film: its two perforated edges, and a line all around.
    for top, bottom, holes in ((0, 13, 3.5), (HEIGHT - 13, HEIGHT, HEIGHT - 9)):
        canvas.paint(canvas.polygon_mask([(0, top), (WIDTH, top), (WIDTH, bottom), (0, bottom)]),
                     [(top, mix(FILM, FILM_LIGHT, 0.35)), (bottom, FILM)])
        draw_perforations(canvas, holes)
    canvas.paint(canvas.line_mask([(0, 13), (WIDTH, 13)], 1), (255, 196, 140), 0.35)
    canvas.frame(INK)
    return canvas


def bullet_square(corner):
    return (*corner, corner[0] + BULLET_SIZE, corner[1] + BULLET_SIZE)


def draw_bullet(canvas, x, y):
    """A round play button inside the square whose corner is given."""
    cx, cy, radius = x + BULLET_SIZE / 2, y + BULLET_SIZE / 2, 6.6
    square = canvas.rounded_mask(x, y, x + BULLET_SIZE, y + BULLET_SIZE, 0)
    canvas.paint(canvas.ellipse_mask(cx + 0.4, cy + 1, radius), mix(SAND_SHADE, INK, 0.5), 0.5,
                 within=square, blur=0.5)
    canvas.paint(canvas.ellipse_mask(cx, cy, radius), mix(FILM, (120, 30, 30), 0.4))
    canvas.paint(canvas.ellipse_mask(cx, cy, radius - 0.9),
                 [(cy - radius, (246, 150, 84)), (cy + radius, (186, 44, 34))])
    canvas.paint(canvas.polygon_mask([(cx - 2.2, cy - 3.6), (cx + 4, cy), (cx - 2.2, cy + 3.6)]),
                 CREAM)


def draw_icon(side):
    canvas = Canvas(side, side, [(0, (70, 48, 104)), (side * 0.55, (226, 108, 78)),
                                 (side, (255, 200, 110))], scale=8)
    draw_fennec(canvas, side / 2, side * 0.53, side * 0.94)
    return canvas.finished_icon()


def main():
    scene = draw_scene()
    front = scene.copy()
    draw_replay_sun(front, 411, 169, 89)
    draw_fennec(front, 411, 187, 168)
    button = scene.copy()
    draw_bullet(button, *BULLETS[0])

    background = scene.finished()
    product = front.finished(PRODUCT)
    bullet = button.finished(bullet_square(BULLETS[0]))
    palette = shared_palette([background, product, bullet], wanted=[SAND, RED])
    # Dithered, the sand around a bullet would not be the same twice.
    plain = in_palette(background, palette, dither=False)
    background = in_palette(background, palette)
    for corner in BULLETS:
        background.paste(plain.crop(bullet_square(corner)), corner)
    write_bitmap(HERE / "Background.bmp", background, palette)
    write_bitmap(HERE / "Product.bmp", in_palette(product, palette), palette)
    write_bitmap(HERE / "Bullet.bmp", in_palette(bullet, palette, dither=False), palette)
    write_icon(HERE / "Fennick.ico", [draw_icon(side) for side in (16, 32, 48)])


if __name__ == "__main__":
    main()
