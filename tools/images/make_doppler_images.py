#!/usr/bin/env python3
"""Draws the pictures beside the doppler panel's path choices, with ImageMagick's convert.

usage: make_doppler_images.py [FOLDER]        FOLDER: where the pictures go, by default resources/images
"""
import math
import pathlib
import sys

from picture import DISABLED_OPACITY, NEUTRAL, head, line, render

SIDE = 32
CENTRE = SIDE / 2
PATH = "#3D8FE8"  # readable on the dark and on the light panel
LINE = 1.75
HEAD = 6  # length of the arrow head's strokes


def dot(x, y):
    return f"circle {x},{y} {x + 2},{y}"


def listener():
    return [line(CENTRE - 3.5, CENTRE, CENTRE + 3.5, CENTRE), line(CENTRE, CENTRE - 3.5, CENTRE, CENTRE + 3.5)]


def straight():
    strokes = [line(8, 26, 8, 5)] + head(8, 5, 0, HEAD)
    return strokes, dot(8, 27), (5, 0)


def circular():
    radius = 11.5
    end = math.radians(300)
    x, y = CENTRE + radius * math.sin(end), CENTRE - radius * math.cos(end)
    points = [(CENTRE + radius * math.sin(math.radians(a)), CENTRE - radius * math.cos(math.radians(a)))
              for a in range(0, 301, 5)]
    arc = "polyline " + " ".join(f"{px:.3f},{py:.3f}" for px, py in points)
    return [arc] + head(x, y, 300 + 90 - 12, HEAD), dot(CENTRE, CENTRE - radius), (0, 0)


def draw(file, shape, enabled, scale):
    strokes, start, offset = shape
    path = PATH if enabled else NEUTRAL
    commands = [f"stroke-width {LINE}", f"stroke {NEUTRAL}", "push graphic-context",
                f"translate {offset[0]},{offset[1]}", *listener(), "pop graphic-context", f"stroke {path}", *strokes,
                "stroke none", f"fill {path}", start]
    render(file, commands, SIDE, scale, 1 if enabled else DISABLED_OPACITY)


def main():
    root = pathlib.Path(__file__).resolve().parents[2]
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else root / "resources" / "images"
    for name, shape in (("DOPPLERSTRAIGHTPATH", straight()), ("DOPPLERCIRCULARPATH", circular())):
        for state in ("", "_DISABLED"):
            for suffix, scale in (("", 1), ("_2X", 2)):
                draw(folder / f"{name}{state}{suffix}.png", shape, not state, scale)
    return 0


if __name__ == "__main__":
    sys.exit(main())
