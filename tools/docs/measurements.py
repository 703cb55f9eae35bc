#!/usr/bin/env python3
"""Takes the figures of docs/measurements.md again and writes its tables.

    tools/docs/measurements.py [BUILD] [TABLE...]    all tables, or those that are named; BUILD is build/ at first
    tools/docs/measurements.py --list                the tables, and how long each takes
    tools/docs/measurements.py --only WORD programs  the rows of "programs" that hold the word; the others stay

A table stands between two markers, <!-- measured NAME --> and <!-- end -->; everything else in the document is written
by hand and stays. A table is written as soon as it is taken. The benches of the build (targets bench/all) are run as
they are. "programs" runs sox, ffmpeg and soundstretch beside ours where they are installed; what is not keeps its
figure, with a note. "panels" opens the workbench, on a virtual screen where there is none. No network. The machine
should be quiet.
"""

import argparse
import contextlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools/docs"))
sys.path.insert(0, str(ROOT / "tests/support"))

import peers  # noqa: E402
from virtual_screen import virtual_screen  # noqa: E402

DOCUMENT = ROOT / "docs/measurements.md"
BLOCK = re.compile(r"(<!-- measured (\w+) -->\n)(.*?)(<!-- end -->)", re.DOTALL)
SCREEN = (1600, 1000)
MINUTES = 5  # of music for other programs
EARLIER = " (an earlier run)"

# Of panels_bench: what the document calls it, and the bench.
PANEL_ROWS = (
    ("opening a panel of 26 plain nodes: read, built, painted", "Nodes26_Open"),
    ("opening one of 93", "Nodes93_Open"),
    ("repainting the 26 nodes", "Nodes26_Repaint/1", "Nodes26_Repaint/2"),
    ("repainting the 93", "Nodes93_Repaint/1", "Nodes93_Repaint/2"),
    ("a graph with 128 points, its grid, its rulers and a response of 4096 values all new", "Graph_RepaintAllNew/1",
     "Graph_RepaintAllNew/2"),
    ("repainting it as it was", "Graph_Repaint/1", "Graph_Repaint/2"),
    ("a step of dragging one of 128 points of the FFT filter, pointer to picture, with 4096 response values",
     "FFTFilter_DragOneOf128Points/1", "FFTFilter_DragOneOf128Points/2"),
    ("the same in the phase shifter's curve", "PhaseShifter_DragOneOf128Points/1",
     "PhaseShifter_DragOneOf128Points/2"),
    ("a step of dragging one of the notch filter's points", "Notch_DragOneOfSixPoints/1",
     "Notch_DragOneOfSixPoints/2"),
    ("the first panel of a process, 26 nodes, fonts looked up", "Process_FirstPanelOf26Nodes"),
    ("the first panel of a process, 93 nodes", "Process_FirstPanelOf93Nodes"),
    ("the workbench, from its start to its first picture", "Workbench_StartToFirstPicture"),
    ("repainting the whole Amplify panel (480 x 144)", "AmplifyPanel_FullRepaint"),
    ("one changed value: poll, set, repaint", "AmplifyPanel_OneValueChangedPolledAndRepainted"),
    ("poll of an open view of 34 observers", "Poll_ByObserver/34"),
    ("sheet of the 30-band equaliser alone, its parsed form known: initialise, solve (5.4 KB)", "GraphicEQ30_SheetAlone"),
    ("words of its layout alone (9.8 KB)", "GraphicEQ30_LayoutWordsAlone"),
    ("opening the 30-band equaliser's panel again, both scripts' parsed forms kept", "GraphicEQ30_Open"),
    ("its poll without a change", "GraphicEQ30_PollWithoutChange"),
    ("its poll with one changed parameter", "GraphicEQ30_PollWithOneChangedParameter"),
    ("repainting 5,000 different texts", "Texts_Repaint/5000"),
    ("pasting 20,000 characters into a text field, and painting it", "TextField_Paste/20000"),
    ("repainting the circular Doppler path of an hour at 100 m/s", "Doppler_RepaintAnHour/100/0"),
    ("the same when it has changed", "Doppler_RepaintAnHour/100/1"),
)
# Beside the defaults, of effects_bench.
SETTINGS = {"set": "all bands set", "128_points": "128 points", "clipped": "clipped by 6 dB",
            "a_third_up": "a third up"}
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def bench(build, name, pattern="", *options):
    """CPU nanoseconds of each bench, or the counter that it has instead; the median of three rounds. Whole programs
    have their time from their own processes."""
    command = [str(build / "bench" / name), "--benchmark_format=json", "--benchmark_repetitions=3",
               "--benchmark_report_aggregates_only=true", f"--benchmark_filter={pattern or '.'}", *options]
    run = json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout)
    results = {}
    for each in run["benchmarks"]:
        if each.get("aggregate_name") == "median":
            results[plain_name(each["run_name"])] = {**each, "ns": nanoseconds(each)}
    return results


def plain_name(name):
    return re.sub(r"/(manual_time|iterations:\d+|repeats:\d+)", "", name)


def nanoseconds(result):
    isManual = "manual_time" in result["run_name"]
    return result["real_time" if isManual else "cpu_time"] * NANOSECONDS[result["time_unit"]]


def figure(value):
    """With two or three digits that count."""
    places = 0 if value >= 30 else 1 if value >= 3 else 2
    return f"{value:,.{places}f}"


def duration(value):
    unit = "ns" if value < 1e3 else "us" if value < 1e6 else "ms"
    return f"{figure(value / NANOSECONDS[unit])} {unit}"


def microseconds(value):
    return figure(value / 1e3)


def table(head, rows):
    lines = [f"| {' | '.join(cells)} |" for cells in [head, *rows]]
    return "\n" + "\n".join([lines[0], "|---" * len(head) + "|", *lines[1:]]) + "\n\n"


@contextlib.contextmanager
def screen():
    if "DISPLAY" in os.environ:
        yield
    else:
        with virtual_screen(SCREEN):
            yield


def panels(build, _):
    with screen():
        results = bench(build, "panels_bench", "-^Archive")
    rows = []
    for text, *names in PANEL_ROWS:
        times = [duration(results[name]["ns"]) for name in names]
        rows.append([text, *times, *[""] * (2 - len(times))])
    return table(["what", "CPU time", "at scale 2"], rows)


def effects_of(build):
    return json.loads(subprocess.run([build / "bin/workbench", "list", "--format", "json"], check=True,
                                     stdout=subprocess.PIPE, text=True).stdout)


def archives(build, _):
    titles = {each["panelFiles"]: each["title"] for each in effects_of(build)}
    results = bench(build, "panels_bench", "^Archive")
    rows = []
    for name, parsed in results.items():
        if name.startswith("Archive_PugixmlAlone"):
            opened = results[name.replace("Archive_PugixmlAlone", "ArchivePanel_Open")]
            rows.append([titles[parsed["label"] + ".xml"], microseconds(parsed["ns"]), microseconds(opened["ns"]),
                         figure(opened["ns"] / parsed["ns"])])
    return table(["panel", "pugixml, us", "open, us", "ratio"], rows)


def sheets(build, _):
    results = bench(build, "sheet_bench")
    rows = [[size, *(duration(results[f"{name}/{size}"]["ns"]) for name in ("LoadSheet", "SetAllCells", "EditOneCell"))]
            for size in ("64", "256", "1024")]
    return table(["n", "load", "set every cell, update", "edit one cell in the middle"], rows)


def effects(build, _):
    titles = {each["name"]: each["title"] for each in effects_of(build)}
    # The bench says of itself when an effect is too slow.
    results = bench(build, "effects_bench", f"^[a-z0-9]+(/({'|'.join(SETTINGS)}))?$")
    rows = []
    for name, result in results.items():
        effect, _, setting = name.partition("/")
        title = titles[effect] + (f", {SETTINGS[setting]}" if setting else "")
        rows.append([title, figure(result["times_real_time"])])
    return table(["effect", "times real time"], sorted(rows, key=lambda row: row[0].lower()))


def transform(build, _):
    sizes = (64, 256, 1024, 4096, 16384, 65536)
    results = bench(build, "fft_bench", f"/({'|'.join(str(size) for size in sizes)})$")
    rows = []
    for size in sizes:
        row = [f"{size:,}"]
        for way in ("forward", "inverse"):
            ours, theirs = (results[f"{which}/{way}/{size}"]["ns"] for which in ("fft", "kissfft"))
            row += [f"{ours / 1e3:.3g}", f"{theirs / 1e3:.3g}", figure(theirs / ours)]
        rows.append(row)
    return table(["size", "forward, us", "kissfft", "ratio", "inverse, us", "kissfft", "ratio"], rows)


def cells_of(old):
    """The rows of a table by their first cells."""
    lines = [line.strip().strip("|").split("|") for line in old.splitlines() if line.startswith("|")]
    return {cells[0].strip(): [cell.strip() for cell in cells[1:]] for cells in lines[2:]}


def programs(build, old, only="", seconds=60 * MINUTES):
    """What a program does is told by its first word; ours beside the quickest of the others is the ratio."""
    kept = cells_of(old)
    with tempfile.TemporaryDirectory(dir=os.environ.get("TMPDIR")) as folder:
        measured = peers.measure(build, folder, seconds, only)
    for comparison, times, missing in measured:
        others = {name: value for name, value in times.items() if name != "ours"}
        before = dict(zip(("ours", *peers.PEERS), kept.get(comparison.title, [])))
        cells = [figure(times["ours"])]
        for name in peers.PEERS:
            if name in others:
                cells.append(f"{figure(others[name])} (`{what(name, comparison)}`)")
            elif name in missing and before.get(name):
                cells.append(before[name].removesuffix(EARLIER) + EARLIER)
            else:
                cells.append("")
        cells.append(figure(times["ours"] / max(others.values())) if others else "")
        kept[comparison.title] = cells
    titles = [comparison.title for comparison in peers.COMPARISONS]
    rows = [[title, *kept[title]] for title in titles if title in kept]
    return table(["effect", "ours", *peers.PEERS, "ratio"], rows)


def what(program, comparison):
    """The effect's name in the other program."""
    if program == "soundstretch":
        return comparison.soundstretch
    text = getattr(comparison, program)
    names = re.findall(r"(?:^|,)(\w+)", text) if program == "ffmpeg" else [text.split()[0]]
    names = [name for name in names if name != "aresample"]
    return names[0]


# What makes each table, and how many minutes that takes.
TABLES = {"panels": (panels, 1.5), "archives": (archives, 0.7), "sheets": (sheets, 0.3), "effects": (effects, 2.5),
          "transform": (transform, 0.7), "programs": (programs, 10)}


def tables_of(document):
    """What stands between the markers, by name."""
    found = {name: old for _, name, old, _ in BLOCK.findall(document)}
    if sorted(found) != sorted(TABLES):
        raise SystemExit(f"{DOCUMENT}: its tables are {sorted(found)}, and should be {sorted(TABLES)}")
    return found


def write(name, new):
    """Into the document as it is now: it may have been edited while the figures were taken."""
    document = DOCUMENT.read_text(encoding="utf-8")
    tables_of(document)
    DOCUMENT.write_text(BLOCK.sub(lambda match: match[1] + (new if match[2] == name else match[3]) + match[4], document),
                        encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--only", default="", metavar="WORD")
    parser.add_argument("names", nargs="*", metavar="BUILD|TABLE")
    arguments = parser.parse_args()
    if arguments.list:
        print("\n".join(f"{name}: {minutes:g} minutes" for name, (_, minutes) in TABLES.items()))
        return
    names = [name for name in arguments.names if name in TABLES]
    builds = [name for name in arguments.names if name not in TABLES] or [ROOT / "build"]
    if len(builds) > 1 or not (pathlib.Path(builds[0]) / "bench").is_dir():
        parser.error(f"neither a table nor a build with benches: {builds[-1]}")
    build = pathlib.Path(builds[0]).resolve()
    for name in names or TABLES:
        print(f"{name} ...", file=sys.stderr, flush=True)
        old = tables_of(DOCUMENT.read_text(encoding="utf-8"))[name]
        take = TABLES[name][0]
        write(name, take(build, old, arguments.only) if name == "programs" else take(build, old))


if __name__ == "__main__":
    main()
