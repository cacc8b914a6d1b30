# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""Renders the raster pictures: the pump, the reader and the spinner. Pump and reader are lit by two soft boxes, and
several samples per pixel make their edges smooth."""
from math import pi

import numpy as np
from PIL import Image

SAMPLES = 4
PUMP_SIZE = (420, 280)
READER_SIZE = (239, 307)
# Parts of the pump, in pixels of its picture. make-images.py draws marks over some of them.
DISPLAY = (33, 94, 287, 234)
DISPLAY_MIDDLE = (160, 170)
KEYS_MIDDLE = (160, 46)
KEYS_APART = 18.5
RESERVOIR = (341, 78, 389, 226)


def smooth(low, high, value):
    t = np.clip((value - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def box(x, y, left, top, right, bottom, radius):
    """Returns the signed distance to a rounded rectangle, which is negative inside."""
    dx = np.abs(x - (left + right) / 2) - (right - left) / 2 + radius
    dy = np.abs(y - (top + bottom) / 2) - (bottom - top) / 2 + radius
    return np.hypot(np.maximum(dx, 0), np.maximum(dy, 0)) + np.minimum(np.maximum(dx, dy), 0) - radius


def unit(vector):
    return vector / np.maximum(np.linalg.norm(vector, axis=-1, keepdims=True), 1e-9)


def studio(direction):
    """Returns the light from a direction (x right, y down, z to the viewer): a dim room, a wide soft box at the upper
    left and a narrow one at the right."""
    x, y, z = direction[..., 0], direction[..., 1], direction[..., 2]
    room = 0.10 + 0.16 * smooth(0.6, -0.9, y)
    wide = smooth(-0.05, 0.35, -0.45 * x - 0.75 * y + 0.25 * z - 0.22) * smooth(1.05, 0.75, np.abs(x + 0.25) + 0.2)
    strip = smooth(0.22, 0.02, np.abs(x - 0.70)) * smooth(0.8, 0.3, np.abs(y))
    return room + 1.35 * wide + 0.5 * strip


def shade(albedo, normal, view, gloss, light=(-0.42, -0.68, 0.62)):
    """Adds diffuse light from the lamp and the room, and the reflection of the studio, stronger at grazing angles."""
    lamp = np.array(light) / np.linalg.norm(light)
    facing = np.clip((normal * -view).sum(-1), 0, 1)
    mirrored = view + 2 * facing[..., None] * normal
    fresnel = 0.04 + 0.96 * (1 - facing) ** 5
    diffuse = 0.42 + 0.28 * -normal[..., 1] + 0.62 * np.clip((normal * lamp).sum(-1), 0, 1)
    reflection = gloss * np.minimum(fresnel * 2.2, 1) * studio(mirrored)
    return albedo * np.clip(diffuse, 0.08, None)[..., None] + reflection[..., None]


def rise(distance, width, height):
    """Returns the height of a rounded edge at a distance inside an outline."""
    t = np.clip(distance / width, 0, 1)
    return height * np.sqrt(1 - (1 - t) ** 2)


def pump():
    width, height = PUMP_SIZE
    y, x = np.mgrid[0:height * SAMPLES, 0:width * SAMPLES] / SAMPLES + 0.5 / SAMPLES
    body = box(x, y, 4, 12, 416, 268, 56)
    glass = box(x, y, 20, 82, 300, 246, 20)
    screen = box(x, y, *DISPLAY, 10)
    keys = box(x, y, KEYS_MIDDLE[0] - 41, KEYS_MIDDLE[1] - 21.5, KEYS_MIDDLE[0] + 41, KEYS_MIDDLE[1] + 21.5, 12)
    window = box(x, y, *RESERVOIR, 19)
    seam = np.abs(x - 316)

    # The height of the surface over the plane of the picture; its slope determines the light.
    surface = rise(-body, 30, 17) + 9 * (1 - ((x - 210) / 206) ** 2) * (1 - ((y - 140) / 128) ** 2)
    surface -= 3.4 * smooth(3.4, 0, seam)
    surface -= 2.0 * smooth(0.5, -3, glass) + 1.8 * smooth(0.5, -4, keys) + 3.2 * smooth(4, -2, window)
    slope_y, slope_x = np.gradient(surface, 1 / SAMPLES)
    normal = unit(np.dstack([-slope_x, -slope_y, np.ones_like(x)]))
    view = np.broadcast_to(np.array([0.0, 0.0, -1.0]), normal.shape)

    shell = np.where((x > 316)[..., None], (0.185, 0.188, 0.195), (0.135, 0.137, 0.143))
    colour = shade(shell, normal, view, 0.85)
    colour *= (1 - 0.55 * smooth(2.8, 0, seam))[..., None]
    colour += 0.10 * (smooth(3.2, 0, -body) * smooth(268, 60, y))[..., None]
    colour = np.where((keys < -1)[..., None], colour * 0.62, colour)
    for side in (-1, 1):
        dot = np.hypot(x - KEYS_MIDDLE[0] - KEYS_APART * side, y - KEYS_MIDDLE[1])
        colour = colour + smooth(5.4, 4.2, dot)[..., None] * (np.array((0.62, 0.63, 0.64)) - colour)

    colour = np.where((glass < 0)[..., None], panel(x, y, glass, screen), colour)
    colour = np.where((window < 0)[..., None], reservoir(x, y, window), colour)
    return finish(np.dstack([np.clip(colour, 0, 1) ** (1 / 1.25), body < 0]), soften=2)


def panel(x, y, glass, screen):
    """Returns the black glass with a reflection at its upper left, over a faintly lit display with a status line."""
    fall = np.clip((y - 82) / 164, 0, 1)[..., None]
    black = np.array((0.055, 0.058, 0.064)) - 0.025 * fall
    near = np.exp(-(((x - DISPLAY_MIDDLE[0]) / 110) ** 2 + ((y - DISPLAY_MIDDLE[1]) / 56) ** 2))[..., None]
    lit = (np.array((0.085, 0.165, 0.175)) - np.array((0.035, 0.055, 0.055)) * fall) * (0.85 + 0.5 * near)
    left, top, right, _ = DISPLAY
    marks = np.minimum.reduce([box(x, y, left + 14 + 7 * i, top + 22 - 3.4 * (i + 1), left + 18.5 + 7 * i, top + 24, 1)
                               for i in range(4)])
    battery = np.abs(box(x, y, right - 40, top + 11, right - 17, top + 23, 3)) - 0.9
    battery = np.minimum(battery, box(x, y, right - 37, top + 14, right - 25, top + 20, 1))
    battery = np.minimum(battery, box(x, y, right - 15.5, top + 14.5, right - 13.5, top + 19.5, 0.8))
    rule = box(x, y, left + 14, top + 32, right - 14, top + 33, 0.4)
    lit = lit + 0.42 * smooth(0.3, -0.3, np.minimum(marks, battery))[..., None]
    lit = lit + 0.10 * smooth(0.3, -0.3, rule)[..., None]
    face = np.where((screen < 0)[..., None], lit, black)
    sweep = smooth(0, 30, 200 - x - (y - 82) * 0.62) * (0.45 + 0.55 * smooth(246, 60, y))
    edge = smooth(1.6, 0, np.abs(glass + 1.2)) * smooth(150, 60, y)
    return face + 0.06 * sweep[..., None] + 0.16 * edge[..., None]


def reservoir(x, y, window):
    """Returns the window of the insulin reservoir: a clear barrel with marks, the liquid, and the plunger below it."""
    left, top, right, bottom = RESERVOIR
    round_ = np.clip((x - (left + right) / 2) / ((right - left) / 2), -1, 1)
    level = bottom - 52
    liquid, plunger = np.array((0.50, 0.66, 0.66)), np.array((0.16, 0.165, 0.17))
    face = np.where((y < level)[..., None], liquid, plunger)
    face = face * (0.35 + 0.65 * np.sqrt(1 - 0.92 * round_ ** 2))[..., None]
    for ring in (level + 2, level + 10):
        face = face * (1 - 0.6 * smooth(2.2, 0, np.abs(y - ring)))[..., None]
    marks = np.minimum.reduce([box(x, y, right - length, mark, right - 6, mark + 1.6, 0.5)
                               for mark, length in zip(range(top + 26, level - 2, 11), (22, 17) * 8)])
    face = face * (1 - 0.55 * smooth(0.5, -0.3, marks))[..., None]
    gleam = smooth(0.20, 0.05, np.abs(round_ + 0.52)) * smooth(-5, -11, window)
    return face * (0.45 + 0.55 * smooth(0, -6, window))[..., None] + 0.24 * gleam[..., None]


def reader():
    """Renders the reader by ray marching along parallel rays, from above and in front."""
    width, height = READER_SIZE
    scale, pitch = 112.0, 0.80  # pixels per unit, radians below the horizon
    row, column = np.mgrid[0:height * SAMPLES, 0:width * SAMPLES] / SAMPLES + 0.5 / SAMPLES
    u, v = ((column - 119.5) / scale).ravel(), ((166 - row) / scale).ravel()
    upward, forward = np.array([0, np.sin(pitch), np.cos(pitch)]), np.array([0, np.cos(pitch), -np.sin(pitch)])
    origin = u[:, None] * np.array([1.0, 0, 0]) + v[:, None] * upward - 4 * forward
    cables = [bezier((0.62, 0.62), (0.9, 0.95), (0.62, 1.35), (0.92, 2.4)),
              bezier((-0.6, -0.62), (-1.0, -1.0), (-0.75, -1.4), (-0.95, -2.4))]

    def cable(p):
        flat = np.full(len(p), 9.0)
        for points in cables:
            for a, b in zip(points[:-1], points[1:]):
                along = np.clip(((p[:, :2] - a) @ (b - a)) / ((b - a) @ (b - a)), 0, 1)
                flat = np.minimum(flat, np.linalg.norm(p[:, :2] - a - along[:, None] * (b - a), axis=1))
        return np.hypot(flat, p[:, 2] - 0.05) - 0.042

    def dome(p):
        r, z = np.hypot(p[:, 0], p[:, 1]), p[:, 2]
        foot = np.hypot(np.maximum(r - 0.93, 0), np.maximum(np.abs(z - 0.13) - 0.08, 0)) - 0.05
        k = np.sqrt((r / 0.985) ** 2 + ((z - 0.2) / 0.5) ** 2)
        g = np.sqrt((r / 0.985 ** 2) ** 2 + ((z - 0.2) / 0.25) ** 2)
        cupola = np.maximum(k * (k - 1) / np.maximum(g, 1e-6), 0.215 - z)
        cupola = np.maximum(cupola, -(np.hypot(r - 0.40, z - 0.665) - 0.028))
        return np.minimum(foot, cupola)

    def field(p):
        return np.minimum(dome(p), cable(p))

    reach, alive = np.zeros(len(u)), np.arange(len(u))
    hit = np.zeros(len(u), bool)
    for _ in range(90):
        p = origin[alive] + reach[alive, None] * forward
        step = field(p)
        reach[alive] += 0.85 * step
        hit[alive[step < 0.0012]] = True
        alive = alive[(step >= 0.0012) & (reach[alive] < 8)]
        if not len(alive):
            break
    p = origin[hit] + reach[hit, None] * forward
    offsets = 0.0015 * np.eye(3)
    normal = unit(np.stack([field(p + o) - field(p - o) for o in offsets], axis=-1))
    # The axes of studio(): right, down, to the viewer.
    frame = np.stack([np.array([1.0, 0, 0]), -upward, -forward])
    seen = normal @ frame.T
    wire = cable(p) < dome(p)
    r, z = np.hypot(p[:, 0], p[:, 1]), p[:, 2]
    albedo = np.where((wire | (z < 0.205))[:, None], (0.33, 0.335, 0.34), (0.66, 0.67, 0.68))
    colour = shade(albedo, seen, np.broadcast_to(np.array([0.0, 0, -1.0]), seen.shape), np.where(wire, 0.25, 0.42))
    shadow = smooth(0.0, 0.30, dome(p + np.array([-0.16, -0.05, 0.16])))
    colour = np.where(wire[:, None], colour * (0.45 + 0.55 * shadow)[:, None], colour)
    lamp = smooth(0.085, 0.065, r)
    colour = colour * (1 - lamp)[:, None] + lamp[:, None] * np.array([0x59, 0xC6, 0x8C]) / 255 * 1.05
    pixels = np.zeros((len(u), 4))
    pixels[hit, :3] = np.clip(colour, 0, 1) ** (1 / 1.15)
    # The cable fades out at the edge of the picture.
    pixels[hit, 3] = np.where(wire, smooth(0, 34, np.minimum(row, height - row).ravel()[hit]), 1)
    return finish(pixels.reshape(row.shape + (4,)), soften=1)


def bezier(a, b, c, d, pieces=18):
    t = np.linspace(0, 1, pieces + 1)[:, None]
    return ((1 - t) ** 3 * np.array(a) + 3 * (1 - t) ** 2 * t * np.array(b) + 3 * (1 - t) * t ** 2 * np.array(c)
            + t ** 3 * np.array(d))


def finish(colour, soften):
    """Averages the samples of each pixel; colours are weighted by coverage, to avoid dark fringes. Softens the picture,
    because the dialogs scale it to a half or a quarter and Qt interpolates only four pixels."""
    rows, columns = colour.shape[0] // SAMPLES, colour.shape[1] // SAMPLES
    colour = colour.copy()
    colour[..., :3] *= colour[..., 3:]
    mean = colour.reshape(rows, SAMPLES, columns, SAMPLES, 4).mean(axis=(1, 3))
    for _ in range(soften):
        for axis in (0, 1):
            mean = (np.roll(mean, 1, axis) + 2 * mean + np.roll(mean, -1, axis)) / 4
    mean[..., :3] /= np.maximum(mean[..., 3:], 1e-6)
    return Image.fromarray((np.clip(mean, 0, 1) * 255 + 0.5).astype(np.uint8), "RGBA")


def spinner(path):
    """Draws one turn in 31 frames: an arc that grows and shrinks while it moves on a track. GIF has no semi-transparent
    pixels, so the edges are blended with a light background; the pale track hides this on a dark one."""
    size, frames, samples = 74, 31, 4
    y, x = (np.mgrid[0:size * samples, 0:size * samples] + 0.5) / samples - size / 2
    radius, angle = np.hypot(x, y), np.arctan2(y, x)
    mid, track_half, arc_half = 28.0, 4.4, 3.3
    background, track, accent = (np.array(c) / 255 for c in ((240, 240, 240), (220, 224, 223), (0x59, 0xC6, 0x8C)))
    pictures = []
    for frame in range(frames):
        turn = frame / frames
        head = 2 * pi * turn
        length = 2 * pi * (0.3 + 0.12 * np.cos(2 * pi * turn))
        lag = np.mod(head - angle, 2 * pi)
        on_arc = (np.abs(radius - mid) < arc_half) & (lag < length)
        for end in (head, head - length):
            on_arc |= np.hypot(x - mid * np.cos(end), y - mid * np.sin(end)) < arc_half
        on_track = np.abs(radius - mid) < track_half
        colour = np.where(on_arc[..., None], accent, np.where(on_track[..., None], track, background))
        cover = (on_arc | on_track).astype(float)

        def mean(values):
            return values.reshape(size, samples, size, samples, -1).mean(axis=(1, 3))

        pictures.append(np.dstack([mean(colour), mean(cover) > 0.35]))
    save_gif(path, pictures)


def save_gif(path, pictures):
    # One palette for all frames: index 0 is transparent, and Pillow's median cut selects the others.
    strip = np.vstack(pictures)
    seen = strip[strip[..., 3] > 0][:, :3]
    sample = Image.fromarray((seen.reshape(1, -1, 3) * 255 + 0.5).astype(np.uint8), "RGB")
    palette = sample.quantize(63, method=Image.Quantize.MEDIANCUT)
    colours = [0xF0, 0xF0, 0xF0] + palette.getpalette()[:63 * 3]
    lookup = np.array(colours).reshape(-1, 3) / 255
    frames = []
    for picture in pictures:
        distance = ((picture[..., None, :3] - lookup[None, None, 1:]) ** 2).sum(axis=-1)
        index = np.where(picture[..., 3] > 0, distance.argmin(axis=-1) + 1, 0).astype(np.uint8)
        frame = Image.fromarray(index, "P")
        frame.putpalette(colours)
        frames.append(frame)
    frames[0].save(path, save_all=True, append_images=frames[1:], duration=30, loop=0, transparency=0, disposal=2,
                   optimize=False)
