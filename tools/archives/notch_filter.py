"""The notch filter panel: the graph, a table with a column for each notch, and what all notches share under it.

The editor takes the ranges of the numbers from the effect and makes room for their units.
"""
from nodes import (KEEP_BOTTOM, KEEP_TOP, checkbox, custom, divider, hot_text_number, localized, popup, static_text,
                   sub_view, text_button)

MARGIN = 16
ROW = 24
GAP = 8
CENTRE, RIGHT = 1, 2  # text alignment

GRAPH = (640, 280)
NOTCHES = 6
LABELS = 88
COLUMN = 92
INSET = 8     # of a column, beside its divider
BUTTON = 44
NUMBER = 64   # room for a number without its unit
TABLE = 3 * ROW + 3 * GAP


def words(key, default):
    return localized(key, default, group="NotchFilterUI")


def row(index):
    return index * (ROW + GAP)


def label(index, key, default):
    return static_text((0, row(index), LABELS - INSET, ROW), words(key, default), alignment=RIGHT)


def column(index):
    number = str(index + 1)
    inner = COLUMN - INSET
    return sub_view((LABELS + index * COLUMN + INSET, 0, inner, TABLE), children=[
        static_text((0, 0, inner - BUTTON - INSET, ROW), number, alignment=CENTRE),
        text_button((inner - BUTTON - INSET, 0, BUTTON, ROW), f"Enable{number}", words("On", "On"), springLoaded=False,
                    tooltip=words(f"Enable{number}Tip", f"Switches notch {number} on and off")),
        hot_text_number((0, row(1), NUMBER, ROW), f"Frequency{number}", 20, 22050, 60 * (index + 1), textLabel="Hz",
                        decimalPlaces=1, formatNoTrailingZeros=True,
                        tooltip=words("FrequencyTip", "The middle of the notch")),
        hot_text_number((0, row(2), NUMBER, ROW), f"Gain{number}", -96, 96, -36, textLabel="dB", decimalPlaces=1,
                        formatNoTrailingZeros=True, tooltip=words("GainTip", "How deep the notch is"))])


def table(top):
    width = GRAPH[0]
    full = KEEP_TOP | KEEP_BOTTOM
    upright = sub_view((0, 0, width, TABLE), Constraints=full, children=[
        divider((LABELS + index * COLUMN - 1, 0, 2, TABLE), Constraints=full) for index in range(NOTCHES)])
    level = sub_view((0, 0, width, TABLE + GAP), children=[
        divider((0, ROW + GAP // 2 - 1, width, 2), Constraints=KEEP_TOP), divider((0, TABLE - 1, width, 2))])
    labels = sub_view((0, 0, LABELS, TABLE), children=[
        label(1, "Frequency", "Frequency:"), label(2, "Gain", "Gain:")])
    columns = [column(index) for index in range(NOTCHES)]
    return sub_view((0, top, width, TABLE + GAP), children=[upright, level, labels] + columns)


def width_group():
    items = [words("Narrow", "Narrow"), words("VeryNarrow", "Very Narrow"), words("SuperNarrow", "Super Narrow")]
    return sub_view((0, 0, LABELS + 136, ROW), children=[
        static_text((0, 0, LABELS - INSET, ROW), words("NotchWidth", "Notch Width:"), alignment=RIGHT),
        popup((LABELS, 0, 128, ROW), "NotchWidth", items,
              tooltip=words("NotchWidthTip", "How much beside its frequency a notch takes away"))])


def quiet_group(left):
    return sub_view((left, 0, 128, ROW), children=[
        checkbox((0, 0, 128, ROW), "UltraQuiet", words("UltraQuiet", "Ultra Quiet"),
                 tooltip=words("UltraQuietTip", "Computes in double precision, without audible rounding noise"))])


# Its number stands under those of the last column.
def fix_gain_group(left):
    number = LABELS + (NOTCHES - 1) * COLUMN + INSET - left
    return sub_view((left, 0, GRAPH[0] - left, ROW), children=[
        checkbox((0, 0, number, ROW), "FixGainCheckbox", words("FixGainTo", "Fix Gain to:"),
                 tooltip=words("FixGainTip", "Gives all notches this gain")),
        hot_text_number((number, 0, NUMBER, ROW), "FixGainHotText", -96, 96, -36, textLabel="dB", decimalPlaces=1,
                        formatNoTrailingZeros=True, tooltip=words("GainTip", "How deep the notch is"))])


def options(top):
    quiet = LABELS + 2 * COLUMN + INSET
    fix_gain = LABELS + 4 * COLUMN + INSET
    rules = sub_view((0, 0, GRAPH[0], ROW), children=[
        divider((left - INSET - 1, 0, 2, ROW)) for left in (quiet, fix_gain)])
    return sub_view((0, top, GRAPH[0], ROW),
                    children=[rules, width_group(), quiet_group(quiet), fix_gain_group(fix_gain)])


def root():
    graph = custom((MARGIN, MARGIN, *GRAPH), "Graph", "NotchFilterGraph",
                   tooltip=words("GraphTip", "Drag the numbered points; zoom and move the view on the rulers"))
    lower = TABLE + GAP + ROW
    controls = sub_view((MARGIN, MARGIN + GRAPH[1] + GAP, GRAPH[0], lower), children=[table(0), options(TABLE + GAP)])
    return sub_view((0, 0, GRAPH[0] + 2 * MARGIN, MARGIN + GRAPH[1] + GAP + lower + MARGIN),
                    children=[graph, controls])
