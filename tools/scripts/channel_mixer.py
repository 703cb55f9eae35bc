#!/usr/bin/env python3
"""Writes the script pair of the channel mixer: eight pages, one an output channel, of up to eight inputs each.

usage: channel_mixer.py [FOLDER]      FOLDER: where the scripts go, by default resources/scripts
"""
import pathlib
import sys

from graphic_eq import bounds, constants, from_input, indented

RESOURCE = "CHANNELMIXERUI"
NAME = "ChannelMixerUI"
CHANNELS = range(1, 9)
PAIRS = [(output, source) for output in CHANNELS for source in CHANNELS]
AMOUNT = ("amount", -100, 100, 0)
COUNT_INPUT = len(PAIRS)  # the parameter behind the amounts


def index(output, source):
    return (output - 1) * len(CHANNELS) + source - 1


def alike(output, source):
    """Keeps the amount and what its check box and a change of sign need alike."""
    which = f"{output}_{source}"
    return f"""
when (channel == {output - 1}) relate
{{
    amount_{which} <== invert_{which} ? (level_{which} > least_level ? -level_{which} : -least_level) : level_{which};
    level_{which}, invert_{which} <== [amount_{which} < 0 ? -amount_{which} : amount_{which}, amount_{which} < 0];
}}"""


def sheet():
    lines = [f"sheet {NAME}", "{", "constant:"]
    lines += indented("\n".join(constants(*AMOUNT)))
    lines += indented("""
channel_count_min: 0;
channel_count_max: 32;
channel_count_range: channel_count_max - channel_count_min;

/* What an inverted 0 % is stored as, so that the check box keeps it: nothing that is heard. */
least_level: 0.00001;""")
    lines += ["", "input:"]
    lines += indented("\n".join(f"in{index(o, s)}: {1 if o == s else 0.5};" for o, s in PAIRS))
    lines += indented(f"in{COUNT_INPUT}: 0.0625;")

    lines += ["", "interface:"]
    lines += indented(f"""
channel_count <== {from_input(COUNT_INPUT, "channel_count")};
output_channels <== get_output_channel_abbrev_array();
unlink channel <== channel == empty || channel >= channel_count ? 0 : channel;
channel_note <== channel < {len(CHANNELS)} ? "$$$/ChannelMixerUI/Sum=is the sum of these inputs:" :
    "$$$/ChannelMixerUI/Unmixed=stays as it is, as all channels from the ninth on.";
""")
    lines += [""]
    for source in CHANNELS:
        lines += indented(f"has_input{source} <== channel_count >= {source};\n"
                          f"input{source}_name <== get_input_channel_abbrev({source - 1});")
    lines += [""]
    for o, s in PAIRS:
        i = index(o, s)
        lines += indented(f"amount_{o}_{s}: {from_input(i, 'amount')};\n"
                          f"level_{o}_{s}: (in{i} < 0.5 ? 1 - 2 * in{i} : 2 * in{i} - 1) * amount_max;\n"
                          f"invert_{o}_{s}: in{i} < 0.5;")
    lines += [""]
    lines += indented(bounds("amount"))
    lines += indented("""
amount_ruler: { type: 1,
    position:0,
    text_placement: @left_top,
    step_factor: 40,
    value1: amount_min,
    value2: amount_max };""")

    lines += ["", "logic:"]
    for o, s in PAIRS:
        lines += indented(alike(o, s))
    lines += ["", "output:"]
    for o, s in PAIRS:
        lines += indented(f"out{index(o, s)} <== (amount_{o}_{s} - amount_min) / amount_range;")
    return lines + ["}"]


def amount(output, source):
    return f"""
optional(bind: @has_input{source})
{{
    aud_edit_number(bind: @amount_{output}_{source}, min_max_filter: @amount_filter, unit_label: "%",
        identifier: "Amount_{output}_{source}", digits: 6, decimal_places: 1, increment: 1, min_slider_width: 240);
}}"""


def invert(output, source):
    return f"""
optional(bind: @has_input{source})
{{
    checkbox(name: "$$$/ChannelMixerUI/Invert=Invert", bind: @invert_{output}_{source},
        identifier: "Invert_{output}_{source}");
}}"""


def page(output):
    lines = [f"optional(bind: @channel, value: {output - 1})", "{"]
    lines += indented("row(spacing: 16)\n{")
    for widget in (amount, invert):
        lines += indented("column()\n{", 2)
        for source in CHANNELS:
            lines += indented(widget(output, source), 3)
        lines += indented("}", 2)
    return lines + indented("}") + ["}"]


def layout():
    lines = [f"layout {NAME}", "{", "view subview()", "{"]
    lines += indented("""
row()
{
    popup(name: "$$$/ChannelMixerUI/OutputChannel=Output Channel:", bind: @channel, items: @output_channels,
        identifier: "Popup_OutputChannel");
    static_text(name: @channel_note);
}
separator();
row(spacing: 16)
{
    column()
    {""")
    for source in CHANNELS:
        lines += indented(f"""
optional(bind: @has_input{source})
{{
    display_text(value: @input{source}_name);
}}""", 2)
    lines += indented("}", 1)
    for output in CHANNELS:
        lines += indented("\n".join(page(output)), 1)
    lines += indented("}")
    lines += indented("""
separator();
static_text(name: "$$$/ChannelMixerUI/BelowZero=Amounts below 0 % are inverted.");""")
    return lines + ["}", "}"]


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parents[2] / "resources/scripts"
    for suffix, lines in ((".trn", sheet()), (".lio", layout())):
        (folder / (RESOURCE + suffix)).write_bytes("".join(line + "\r\n" for line in lines).encode("ascii"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
