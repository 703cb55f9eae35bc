#!/usr/bin/env python3
"""Writes the script pairs of the three graphic equalisers, which differ only in their bands.

usage: graphic_eq.py [FOLDER]      FOLDER: where the scripts go, by default resources/scripts
"""
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent

# resource: name, labels of the bands; in view units the width of a band, the height of its slider, the width of that of
# the master gain
PANELS = {
    "GRAPHICEQ10BANDS": ("GraphicEQ__Bands", "31 63 125 250 500 1k 2k 4k 8k 16k", 48, 160, 160),
    "GRAPHICEQ20BANDSUI": ("GraphicEQ__BandsUI", "22 31 44 63 88 125 177 250 354 500 707 1k 1.4k 2k 2.8k 4k 5.7k 8k "
                           "11.3k 16k", 36, 180, 360),
    "GRAPHICEQ30BANDSUI": ("GraphicEQ__BandsUI", "25 31.5 40 50 63 80 100 125 160 200 250 315 400 500 630 800 1k 1.25k "
                           "1.6k 2k 2.5k 3.15k 4k 5k 6.3k 8k 10k 12.5k 16k 20k", 28, 200, 540),
}

# What the effect's parameters 0, 1 and 2 are: name, least, greatest, default. Parameter 3 is free.
QUANTITIES = [("range", 1.5, 60, 30), ("accuracy", 0, 8, 4), ("master_gain", -30, 30, 0)]
FIRST_BAND = 4
GAIN = ("gain", -30, 30, 0)  # of every band
HIGHEST_GAIN = ("highest_gain", -120, 120, 0)  # the parameter behind the bands

# What the rulers beside the outer sliders take.
RULER_WIDTH = 37

# Below the bands.
SETTINGS = """
group(name: "$$$/GraphicEQ/Settings=Settings")
{
    row(spacing: 32)
    {
        column()
        {
            aud_edit_number(bind: @range, min_max_filter: @range_filter,
                name: "$$$/GraphicEQ/RangeLabel=Range:", unit_label: "dB", digits: 4,
                decimal_places: 1, trailing_zeroes: false, use_slider: false, increment: 1,
                alt: "$$$/GraphicEQ/RangeTip=From the lowest to the highest gain that a band can have");
            aud_edit_number(bind: @accuracy, min_max_filter: @accuracy_filter,
                name: "$$$/GraphicEQ/AccuracyLabel=Accuracy:", unit_label: "$$$/GraphicEQ/Passes=passes", digits: 4,
                decimal_places: 0, use_slider: false, increment: 1,
                alt: "$$$/GraphicEQ/AccuracyTip=Passes that fit the bands to each other, so that each meets its slider");
        }
        column()
        {
            aud_edit_number(bind: @master_gain, min_max_filter: @master_gain_filter,
                name: "$$$/GraphicEQ/MasterGainLabel=Master Gain:", unit_label: "dB", digits: 5,
                decimal_places: 1, trailing_zeroes: false, always_show_sign: true, increment: 0.5,
                ruler_settings: @master_gain_ruler, min_slider_width: MASTER_WIDTH);
            display_number(name: "$$$/GraphicEQ/HighestGainLabel=Highest Gain:", value: @highest_gain, units: "dB",
                digits: 4, decimal_places: 1,
                alt: "$$$/GraphicEQ/HighestGainTip=The highest point of the whole curve, with the master gain");
        }
    }
}"""


def indented(text, depth=1):
    return ["    " * depth + line if line else "" for line in text.strip("\n").split("\n")]


def constants(name, least, greatest, _):
    return [f"{name}_min: {least};", f"{name}_max: {greatest};", f"{name}_range: {name}_max - {name}_min;"]


def initial(_, least, greatest, default):
    return f"{(default - least) / (greatest - least):.7g}"


def from_input(index, name):
    return f"(in{index} * {name}_range) + {name}_min"


def bounds(name):
    return f"{name}_filter <== {{ min_value: {name}_min,\n    max_value: {name}_max }};"


def ruler(lower, upper, placement, position, step, indent="    "):
    entries = ["type: 1", f"position:{position}", f"text_placement: @{placement}", f"step_factor: {step}",
               f"value1: {lower}", f"value2: {upper}"]
    return "{ " + f",\n{indent}".join(entries) + " };"


def sheet(name, labels):
    """The model: the gains lie on one scale, of which the range says how much may be used, half of it to either side."""
    count = len(labels)
    bands = [(FIRST_BAND + i, f"band{i + 1}") for i in range(count)]
    last = FIRST_BAND + count
    lines = [f"sheet {name}", "{", "constant:"]
    for quantity in [*QUANTITIES, GAIN, HIGHEST_GAIN]:
        lines += indented("\n".join(constants(*quantity)))
    lines += ["", "input:"]
    for index, quantity in enumerate(QUANTITIES):
        lines += indented(f"in{index}: {initial(*quantity)};")
    for index, _ in bands:
        lines += indented(f"in{index}: {initial(*GAIN)};")
    lines += indented(f"in{last}: {initial(*HIGHEST_GAIN)};")

    lines += ["", "interface:"]
    for index, (quantity, *_) in enumerate(QUANTITIES):
        lines += indented(f"unlink {quantity}: {from_input(index, quantity)};")
    for index, band in bands:
        lines += indented(f"unlink {band}: {from_input(index, 'gain')};")
    lines += [""]
    lines += indented(f"highest_gain <== {from_input(last, 'highest_gain')};")
    lines += indented("gain_low <== range / -2;\ngain_high <== range / 2;")
    lines += [""]
    for quantity, *_ in QUANTITIES:
        lines += indented(bounds(quantity))
    lines += indented("gain_filter <== { min_value: gain_low,\n    max_value: gain_high };")
    lines += [""]
    lines += indented("master_gain_ruler: " + ruler("master_gain_min", "master_gain_max", "left_top", 0, 40))
    lines += indented("first_gain_ruler <== " + ruler("gain_low", "gain_high", "left_top", 0, 25))
    lines += indented("last_gain_ruler <== " + ruler("gain_low", "gain_high", "right_bottom", 1, 25))

    lines += ["", "output:"]
    for index, (quantity, *_) in enumerate(QUANTITIES):
        lines += indented(f"out{index} <== ({quantity} - {quantity}_min) / {quantity}_range;")
    for index, band in bands:
        lines += indented(f"out{index} <== ({band} - gain_min) / gain_range;")
    return lines + ["}"]


def band_widget(number, count, label, width, height):
    rulers = {1: "first_gain_ruler", count: "last_gain_ruler"}
    ruled = f"ruler_settings: @{rulers[number]},\n    " if number in rulers else ""
    taken = width + RULER_WIDTH if ruled else width
    return (f"aud_edit_number(bind: @band{number}, min_max_filter: @gain_filter, description2: \"{label}\",\n    {ruled}"
            f"horizontal: false, width: {taken}, min_slider_width: {height}, digits: 3, decimal_places: 1,\n"
            "    trailing_zeroes: false, always_show_sign: true, increment: 0.5);")


def layout(name, labels, width, height, master_width):
    lines = [f"layout {name}", "{", "view subview()", "{"]
    lines += indented("row(spacing: 0)\n{")
    for number, label in enumerate(labels, 1):
        lines += indented(band_widget(number, len(labels), label, width, height), 2)
    lines += indented("}")
    lines += indented(SETTINGS.replace("MASTER_WIDTH", str(master_width)))
    return lines + ["}", "}"]


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parents[1] / "resources" / "scripts"
    for resource, (name, labels, *sizes) in PANELS.items():
        labels = labels.split()
        for suffix, lines in ((".trn", sheet(name, labels)), (".lio", layout(name, labels, *sizes))):
            (folder / (resource + suffix)).write_bytes("".join(line + "\r\n" for line in lines).encode("ascii"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
