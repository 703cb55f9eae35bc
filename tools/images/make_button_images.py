#!/usr/bin/env python3
"""Draws the pictures of the panels' small buttons.

usage: make_button_images.py [FOLDER]        FOLDER: where the pictures go, by default resources/images
"""
import math
import pathlib
import sys

from picture import DISABLED_OPACITY, NEUTRAL, head, render

SIDE = 16
CENTRE = SIDE / 2
LINE = 1.5


def reset():
    """Three quarters of a turn back to the start."""
    radius, start, end = 5.25, -70, 200  # degrees clockwise from the top; the tip is at the start
    points = [(CENTRE + radius * math.sin(math.radians(a)), CENTRE - radius * math.cos(math.radians(a)))
              for a in range(start, end + 1, 5)]
    arc = "polyline " + " ".join(f"{x:.3f},{y:.3f}" for x, y in points)
    return [arc] + head(*points[0], start - 90 + 20, 4)


def main():
    root = pathlib.Path(__file__).resolve().parents[2]
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else root / "resources" / "images"
    for name, strokes in (("RESET", reset()),):
        for state, opacity in (("", 1), ("_DISABLED", DISABLED_OPACITY)):
            for suffix, scale in (("", 1), ("_2X", 2)):
                commands = [f"stroke-width {LINE}", f"stroke {NEUTRAL}", *strokes]
                render(folder / f"{name}{state}{suffix}.png", commands, SIDE, scale, opacity)
    return 0


if __name__ == "__main__":
    sys.exit(main())
