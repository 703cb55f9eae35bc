#!/usr/bin/env python3
"""Draws the pictures of the panels' small buttons.

usage: make_button_images.py [FOLDER]        FOLDER: where the pictures go, by default resources/images
"""
import math
import pathlib
import sys

from picture import DISABLED_OPACITY, NEUTRAL, head, line, render

SIDE = 16
CENTRE = SIDE / 2
LINE = 1.5
SHAPE_SIDE = 20  # of the filters' shapes
ON_LIGHT = "#3A3D43"  # the themes' text colours, a little softer
ON_DARK = "#C9CCD3"


def reset():
    """Three quarters of a turn back to the start."""
    radius, start, end = 5.25, -70, 200  # degrees clockwise from the top; the tip is at the start
    points = [(CENTRE + radius * math.sin(math.radians(a)), CENTRE - radius * math.cos(math.radians(a)))
              for a in range(start, end + 1, 5)]
    arc = "polyline " + " ".join(f"{x:.3f},{y:.3f}" for x, y in points)
    return [arc] + head(*points[0], start - 90 + 20, 4)


def plus():
    return [line(CENTRE, CENTRE - 5, CENTRE, CENTRE + 5), *minus()]


def minus():
    return [line(CENTRE - 5, CENTRE, CENTRE + 5, CENTRE)]


def invert():
    """What lies on one side of the diagonal changes places with what lies on the other."""
    low, high = 3, 13
    return [f"stroke-opacity 0.55 {line(low, high, high, low)}", "stroke-opacity 1", line(low, low, high, high),
            *head(low, low, -45, 4.5), *head(high, high, 135, 4.5)]


def shelf(is_high, is_steep):
    """The response of a shelf that raises."""
    reach = 2 if is_steep else 6  # from the middle to where it is level again
    middle, low, high = SHAPE_SIDE / 2, SHAPE_SIDE - 6, 6
    left, right = (low, high) if is_high else (high, low)
    bend = reach * 0.6
    return [f"path 'M 2,{left} L {middle - reach - 2},{left} C {middle - reach + bend},{left} "
            f"{middle + reach - bend},{right} {middle + reach + 2},{right} L {SHAPE_SIDE - 2},{right}'"]


def main():
    root = pathlib.Path(__file__).resolve().parents[2]
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else root / "resources" / "images"
    for name, strokes in (("RESET", reset()),):
        for state, opacity in (("", 1), ("_DISABLED", DISABLED_OPACITY)):
            for suffix, scale in (("", 1), ("_2X", 2)):
                commands = [f"stroke-width {LINE}", f"stroke {NEUTRAL}", *strokes]
                render(folder / f"{name}{state}{suffix}.png", commands, SIDE, scale, opacity)
    buttons = [("P_Plus_N", SIDE, plus()), ("P_Minus_N", SIDE, minus()), ("SP_Invert_Sm_N", SIDE, invert())]
    for place in ("Low", "High"):
        for kind in ("Steep", "Gentle"):
            buttons.append((f"{place}Shelf_{kind}_N", SHAPE_SIDE, shelf(place == "High", kind == "Steep")))
    for name, side, strokes in buttons:
        for theme, colour in (("", ON_LIGHT), ("_D", ON_DARK)):
            for suffix, scale in (("", 1), ("_2X", 2)):
                commands = [f"stroke-width {LINE}", f"stroke {colour}", *strokes]
                render(folder / f"{name}{theme}{suffix}.png", commands, side, scale, 1)
    return 0


if __name__ == "__main__":
    sys.exit(main())
