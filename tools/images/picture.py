"""What the scripts that draw the panels' pictures share. ImageMagick's convert does the drawing."""
import math
import subprocess

NEUTRAL = "#868B94"  # readable on the dark and on the light panel
DISABLED_OPACITY = 0.55


def line(x1, y1, x2, y2):
    return f"line {x1:.3f},{y1:.3f} {x2:.3f},{y2:.3f}"


def head(x, y, heading, length):
    """An arrow tip at (x, y); `heading` in degrees, 0 up, clockwise."""
    strokes = []
    for side in (-1, 1):
        angle = math.radians(heading + 180 + side * 40)
        strokes.append(line(x, y, x + length * math.sin(angle), y - length * math.cos(angle)))
    return strokes


def render(file, commands, side, scale, opacity):
    """Writes a square PNG of side * scale pixels on a transparent ground; commands count in units of the side."""
    setup = [f"scale {scale},{scale}", "fill none", "stroke-linecap round", "stroke-linejoin round"]
    pixels = side * scale
    subprocess.run(["convert", "-size", f"{pixels}x{pixels}", "xc:none", "-draw", " ".join(setup + commands),
                    "-channel", "A", "-evaluate", "multiply", str(opacity), "+channel", "-strip", "-define",
                    "png:exclude-chunks=date,time", f"PNG32:{file}"], check=True)
