#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""Draws all pictures in img/Images; see README.md. Needs the Debian packages python3-pil and python3-numpy.

All icons are filled outlines without strokes. Marks are holes in the path of a shape, so that the background is visible
in them. Coordinates are those of the view box.
"""
import base64
import io
from math import cos, radians, sin, sqrt
from pathlib import Path

import rasters

IMAGES = Path(__file__).resolve().parent / "img" / "Images"
DARK, LIGHT, GREEN, CHECK_GREEN, ORANGE = "#484444", "#cccccc", "#59c68c", "#5cc78e", "#ff9900"
# The radius of the disc, which fills its view of 13 by 13, and the line width of the marks, which is close to whole
# pixels at sizes of 16, 26 and 32 pixels.
DISC, WEIGHT = 6.5, 1.7


def number(value):
    text = f"{value:.3f}".rstrip("0").rstrip(".")
    return "0" if text == "-0" else text


def move(point):
    return f"M{number(point[0])} {number(point[1])}"


def line(point):
    return f"L{number(point[0])} {number(point[1])}"


def arc(radius, point, clockwise=True, large=False):
    return f"A{number(radius)} {number(radius)} 0 {int(large)} {int(clockwise)} {number(point[0])} {number(point[1])}"


def polar(centre, radius, degrees):
    """Returns a point on a circle; the angle is clockwise from the right, since y points down."""
    return centre[0] + radius * cos(radians(degrees)), centre[1] + radius * sin(radians(degrees))


def disc(centre, radius):
    left, right = (centre[0] - radius, centre[1]), (centre[0] + radius, centre[1])
    return move(left) + arc(radius, right) + arc(radius, left) + "Z"


def rounded_rect(x, y, width, height, radius):
    right, bottom = x + width, y + height
    return (move((x + radius, y)) + line((right - radius, y)) + arc(radius, (right, y + radius))
            + line((right, bottom - radius)) + arc(radius, (right - radius, bottom))
            + line((x + radius, bottom)) + arc(radius, (x, bottom - radius))
            + line((x, y + radius)) + arc(radius, (x + radius, y)) + "Z")


def plus(centre, reach, weight):
    h = weight / 2
    path = ""
    for turn in (0, 90, 180, 270):
        c, s = round(cos(radians(turn))), round(sin(radians(turn)))

        def at(x, y):
            return centre[0] + c * x - s * y, centre[1] + s * x + c * y

        path += (line if path else move)(at(h, -h)) + line(at(reach - h, -h)) + arc(h, at(reach - h, h))
        path += line(at(h, h))
    return path + "Z"


def minus(centre, reach, weight):
    return rounded_rect(centre[0] - reach, centre[1] - weight / 2, 2 * reach, weight, weight / 2)


def arrow(centre, reach, weight, wing):
    """Returns an arrow down from centre - reach to centre + reach, whose wings extend up and sideways by `wing`."""
    h, d = weight / 2, weight / 2 / sqrt(2)
    x, top = centre[0], centre[1] - reach
    tip = centre[1] + reach - h
    side = tip - wing
    crotch = tip - h * (1 + sqrt(2))
    return (move((x - h, top + h)) + arc(h, (x + h, top + h)) + line((x + h, crotch))
            + line((x + wing - d, side - d)) + arc(h, (x + wing + d, side + d))
            + line((x + d, tip + d)) + arc(h, (x - d, tip + d))
            + line((x - wing - d, side + d)) + arc(h, (x - wing + d, side - d)) + line((x - h, crotch)) + "Z")


def question(centre, weight):
    """Returns a hook of two tangent arcs of equal radius that ends vertically below its centre, and a dot."""
    h, radius, bend = weight / 2, 1.85, 60
    hook = (centre[0], centre[1] - 1.75)
    foot = polar(hook, 2 * radius, bend)
    outer, inner = radius + h, radius - h
    end = foot[1] + 0.05
    path = (move(polar(hook, outer, 185)) + arc(outer, polar(hook, outer, bend), large=True)
            + arc(inner, polar(foot, inner, 180), clockwise=False) + line((hook[0] + h, end))
            + arc(h, (hook[0] - h, end)) + line(polar(foot, outer, 180))
            + arc(outer, polar(foot, outer, 180 + bend))
            + arc(inner, polar(hook, inner, 185), clockwise=False, large=True) + arc(h, polar(hook, outer, 185)) + "Z")
    return path + disc((centre[0], centre[1] + 4.0), 1.05)


def check(corner, short, long, weight):
    """Returns a check mark at 45 degrees with arms that extend from `corner` by `short` and `long` along both axes."""
    h, d = weight / 2, weight / 2 / sqrt(2)
    x, y = corner
    return (move((x - short - d, y - short + d)) + arc(h, (x - short + d, y - short - d)) + line((x, y - 2 * d))
            + line((x + long - d, y - long - d)) + arc(h, (x + long + d, y - long + d)) + line((x + d, y + d))
            + arc(h, (x - d, y + d)) + "Z")


def bar(centre, radius, weight, spread):
    """Returns a curved bar to the right of `centre`, over `spread` degrees to either side, with round ends."""
    h = weight / 2
    outer, inner = radius + h, radius - h
    return (move(polar(centre, outer, -spread)) + arc(outer, polar(centre, outer, spread))
            + arc(h, polar(centre, inner, spread)) + arc(inner, polar(centre, inner, -spread), clockwise=False)
            + arc(h, polar(centre, outer, -spread)) + "Z")


def pump_download(x=0.0, y=0.0, scale=1.0):
    """Returns the pump on its long side, and a disc in front of its corner, separated by a gap."""
    def at(px, py):
        return x + scale * px, y + scale * py

    width, height, corner, gap, radius = 9.27, 6.62, 1.6, 0.64, 2.3
    cx, cy = 10.59 - radius, 8.57 - radius
    notch = radius + gap
    right = (width, cy - sqrt(notch ** 2 - (width - cx) ** 2))
    bottom = (cx - sqrt(notch ** 2 - (height - cy) ** 2), height)
    body = (move(at(corner, 0)) + line(at(width - corner, 0)) + arc(scale * corner, at(width, corner))
            + line(at(*right)) + arc(scale * notch, at(*bottom), clockwise=False)
            + line(at(corner, height)) + arc(scale * corner, at(0, height - corner))
            + line(at(0, corner)) + arc(scale * corner, at(corner, 0)) + "Z")
    left, top = at(1.32, 1.32)
    display = rounded_rect(left, top, scale * 4.63, scale * 2.3, scale * 0.4)
    mark = arrow(at(cx, cy), scale * 1.45, scale * 0.66, scale * 0.98)
    return body + display + disc(at(cx, cy), scale * radius) + mark


def path(d, fill, opacity=None):
    faded = f' fill-opacity="{opacity}"' if opacity is not None else ""
    return f'<path fill="{fill}"{faded} fill-rule="evenodd" d="{d}"/>'


def picture(name, width, height, *shapes, unit="mm"):
    size = f'width="{number(width)}{unit}" height="{number(height)}{unit}" ' if unit else ""
    body = "\n  ".join(shapes)
    (IMAGES / name).write_text(
        "<!-- SPDX-FileCopyrightText: 2026 The Merivo Connections developers; SPDX-License-Identifier: MIT -->\n"
        f'<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" version="1.1" {size}'
        f'viewBox="0 0 {number(width)} {number(height)}">\n  {body}\n</svg>\n', encoding="utf-8")


def image(pixels, width, height, y=0.0):
    stream = io.BytesIO()
    pixels.save(stream, "PNG", optimize=True)
    data = base64.b64encode(stream.getvalue()).decode("ascii")
    return (f'<image x="0" y="{number(y)}" width="{number(width)}" height="{number(height)}" '
            f'preserveAspectRatio="none" xlink:href="data:image/png;base64,{data}"/>')


def icons():
    middle = (DISC, DISC)
    marks = {
        "plus": plus(middle, 3.7, WEIGHT),
        "minus": minus(middle, 3.7, WEIGHT),
        "data_download": arrow(middle, 3.9, WEIGHT, 2.9),
        "help": question(middle, WEIGHT),
    }
    for mark, hole in marks.items():
        for shade, colour in (("dark", DARK), ("light", LIGHT)):
            picture(f"icon_{mark}_grey_{shade}.svg", 13, 13, path(disc(middle, DISC) + hole, colour))

    ring = disc(middle, DISC) + disc(middle, DISC - 1.2)
    picture("icon_check_green.svg", 13, 13, path(ring + check((5.75, 8.85), 2.1, 3.9, WEIGHT), CHECK_GREEN))

    for name, opacity in (("", None), ("_deactivated", 0.35)):
        picture(f"icon_pump_data_download{name}.svg", 13, 13, path(disc(middle, DISC), DARK, opacity),
                path(pump_download(2.65, 3.25, 0.76), "#ffffff"))
    shades = {"GreyDark": ("#111010", None), "GreyLight": ("#111111", 0.349), "White": ("#ffffff", None)}
    for name, (colour, opacity) in shades.items():
        picture(f"PumpDownload{name}.svg", 10.59, 8.57, path(pump_download(), colour, opacity))

    weight, spread = 1.3, 58
    outer = (8.66 / 2 - weight / 2) / sin(radians(spread))
    hub = (5.32 - weight / 2 - outer, 8.66 / 2)
    bars = bar(hub, outer, weight, spread) + bar(hub, outer - 2.7, weight, spread)
    picture("icon_connected.svg", 5.32, 8.66, path(bars, DARK))

    middle, scale = (256, 256), 512 / 13
    tick = check((5.75 * scale, 9.0 * scale), 2.2 * scale, 4.1 * scale, WEIGHT * scale)
    # The mark fills a hole in the disc, so that it is white on any background.
    picture("result_succeeded.svg", 512, 512, path(tick, "#ffffff"), path(disc(middle, 256) + tick, GREEN), unit="")
    stop = disc(middle, 256) + rounded_rect(162, 162, 188, 188, 26)
    picture("result_failed.svg", 512, 512, path(stop, ORANGE), unit="")


def pump_pictures():
    pump = rasters.pump()
    picture("Cygnara.svg", 46.11, 30.74, image(pump, 46.11, 30.74))

    def ring(x, y):
        return f'<ellipse cx="{x}" cy="{y}" rx="25.2" ry="10.25" fill="none" stroke="{GREEN}" stroke-width="1.5"/>'

    x, y = (value * 111.13 / 420 for value in rasters.DISPLAY_MIDDLE)
    picture("ConfirmCode.svg", 111.13, 74.08, image(pump, 111.13, 74.08), ring(number(x), number(y)))

    # The ring extends above the body, so the picture has additional space at its top.
    top = 75.54 - 74.08
    x, y = (value * 111.13 / 420 for value in rasters.KEYS_MIDDLE)
    y += top
    keys = path(rounded_rect(x - 21.56 / 2, y - 11.41 / 2, 21.56, 11.41, 3.2), DARK)
    dots = [path(disc((x + side * 4.9, y), 1.9), "#fbfbfb") for side in (-1, 1)]
    picture("CancelOnPump.svg", 111.13, 75.54, image(pump, 111.13, 74.08, top), keys, *dots, ring(number(x), number(y)))

    picture("DeviceReader.svg", 63.24, 81.23, image(rasters.reader(), 63.24, 81.23))


def slab(a, b):
    """Projects a point on the front of the pump: `a` along its long side, `b` along its short one."""
    return 1.7 + 0.866 * (a + b), 49.3 + 0.45 * (b - a)


def curve(*points):
    return "C" + " ".join(f"{number(x)} {number(y)}" for x, y in points)


def slab_rect(left, near, right, far, radius):
    """Returns the rounded corners of a rectangle on the front as cubic curves, clockwise from the leftmost one."""
    sharp = ((left, near), (right, near), (right, far), (left, far))
    directions = ((1, 0), (0, 1), (-1, 0), (0, -1))
    corners = []
    for i, (a, b) in enumerate(sharp):
        (in_a, in_b), (out_a, out_b) = directions[i - 1], directions[i]
        handle = radius * (1 - 0.5523)
        corners.append([slab(a - in_a * radius, b - in_b * radius), slab(a - in_a * handle, b - in_b * handle),
                        slab(a + out_a * handle, b + out_b * handle), slab(a + out_a * radius, b + out_b * radius)])
    return corners


def closed(corners):
    first, *others = corners
    return move(first[0]) + curve(*first[1:]) + "".join(line(c[0]) + curve(*c[1:]) for c in others) + "Z"


def halves(points):
    """Splits a cubic curve in its middle."""
    def mid(p, q):
        return (p[0] + q[0]) / 2, (p[1] + q[1]) / 2

    ab, bc, cd = (mid(p, q) for p, q in zip(points, points[1:]))
    abc, bcd = mid(ab, bc), mid(bc, cd)
    return [points[0], ab, abc, mid(abc, bcd)], [mid(abc, bcd), bcd, cd, points[3]]


def pump_finger():
    outline, skin, slab_line = "#717272", "#efefef", "#727373"

    def stroke(d, colour, width, fill="none"):
        return (f'<path fill="{fill}" stroke="{colour}" stroke-width="{width}" stroke-linecap="round" '
                f'stroke-linejoin="round" d="{d}"/>')

    face = slab_rect(0, 0, 50, 34, 8)
    # The side below the front, from the leftmost to the rightmost point.
    thick = 5.2
    left, bottom, right = halves(face[0])[0][::-1], face[3][::-1], halves(face[2])[1][::-1]
    side = move(left[0])
    for first, *others in (left, bottom, right):
        side += line((first[0], first[1] + thick)) + curve(*((x, y + thick) for x, y in others))
    side += line(right[3])

    touch = slab(18.5, 17)

    def ring(radius, style):
        return (f'<ellipse cx="{number(touch[0])}" cy="{number(touch[1])}" rx="{number(radius * 1.2247)}" '
                f'ry="{number(radius * 0.6364)}" {style}/>')

    # Coordinates of the finger: along its axis from the tip, and across.
    lean = radians(-57)

    def on(u, v):
        u -= 1.6
        return touch[0] + 0.4 + u * cos(lean) - v * sin(lean), touch[1] + u * sin(lean) + v * cos(lean)

    def at_top(v):
        """Returns where the parallel to the axis at distance `v` meets the top of the picture."""
        return on(1.6 - (touch[1] + v * cos(lean)) / sin(lean), v)

    flank = ((44, 7.0), (37, 6.5), (31, 6.75), (26, 6.95), (22, 7.1), (18, 6.55), (14, 6.1), (10, 6.2), (6.5, 5.8),
             (2.2, 5.2), (0, 2.8))
    contour = move(at_top(-7.6)) + curve(*(on(u, -v) for u, v in flank), on(0, 0), *(on(u, v) for u, v in flank[::-1]),
                                         at_top(7.6))
    nail = move(on(10.2, -3.2)) + curve(*(on(u, v) for u, v in (
        (7, -3.7), (3.2, -3), (3, 0), (3.2, 3), (7, 3.7), (10.2, 3.2), (11.2, 1.6), (11.2, -1.6), (10.2, -3.2)))) + "Z"
    creases = "".join(move(on(u, -v)) + curve(on(u + 1, -v / 2), on(u + 1, v / 2), on(u, v))
                      for u, v in ((22.6, 3.4), (25.2, 2.4)))
    picture("PumpFinger.svg", 77.04, 70.76,
            stroke(closed(face), slab_line, 1.5), stroke(side, slab_line, 1.5),
            stroke(closed(slab_rect(4.5, 5, 32.5, 29, 3)), slab_line, 1),
            stroke(closed(slab_rect(38.5, 8, 44.5, 26, 3)), slab_line, 1),
            ring(9.2, f'fill="none" stroke="{GREEN}" stroke-width="1.5"'), ring(5.2, f'fill="{GREEN}"'),
            stroke(contour, outline, 1.5, skin), stroke(nail, outline, 1, "#ffffff"), stroke(creases, outline, 1))


def main():
    IMAGES.mkdir(parents=True, exist_ok=True)
    icons()
    pump_finger()
    pump_pictures()
    rasters.spinner(IMAGES / "busy.gif")


if __name__ == "__main__":
    main()
