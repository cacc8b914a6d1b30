# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""The pictures made of pixels: the pump, the reader and the spinner. The first two are small renderings in a studio of
two soft boxes, computed at several samples a pixel, so that their edges are smooth."""
from math import pi

import numpy as np
from PIL import Image

SAMPLES = 4
PUMP_SIZE = (420, 280)
READER_SIZE = (239, 307)
# Where the shapes that explain the pump are drawn over it, in its pixels.
DISPLAY = (30, 92, 282, 228)
DISPLAY_MIDDLE = (156, 160)
KEYS_MIDDLE = (156, 48)


def smooth(low, high, value):
    t = np.clip((value - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def box(x, y, left, top, right, bottom, radius):
    """Signed distance to a rounded rectangle, negative inside."""
    dx = np.abs(x - (left + right) / 2) - (right - left) / 2 + radius
    dy = np.abs(y - (top + bottom) / 2) - (bottom - top) / 2 + radius
    return np.hypot(np.maximum(dx, 0), np.maximum(dy, 0)) + np.minimum(np.maximum(dx, dy), 0) - radius


def pump():
    width, height = PUMP_SIZE
    y, x = np.mgrid[0:height * SAMPLES, 0:width * SAMPLES] / SAMPLES + 0.5 / SAMPLES
    body = box(x, y, 6, 14, 414, 262, 44)
    colour = np.zeros(x.shape + (4,))
    colour[..., :3] = 0.2
    colour[..., 3] = body < 0
    colour[box(x, y, *DISPLAY, 10) < 0, :3] = 0.06
    return finish(colour)


def reader():
    width, height = READER_SIZE
    y, x = np.mgrid[0:height * SAMPLES, 0:width * SAMPLES] / SAMPLES + 0.5 / SAMPLES
    colour = np.full(x.shape + (4,), 0.8)
    colour[..., 3] = np.hypot((x - 120) / 100, (y - 160) / 90) < 1
    return finish(colour)


def finish(colour):
    """Averages the samples of each pixel; colour counts by its coverage, so that no dark fringe appears."""
    rows, columns = colour.shape[0] // SAMPLES, colour.shape[1] // SAMPLES
    colour = colour.copy()
    colour[..., :3] *= colour[..., 3:]
    mean = colour.reshape(rows, SAMPLES, columns, SAMPLES, 4).mean(axis=(1, 3))
    mean[..., :3] /= np.maximum(mean[..., 3:], 1e-6)
    return Image.fromarray((np.clip(mean, 0, 1) * 255 + 0.5).astype(np.uint8), "RGBA")


def spinner(path):
    """31 frames of one turn: an arc that grows and shrinks as it runs on its track. A GIF's pixel is there or isn't, so
    the edges are blended towards a light ground and the pale track hides this on a dark one."""
    size, frames, samples = 74, 31, 4
    y, x = (np.mgrid[0:size * samples, 0:size * samples] + 0.5) / samples - size / 2
    radius, angle = np.hypot(x, y), np.arctan2(y, x)
    mid, track_half, arc_half = 28.0, 4.0, 4.0
    ground, track, accent = (np.array(c) / 255 for c in ((244, 245, 245), (222, 226, 225), (0x59, 0xC6, 0x8C)))
    pictures = []
    for frame in range(frames):
        turn = frame / frames
        head = 2 * pi * turn
        length = 2 * pi * (0.3 + 0.12 * np.cos(2 * pi * turn))
        behind = np.mod(head - angle, 2 * pi)
        on_arc = (np.abs(radius - mid) < arc_half) & (behind < length)
        for end in (head, head - length):
            on_arc |= np.hypot(x - mid * np.cos(end), y - mid * np.sin(end)) < arc_half
        on_track = np.abs(radius - mid) < track_half
        colour = np.where(on_arc[..., None], accent, np.where(on_track[..., None], track, ground))
        cover = (on_arc | on_track).astype(float)

        def mean(values):
            return values.reshape(size, samples, size, samples, -1).mean(axis=(1, 3))

        pictures.append(np.dstack([mean(colour), mean(cover) > 0.1]))
    save_gif(path, pictures)


def save_gif(path, pictures):
    # One palette for all frames: index 0 is the transparent ground, the rest is chosen by Pillow's median cut.
    strip = np.vstack(pictures)
    seen = strip[strip[..., 3] > 0][:, :3]
    sample = Image.fromarray((seen.reshape(1, -1, 3) * 255 + 0.5).astype(np.uint8), "RGB")
    palette = sample.quantize(63, method=Image.Quantize.MEDIANCUT)
    colours = [0xF4, 0xF5, 0xF5] + palette.getpalette()[:63 * 3]
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
