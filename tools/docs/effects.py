#!/usr/bin/env python3
"""Keeps the parameter tables of docs/effects.md as the effects have them.

    tools/docs/effects.py WORKBENCH            writes the tables
    tools/docs/effects.py --check WORKBENCH    says what is out of date, and exits with 1 then

WORKBENCH is the program (build/bin/workbench). A table stands between two markers, <!-- parameters NAME --> and
<!-- end -->; everything else in the document is written by hand and stays. "stretchui" has no effect: its table comes
from its sheet and its layout.
"""

import argparse
import difflib
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENT = ROOT / "docs/effects.md"
SCRIPTS = ROOT / "resources/scripts"
PANEL_ONLY = "stretchui"
BLOCK = re.compile(r"(<!-- parameters (\w+) -->\n)(.*?)(<!-- end -->)", re.DOTALL)
MOST_DEFAULTS = 9  # of one row; more are told by their number


def run(workbench, *arguments):
    # The numbers are written as the locale writes them.
    environment = {**os.environ, "LC_ALL": "C.UTF-8"}
    return subprocess.run([workbench, *arguments], check=True, capture_output=True, text=True, encoding="utf-8",
                          env=environment).stdout


def effect_names(workbench):
    return [effect["name"] for effect in json.loads(run(workbench, "list", "--format", "json"))]


def rows_of(workbench, effect):
    parameters = json.loads(run(workbench, "params", effect, "--format", "json"))
    return [[str(each["index"]), each["id"], each["name"], each["rangeText"], each["defaultText"]]
            for each in parameters]


def script(ending):
    return (SCRIPTS / (PANEL_ONLY.upper() + ending)).read_text(encoding="utf-8")


def number(value, places=2):
    return f"{round(value, places):g}"


def rows_of_panel():
    """The cells that an input sets and an output gives back, with the names that the layout shows."""
    sheet = script(".trn")
    widgets = [part for part in re.split(r"[;{}]\s", script(".lio")) if re.search(r"\bname: .*\bbind: @", part)]
    constants = {name: float(value) for name, value in re.findall(r"^\s*(\w+): (-?[\d.]+);", sheet, re.MULTILINE)}
    rows = []
    for name, index in re.findall(r"^\s*(?:unlink )?(\w+): (?:round)?\(?in(\d+)\b", sheet, re.MULTILINE):
        bound = [widget for widget in widgets if re.search(rf"bind: @{name}\b", widget)]
        rows.append([index, name, *panel_cells(name, sheet, constants, constants["in" + index], bound)])
    outputs = re.findall(r"^\s*out(\d+) <==", sheet, re.MULTILINE)
    rows = sorted((row for row in rows if row[0] in outputs), key=lambda row: int(row[0]))
    if [row[0] for row in rows] != sorted(outputs, key=int):
        raise SystemExit(f"effects.py: cannot read every parameter of the {PANEL_ONLY} sheet")
    return rows


def panel_cells(name, sheet, constants, stored, widgets):
    """Name, range and default of a cell. What follows the sample rate is told for the sheet's own."""
    low = constants.get(name + "_min", 0)
    high = constants.get(name + "_max", constants["sample_rate"] / 2)
    title = localized(r"\bname: ", widgets[0]).rstrip(":")
    kind = widgets[0].split("(")[0].strip()
    if kind == "radio_button":
        items = [localized(r"\bname: ", widget) for widget in widgets]
        return [name.replace("_", " ").capitalize(), ", ".join(items), items[stored >= 0.5]]
    if kind == "checkbox":
        return [title, "Off, On", "On" if stored >= 0.5 else "Off"]
    if kind == "popup":
        items = re.findall(r'"(?:\$\$\$[^="]*=)?([^"]*)"', widgets[0].split("items:")[1])
        return [title, ", ".join(items), items[round(low + stored * (high - low))]]
    places = int(re.search(r"\bdecimal_places: (\d)", widgets[0]).group(1))
    unit = " " + localized(r"\bunit_label: ", widgets[0])
    bound = re.search(rf"\b{name}_filter <== {{ min_value: (\w+)", sheet).group(1)
    return [title, f"{number(constants[bound])}{unit} ... {number(high)}{unit}",
            number(low + stored * (high - low), places) + unit]


def localized(attribute, widget):
    return re.search(attribute + r'"(?:\$\$\$[^="]*=)?([^"]*)"', widget).group(1)


def merged(rows):
    """Parameters that differ in their numbers alone become one row."""
    groups = {}
    for row in rows:
        _, identifier, name, extent, _ = row
        key = (re.sub(r"\d+", "#", identifier), re.sub(r"\d+", "#", name), extent)
        groups.setdefault(key, []).append(row)
    return [group[0] if len(group) == 1 else merged_row(group) for group in groups.values()]


def merged_row(group):
    first, last = group[0], group[-1]
    return [indices([int(row[0]) for row in group]), f"{first[1]}...{last[1]}",
            name_of([row[2] for row in group]), first[3], defaults([row[4] for row in group])]


def indices(values):
    step = values[1] - values[0]
    if step == 1 and len(values) == values[-1] - values[0] + 1:
        return f"{values[0]}...{values[-1]}"
    return f"{values[0]}, {values[1]}...{values[-1]}" if len(values) > 2 else f"{values[0]}, {values[1]}"


def name_of(names):
    """Every number of the first name with the largest that stands at its place."""
    numbers = [[int(text) for text in re.findall(r"\d+", name)] for name in names]
    ranges = iter([f"{min(place)}...{max(place)}" for place in zip(*numbers)])
    return re.sub(r"\d+", lambda _: next(ranges), names[0])


def defaults(texts):
    if len(set(texts)) == 1:
        return texts[0]
    if len(texts) <= MOST_DEFAULTS:
        return ", ".join(texts)
    counts = {text: texts.count(text) for text in texts}
    return ", ".join(text if count == 1 else f"{count} times {text}" for text, count in counts.items())


def table(rows):
    lines = ["| index | id | name | range | default |", "|---|---|---|---|---|"]
    lines += [f"| {' | '.join(cell.replace('|', chr(92) + '|') for cell in row)} |" for row in merged(rows)]
    return "\n" + "\n".join(lines) + "\n\n"


def updated(document, workbench):
    """The document with the tables of today. Every effect has one, and nothing else."""
    wanted = sorted([*effect_names(workbench), PANEL_ONLY])
    found = [block[1] for block in BLOCK.findall(document)]
    if sorted(found) != wanted:
        missing, superfluous = set(wanted) - set(found), [name for name in found if name not in wanted]
        raise SystemExit(f"{DOCUMENT}: tables missing: {sorted(missing)}, unknown: {superfluous}, "
                         f"twice: {sorted({name for name in found if found.count(name) > 1})}")

    def block(match):
        name = match.group(2)
        rows = rows_of_panel() if name == PANEL_ONLY else rows_of(workbench, name)
        return match.group(1) + table(rows) + match.group(4)

    return BLOCK.sub(block, document)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--check", action="store_true")
    parser.add_argument("workbench")
    arguments = parser.parse_args()
    old = DOCUMENT.read_text(encoding="utf-8")
    new = updated(old, arguments.workbench)
    if not arguments.check:
        DOCUMENT.write_text(new, encoding="utf-8")
    elif new != old:
        sys.stdout.writelines(difflib.unified_diff(old.splitlines(True), new.splitlines(True), str(DOCUMENT),
                                                   "as the effects have them"))
        sys.exit(f"{DOCUMENT} is out of date: run tools/docs/effects.py {arguments.workbench}")


if __name__ == "__main__":
    main()
