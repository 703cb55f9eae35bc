#!/usr/bin/env python3
"""Runs the example with a real window on a virtual screen: what it draws, what is heard, a panel that grows, its end.

usage: window_host.py WINDOW_HOST [SCREENSHOT.png]
"""

import array
import os
import pathlib
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from virtual_screen import virtual_screen  # noqa: E402

SCREEN = (1600, 1000)
PATIENCE = 20  # seconds
LEAST_HEARD = 1.5  # seconds
LONGEST = 60  # seconds that the example runs
SHORT = 0.2
SAMPLE_RATE = 48000
ADVANCED = (60, -28)  # of the first panel, from the window's left and bottom edge


def output(*command):
    return subprocess.run([str(part) for part in command], check=True, capture_output=True, text=True).stdout


def size_of(window):
    geometry = output("xdotool", "getwindowgeometry", "--shell", window)
    fields = dict(line.split("=") for line in geometry.split())
    return int(fields["WIDTH"]), int(fields["HEIGHT"])


def picture_of(window, size):
    raw = subprocess.run(["import", "-window", window, "-depth", "8", "rgb:-"], check=True, capture_output=True).stdout
    assert len(raw) == size[0] * size[1] * 3, f"{len(raw)} bytes for {size}"
    return raw


def colours(picture, size, columns):
    width = size[0] * 3
    rows = (picture[row * width : (row + 1) * width] for row in range(size[1]))
    return {row[3 * x : 3 * x + 3] for row in rows for x in columns}


def check_panels(window):
    size = size_of(window)
    picture = picture_of(window, size)
    for name, columns in (("first", range(0, size[0] // 2)), ("second", range(size[0] * 3 // 4, size[0]))):
        count = len(colours(picture, size, columns))
        assert count > 20, f"there is hardly anything in the {name} panel: {count} colours"


def check_growth(window, screenshot):
    before = size_of(window)
    output("xdotool", "mousemove", "--window", window, ADVANCED[0], before[1] + ADVANCED[1], "click", 1)
    end = time.monotonic() + PATIENCE
    while size_of(window)[1] <= before[1]:
        assert time.monotonic() < end, f"the window did not grow with its panel: {before}"
        time.sleep(0.05)
    time.sleep(0.3)
    if screenshot:
        output("import", "-window", window, screenshot)
    size = size_of(window)
    grown = picture_of(window, size)[before[1] * size[0] * 3 :]
    assert len(colours(grown, (size[0], size[1] - before[1]), range(size[0] // 2))) > 5, "nothing is in the new part"


def wait_for_sound(file):
    end = time.monotonic() + PATIENCE
    while file.stat().st_size < LEAST_HEARD * SAMPLE_RATE * 2 * 4:
        assert time.monotonic() < end, f"only {file.stat().st_size} bytes of sound"
        time.sleep(0.05)


def check_sound(file):
    """The device that writes what would be heard to a file: 32-bit floats, two channels."""
    samples = array.array("f", file.read_bytes()[: file.stat().st_size // 8 * 8])
    heard = samples[SAMPLE_RATE:]  # from half a second on
    peak = max(abs(sample) for sample in heard)
    assert 0.1 < peak <= 1, f"the peak is {peak}"
    assert heard[0::2] != heard[1::2], "left and right are the same"


def run(program, screenshot):
    with tempfile.TemporaryDirectory() as name:
        sound = pathlib.Path(name) / "sound"
        environment = dict(os.environ, SDL_AUDIODRIVER="disk", SDL_DISKAUDIOFILE=str(sound))
        environment.pop("WAYLAND_DISPLAY", None)
        process = subprocess.Popen([program, str(LONGEST)], env=environment)
        try:
            window = output("xdotool", "search", "--sync", "--onlyvisible", "--name", "Two tracks").split()[0]
            time.sleep(0.5)
            check_panels(window)
            check_growth(window, screenshot)
            wait_for_sound(sound)
            process.terminate()
            assert process.wait(PATIENCE) == 0, "asked to end, the example did not end well"
            check_sound(sound)
        finally:
            if process.poll() is None:
                process.kill()


def main():
    with virtual_screen(SCREEN):
        subprocess.run([sys.argv[1], str(SHORT)], check=True, timeout=PATIENCE,
                       env=dict(os.environ, SDL_AUDIODRIVER="dummy"))
        run(sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else None)


if __name__ == "__main__":
    main()
