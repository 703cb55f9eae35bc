#!/usr/bin/env python3
"""Drives the real workbench window on a virtual screen: drag, undo, theme, screenshot, idle time.

usage: end_to_end.py WORKBENCH [SCREENSHOT.png]
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from virtual_screen import virtual_screen  # noqa: E402

SCREEN = (1280, 800)
PATIENCE = 20  # seconds
IDLE_SECONDS = 3
IDLE_LIMIT = 0.02  # of one core


class Tree:
    """The nodes of the window as the program describes them, by id and by name."""

    def __init__(self, text):
        self.nodes = []
        for line in text.splitlines():
            fields = line.lstrip(" ").split("\t")
            if len(fields) == 9:
                self.nodes.append(fields)

    def by_id(self, wanted):
        return next(node for node in self.nodes if node[0] == wanted)

    def first(self, role, name):
        return next(node for node in self.nodes if node[1] == role and node[2] == name)


def rect(node):
    return [float(field) for field in node[4:8]]


class Workbench:
    def __init__(self, program, folder):
        self.tree_file = folder / "tree"
        environment = dict(os.environ, SDL_AUDIODRIVER="dummy", QO_WORKBENCH_TREE=str(self.tree_file))
        environment.pop("WAYLAND_DISPLAY", None)
        self.process = subprocess.Popen([program], env=environment)

    def tree(self):
        """The state after all that has been done so far."""
        time.sleep(0.3)
        self.tree_file.unlink(missing_ok=True)
        end = time.monotonic() + PATIENCE
        while not self.tree_file.exists():
            assert self.process.poll() is None, "the workbench has ended"
            assert time.monotonic() < end, "the workbench does not answer"
            time.sleep(0.02)
        return Tree(self.tree_file.read_text(encoding="utf-8"))

    def cpu_seconds(self):
        threads = pathlib.Path(f"/proc/{self.process.pid}/task").iterdir()
        return sum(int((thread / "schedstat").read_text().split()[0]) for thread in threads) / 1e9


def xdotool(*arguments):
    subprocess.run(["xdotool", *[str(argument) for argument in arguments]], check=True)


def drag(start, end, steps=10):
    xdotool("mousemove", *start, "mousedown", 1)
    for step in range(1, steps + 1):
        place = [round(a + (b - a) * step / steps) for a, b in zip(start, end)]
        xdotool("mousemove", *place)
    xdotool("mouseup", 1)


def click(node):
    left, top, width, height = rect(node)
    xdotool("mousemove", round(left + width / 2), round(top + height / 2), "click", 1)


def pixels():
    """The screen as rows of three bytes a pixel."""
    raw = subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], check=True, capture_output=True).stdout
    width, height = SCREEN
    assert len(raw) == width * height * 3, f"{len(raw)} bytes"
    return [raw[row * width * 3 : (row + 1) * width * 3] for row in range(height)]


def decibels(tree, channel):
    text = tree.first("number", channel)[3]
    return float(text.split()[0])


def check_drag_and_undo(workbench):
    tree = workbench.tree()
    assert decibels(tree, "Left") == 0
    left, top, width, height = rect(tree.first("number", "Left"))
    # The knob stands at 0 dB, somewhat right of the middle, on the upper half of the row; a drag is relative.
    knob = (round(left + width * 0.546), round(top + height * 0.33))
    drag(knob, (knob[0] + 30, knob[1]))
    tree = workbench.tree()
    dragged = decibels(tree, "Left")
    assert dragged > 5, dragged
    assert decibels(tree, "Right") == dragged, "linked channels differ"
    click(tree.by_id("undo"))
    tree = workbench.tree()
    assert decibels(tree, "Left") == 0
    xdotool("key", "ctrl+y")
    assert decibels(workbench.tree(), "Left") == dragged
    xdotool("key", "ctrl+z")
    assert decibels(workbench.tree(), "Left") == 0


def check_playing(workbench):
    xdotool("key", "space")
    time.sleep(1)
    first = workbench.tree().by_id("time")[2]
    second = workbench.tree().by_id("time")[2]
    assert first != second, "the time stands still"
    click(workbench.tree().by_id("stop"))
    assert workbench.tree().by_id("time")[2] == workbench.tree().by_id("time")[2]


def wait_for_quiet_meters(workbench):
    end = time.monotonic() + PATIENCE
    while any(digit in workbench.tree().by_id("levels")[3] for digit in "0123456789"):
        assert time.monotonic() < end, "the meters don't come to rest"


def check_picture(workbench):
    xdotool("mousemove", 0, SCREEN[1] - 1)
    wait_for_quiet_meters(workbench)
    tree = workbench.tree()
    rows = pixels()
    assert rows == pixels(), "the picture changes by itself"
    # Every row of the panel's ground and of the list is there: nothing black, nothing torn.
    black = bytes(3)
    for y, row in enumerate(rows):
        assert row[:3] != black and row[-3:] != black, f"row {y} was not painted"
    assert len({bytes(row) for row in rows}) > 100, "there is hardly anything in the picture"
    # The same state painted anew, by going to the other theme and back, gives the same pixels.
    xdotool("key", "ctrl+t")
    light = workbench.tree()
    assert "light" in light.by_id("state")[2]
    assert pixels() != rows
    xdotool("key", "ctrl+t")
    assert "dark" in workbench.tree().by_id("state")[2]
    assert pixels() == rows, "painted in parts, the picture differs from the whole"
    assert tree.by_id("header")[4:8] == ["0", "0", str(SCREEN[0]), "40"]


def check_idle(workbench):
    time.sleep(0.5)
    shares = []
    # What else the machine does can only add to the time; the quietest of three looks tells most about the program.
    for _ in range(3):
        before = workbench.cpu_seconds()
        time.sleep(IDLE_SECONDS)
        shares.append((workbench.cpu_seconds() - before) / IDLE_SECONDS)
    share = min(shares)
    print(f"idle: {share * 100:.2f} % of a core")
    assert share < IDLE_LIMIT, share


def run(program, screenshot):
    with tempfile.TemporaryDirectory() as name:
        workbench = Workbench(program, pathlib.Path(name))
        try:
            workbench.tree()
            xdotool("search", "--sync", "--name", "Amplify - Workbench", "windowfocus")
            check_drag_and_undo(workbench)
            check_playing(workbench)
            check_picture(workbench)
            check_idle(workbench)
            if screenshot:
                subprocess.run(["import", "-window", "root", screenshot], check=True)
            workbench.process.terminate()
            assert workbench.process.wait(PATIENCE) == 0, "asked to end, the workbench did not end well"
        finally:
            if workbench.process.poll() is None:
                workbench.process.kill()


def main():
    with virtual_screen(SCREEN):
        run(sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else None)


if __name__ == "__main__":
    main()
