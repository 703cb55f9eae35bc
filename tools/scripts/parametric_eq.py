#!/usr/bin/env python3
"""Writes the sheet and the layout of the parametric equaliser.

usage: parametric_eq.py [FOLDER]        FOLDER: where the scripts go, by default resources/scripts
"""
import pathlib
import sys

PASSES = ("high_pass", "low_pass")
SHELVES = ("low_shelf", "high_shelf")
PEAKS = tuple(f"peak{i}" for i in range(1, 6))
BANDS = ("high_pass", "low_shelf", *PEAKS, "high_shelf", "low_pass")
GAINED = BANDS[1:-1]

# The text of a band's button and handle, its tool tip; the frequency that it begins with, and whether it is on then.
SHOWN = {
    "high_pass": ("HP", "$$$/ParametricEQ/HighPass=High Pass", 30, False),
    "low_shelf": ("L", "$$$/ParametricEQ/LowShelf=Low Shelf", 100, True),
    "peak1": ("1", "$$$/ParametricEQ/Peak1=Peak 1", 200, True),
    "peak2": ("2", "$$$/ParametricEQ/Peak2=Peak 2", 500, True),
    "peak3": ("3", "$$$/ParametricEQ/Peak3=Peak 3", 1000, True),
    "peak4": ("4", "$$$/ParametricEQ/Peak4=Peak 4", 2500, True),
    "peak5": ("5", "$$$/ParametricEQ/Peak5=Peak 5", 6000, True),
    "high_shelf": ("H", "$$$/ParametricEQ/HighShelf=High Shelf", 10000, True),
    "low_pass": ("LP", "$$$/ParametricEQ/LowPass=Low Pass", 18000, False),
}

# The natural ranges of the effect's parameters.
RANGES = {
    "master_gain": (-30, 30), "graph_range": (6, 60), "frequency": (20, 20000), "gain": (-20, 20), "q": (0.1, 100),
    "width": (1, 20000), "slope": (6, 48), "highest_gain": (-120, 120),
}

CONTENT_WIDTH = 774
CONTENT_HEIGHT = 232


def parameters():
    """Of every parameter the cell, the range that it has (none for a switch) and the default."""
    rows = [("master_gain", "master_gain", 0), ("graph_range", "graph_range", 24), ("constant_width", None, 0),
            ("keep_headroom", None, 0)]
    rows += [(f"{band}_on", None, int(SHOWN[band][3])) for band in BANDS]
    rows += [(f"{band}_frequency", "frequency", SHOWN[band][2]) for band in BANDS]
    rows += [(f"{band}_gain", "gain", 0) for band in GAINED]
    rows += [(f"{band}_q", "q", 1) for band in PEAKS]
    rows += [(f"{band}_width", "width", SHOWN[band][2]) for band in PEAKS]
    rows += [(f"{band}_steep", None, 1) for band in SHELVES]
    rows += [(f"{band}_slope", "slope", 24) for band in PASSES]
    rows += [("highest_gain", "highest_gain", 0)]
    return rows


def normalised(range_name, value):
    if range_name is None:
        return value
    low, high = RANGES[range_name]
    return float(f"{(value - low) / (high - low):.9g}")


def rounded(value, places=0):
    """To decimal places; for values that are not negative."""
    factor = 10 ** places
    scaled = f"({value}) * {factor} + 0.5" if factor > 1 else f"{value} + 0.5"
    whole = f"({scaled} - ({scaled}) % 1)"
    return f"{whole} / {factor}" if factor > 1 else whole


def description(band):
    """What is known of a band besides its numbers."""
    if band in PASSES:
        return f'serialize_regular(({rounded(f"{band}_slope / 6")}) * 6) + " dB/oct"'
    if band in SHELVES:
        return f'{band}_steep ? "12 dB/oct" : "6 dB/oct"'
    return (f'constant_width ? "Q " + serialize_regular({rounded(f"{band}_effective_q", 2)}) : '
            f'serialize_regular({rounded(f"{band}_frequency / {band}_q")}) + " Hz"')


def sheet():
    lines = ["sheet ParametricEQ", "{", "constant:"]
    for name, (low, high) in RANGES.items():
        lines += [f"    {name}_min: {low};", f"    {name}_max: {high};", f"    {name}_range: {name}_max - {name}_min;"]
    lines += ["", f"    content_width: {CONTENT_WIDTH};", f"    content_height: {CONTENT_HEIGHT};", "", "input:"]
    rows = parameters()
    lines += [f"    in{i}: {normalised(scale, value)};" for i, (_, scale, value) in enumerate(rows)]
    lines += ["    sample_rate: 44100;", "", "    // What the graph shows selected; the effect does not know of it.",
              "    selected_band: -1;", "", "interface:"]
    for i, (cell, scale, _) in enumerate(rows[:-1]):
        value = f"(in{i} * {scale}_range) + {scale}_min" if scale else f"in{i} >= 0.5"
        lines.append(f"    unlink {cell}: {value};")
    last = len(rows) - 1
    lines += ["    curve;", "", f"    highest_gain <== (in{last} * highest_gain_range) + highest_gain_min;",
              "    highest_frequency <== sample_rate / 2 < frequency_max ? sample_rate / 2 : frequency_max;", ""]
    for name in ("master_gain", "graph_range", "gain", "q", "width", "slope"):
        lines += [f"    {name}_filter <== {{ min_value: {name}_min,", f"        max_value: {name}_max }};"]
    lines += ["    frequency_filter <== { min_value: frequency_min,", "        max_value: highest_frequency };", "",
              "    lowest_shown <== -graph_range;", "    bands_on <== [",
              "        " + ", ".join(f"{band}_on" for band in BANDS[:5]) + ",",
              "        " + ", ".join(f"{band}_on" for band in BANDS[5:]) + "];",
              "    response <== get_curve_data({ index: 0,", "        size: content_width });", ""]
    for band in PEAKS:
        quality = f"{band}_frequency / {band}_width"
        lines += [f"    {band}_width_q <== {quality};", f"    {band}_effective_q <== {band}_width_q > q_max ? q_max :",
                  f"        {band}_width_q < q_min ? q_min : {band}_width_q;"]
    lines += [f"    {band}_text <== {description(band)};" for band in BANDS]
    sign = '(highest_gain > 0.05 ? "+" : "")'
    tenths = "(highest_gain + highest_gain_max) * 10 + 0.5"
    lines += [f"    highest_gain_tenths <== {tenths} - ({tenths}) % 1 - highest_gain_max * 10;",
              f'    highest_gain_text <== {sign} + serialize_regular(highest_gain_tenths / 10) + " dB";']
    lines += ["", "logic:",
              "    // The handles in the graph and the numbers below it are the same, whichever are moved.",
              "    when (sample_rate > 0) relate", "    {", "        curve <== ["]
    for band in BANDS:
        height = f"y: {band}_gain" if band in GAINED else "y: 0, movable_y: false"
        lines.append(f"            {{ x: {band}_frequency, {height} }}" + ("," if band != BANDS[-1] else "];"))
    targets, sources = [], []
    for i, band in enumerate(BANDS):
        targets.append(f"{band}_frequency")
        sources.append(f"curve[{i}].x")
        if band in GAINED:
            targets.append(f"{band}_gain")
            sources.append(f"curve[{i}].y > gain_max ? gain_max : curve[{i}].y < gain_min ? gain_min : curve[{i}].y")
    lines.append("        " + ", ".join(targets[:8]) + ",")
    lines.append("            " + ", ".join(targets[8:]) + " <== [")
    lines += [f"            {source}" + ("," if i + 1 < len(sources) else "];") for i, source in enumerate(sources)]
    lines += ["    }", "", "output:"]
    for i, (cell, scale, _) in enumerate(rows[:-1]):
        lines.append(f"    out{i} <== " + (f"({cell} - {scale}_min) / {scale}_range;" if scale else f"{cell} ? 1 : 0;"))
    return lines + ["}"]


def number(band, kind, unit, rest):
    text = f"aud_edit_number(bind: @{band}_{kind}, min_max_filter: @{kind}_filter, use_slider: false,"
    unit_label = f'digits: 5, unit_label: "{unit}", ' if unit else "digits: 5, "
    key, _, name = SHOWN[band][1].partition("=")
    what = "Q" if kind == "q" else kind.capitalize()
    return [text, f"    {unit_label}{rest},", f'    alt: "{key}{what}={what} of {name}");']


FREQUENCY = ("max_digits: 5, decimal_places: 1, trailing_zeroes: false, increment: 10,\n"
             "    hottext_scale: @hotttext_scale_log")
GAIN = "decimal_places: 1, always_show_sign: true, increment: 0.5"
Q = "decimal_places: 2, increment: 0.1, hottext_scale: @hotttext_scale_log"
SLOPE = "decimal_places: 0, increment: 6"


def in_column(lines):
    return ["column()", "{"] + ["    " + line for part in lines for line in part.split("\n")] + ["}"]


def column(band):
    name, tip, _, _ = SHOWN[band]
    lines = [f'toggle_button(name: "{name}", bind: @{band}_on, button_style: @raised, horizontal: align_fill,',
             f'    alt: "{tip}");']
    lines += number(band, "frequency", "Hz", FREQUENCY)
    text = f"display_text(value: @{band}_text, characters: 9);"
    if band in PASSES:
        # The row of the gains stays empty.
        slope = number(band, "slope", "dB", SLOPE)
        lines += ["column(margin: [32, 0, 0, 0])", "{"] + ["    " + line for line in [*slope, text]] + ["}"]
        return in_column(lines)
    lines += number(band, "gain", "dB", GAIN)
    if band in SHELVES:
        picture = "LowShelf" if band == "low_shelf" else "HighShelf"
        lines += [f'aud_picture_toggle_button(bind: @{band}_steep, on_image: "{picture}_Steep_N.png",',
                  f'    off_image: "{picture}_Gentle_N.png", width: 20, height: 20, horizontal: align_center,',
                  f'    name: "$$$/ParametricEQ/Steep=Steep Shelf",',
                  f'    alt: "$$$/ParametricEQ/SteepTip=12 or 6 dB an octave");']
    else:
        for value, kind, unit in (("false", "q", ""), ("true", "width", "Hz")):
            lines += [f"optional(bind: @constant_width, value: {value})", "{"]
            lines += ["    " + part for part in number(band, kind, unit, FREQUENCY if unit else Q)]
            lines += ["}"]
    return in_column([*lines, text])


GRAPH = """
aud_curve_editor(bind: @curve, bind_response: @response, selected_node: @selected_band, draw_curve: false,
    visible_points: @bands_on, unique_horizontal_positions: false,
    enable_add_points: false, enable_delete_points: false,
    content_width: @content_width, content_height: @content_height,
    horizontal_start: 20, horizontal_end: @highest_frequency, vertical_start: @graph_range,
    vertical_end: @lowest_shown, horizontal_label1: "Hz", vertical_label1: "dB",
    horizontal_ruler_type: 2, horizontal_log_seed: 1, horizontal_log_step: 10, horizontal_step_factor: 40,
    vertical_ruler_type: 1, vertical_step_factor: 30,
    horizontal_edit_label: "$$$/ParametricEQ/EditFrequency=Frequency:",
    vertical_edit_label: "$$$/ParametricEQ/EditGain=Gain:",
    curve_point_labels: [LABELS]);"""

BESIDE_PASSES = "    separator(orientation: @vertical);"

LABELS = """
column()
{
    static_text(name: "$$$/ParametricEQ/BandLabel=Band:");
    static_text(name: "$$$/ParametricEQ/FrequencyLabel=Frequency:");
    static_text(name: "$$$/ParametricEQ/GainLabel=Gain:");
    static_text(name: "$$$/ParametricEQ/ShapeLabel=Q / Width:");
}"""

OUTPUT = """
group(name: "$$$/ParametricEQ/Output=Output")
{
    row(spacing: 28)
    {
        aud_edit_number(bind: @master_gain, min_max_filter: @master_gain_filter,
            name: "$$$/ParametricEQ/MasterGain=Master Gain:", unit_label: "dB", digits: 5, decimal_places: 1,
            always_show_sign: true, increment: 0.5, min_slider_width: 200);
        checkbox(name: "$$$/ParametricEQ/KeepHeadroom=Keep Headroom", bind: @keep_headroom,
            alt: "$$$/ParametricEQ/KeepHeadroomTip=Takes the highest gain of the bands off, so that nothing gets louder");
        display_text(name: "$$$/ParametricEQ/HighestGainLabel=Highest Gain:", value: @highest_gain_text,
            characters: 8, alt: "$$$/ParametricEQ/HighestGainTip=Of all bands together");
    }
}"""

SETTINGS = """
row(spacing: 24)
{
    checkbox(name: "$$$/ParametricEQ/ConstantWidth=Constant Width", bind: @constant_width,
        alt: "$$$/ParametricEQ/ConstantWidthTip=A peak keeps its width in hertz when it is moved, and not its Q");
    aud_edit_number(bind: @graph_range, min_max_filter: @graph_range_filter, guide_mask: 1,
        name: "$$$/ParametricEQ/GraphRange=Range of the Graph:", unit_label: "dB", digits: 3, decimal_places: 0,
        increment: 6, use_slider: false);
}"""


def layout():
    graph = GRAPH.replace("LABELS", ", ".join(f'"{SHOWN[band][0]}"' for band in BANDS))
    bands = ["row(spacing: 6)", "{"] + ["    " + line for line in LABELS.strip().split("\n")]
    for band in BANDS:
        if band == BANDS[-1]:
            bands += [BESIDE_PASSES]
        bands += ["    " + line for line in column(band)]
        if band == BANDS[0]:
            bands += [BESIDE_PASSES]
    bands += ["}"]
    body = graph.strip().split("\n") + bands + SETTINGS.strip().split("\n") + OUTPUT.strip().split("\n")
    return ["layout ParametricEQ", "{", "view subview()", "{"] + ["    " + line for line in body] + ["}", "}"]


def main():
    root = pathlib.Path(__file__).resolve().parents[2]
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else root / "resources" / "scripts"
    for suffix, lines in ((".trn", sheet()), (".lio", layout())):
        (folder / f"PARAMETRICEQ{suffix}").write_bytes(("\r\n".join(lines) + "\r\n").encode("ascii"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
