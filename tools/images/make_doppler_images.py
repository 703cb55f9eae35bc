#!/usr/bin/env python3
"""Draws the pictures beside the doppler panel's path choices, with ImageMagick's convert.

usage: make_doppler_images.py [FOLDER]        FOLDER: where the pictures go, by default resources/images
"""
import math
import pathlib
import subprocess
import sys

SIDE = 32
CENTRE = SIDE / 2
# Readable on the dark and on the light panel.
PATH = "#3D8FE8"
NEUTRAL = "#868B94"
DISABLED_OPACITY = 0.55
LINE = 1.75
HEAD = 6  # length of the arrow head's strokes


def line(x1, y1, x2, y2):
    return f"line {x1:.3f},{y1:.3f} {x2:.3f},{y2:.3f}"


def head(x, y, heading):
    """An arrow tip at (x, y); `heading` in degrees, 0 up, clockwise."""
    strokes = []
    for side in (-1, 1):
        angle = math.radians(heading + 180 + side * 40)
        strokes.append(line(x, y, x + HEAD * math.sin(angle), y - HEAD * math.cos(angle)))
    return strokes


def dot(x, y):
    return f"circle {x},{y} {x + 2},{y}"


def listener():
    return [line(CENTRE - 3.5, CENTRE, CENTRE + 3.5, CENTRE), line(CENTRE, CENTRE - 3.5, CENTRE, CENTRE + 3.5)]


def straight():
    strokes = [line(8, 26, 8, 5)] + head(8, 5, 0)
    return strokes, dot(8, 27), (5, 0)


def circular():
    radius = 11.5
    end = math.radians(300)
    x, y = CENTRE + radius * math.sin(end), CENTRE - radius * math.cos(end)
    points = [(CENTRE + radius * math.sin(math.radians(a)), CENTRE - radius * math.cos(math.radians(a)))
              for a in range(0, 301, 5)]
    arc = "polyline " + " ".join(f"{px:.3f},{py:.3f}" for px, py in points)
    return [arc] + head(x, y, 300 + 90 - 12), dot(CENTRE, CENTRE - radius), (0, 0)


def draw(file, shape, enabled, scale):
    strokes, start, offset = shape
    path = PATH if enabled else NEUTRAL
    commands = [f"scale {scale},{scale}", "fill none", "stroke-linecap round", "stroke-linejoin round",
                f"stroke-width {LINE}", f"stroke {NEUTRAL}", "push graphic-context",
                f"translate {offset[0]},{offset[1]}", *listener(), "pop graphic-context", f"stroke {path}", *strokes,
                "stroke none", f"fill {path}", start]
    pixels = SIDE * scale
    opacity = 1 if enabled else DISABLED_OPACITY
    subprocess.run(["convert", "-size", f"{pixels}x{pixels}", "xc:none", "-draw", " ".join(commands), "-channel", "A",
                    "-evaluate", "multiply", str(opacity), "+channel", "-strip", "-define",
                    "png:exclude-chunks=date,time", f"PNG32:{file}"], check=True)


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
