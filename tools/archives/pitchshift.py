"""The pitch shift panel: the transposition on top, precision and splicing under it.

The editor labels the boxes and takes the ranges of the ratio and of the splicing settings from the effect.
"""
from nodes import (checkbox, edit_number_horizontal, hot_text_number, localized, outline_box_with_label, radio_button,
                   static_text, sub_view)

GROUP = "PitchShifterXML"
RIGHT, END = 2, 2  # text alignment and truncation

MARGIN = 16
WIDTH = 536
GAP = 16         # between boxes
FIRST_ROW = 24   # in a box, below its label
ROW = 32
INSET = 16
SLIDER = 40      # the height of a slider with its ruler: the least that it needs
OVERHANG = 14    # of a slider's ruler over the ends of the track
LABELS = 88
TRACK = INSET + LABELS + 12
PRECISION = 184  # width of the lower left box
SPLICING_LABELS = 124


def label(left, top, width, key, text):
    return static_text((left, top, width, 24), localized(f"{GROUP}/{key}", text), alignment=RIGHT, textTruncation=END)


def slider(top, width, id, key, name, reach, decimals):
    left = TRACK - OVERHANG
    return edit_number_horizontal((left, top, width - INSET - left, SLIDER), id, -reach, reach, useLabel=False,
                                  label=localized(f"{GROUP}/{key}Name", name), decimalPlaces=decimals, digits=5,
                                  stepFactor=60)


def transpose(rect):
    width = rect[2]
    rows = [FIRST_ROW + i * (SLIDER + GAP // 2) for i in range(3)]
    return outline_box_with_label(rect, "PS_OutlineBox_Ratio", "", (
        label(INSET, rows[0], LABELS, "SemiTones", "Semi-tones:"),
        slider(rows[0], width, "PS_SemiTones", "SemiTones", "Semi-tones", 12, 1),
        label(INSET, rows[1], LABELS, "Cents", "Cents:"),
        slider(rows[1], width, "PS_Cents", "Cents", "Cents", 100, 0),
        label(INSET, rows[2], LABELS, "Ratio", "Ratio:"),
        hot_text_number((TRACK - 4, rows[2], 52, 24), "PS_Ratio", 0.5, 2, 1, decimalPlaces=4, shiftIncrement=0.001,
                        cmdIncrement=0.0001)))


def precision(rect):
    names = ("Low", "Medium", "High")
    return outline_box_with_label(rect, "PS_OutlineBox_Precision", "", tuple(
        radio_button((INSET, FIRST_ROW + i * ROW, rect[2] - 2 * INSET, 24), f"PS_Precision{name}",
                     localized(f"{GROUP}/{name}Precision", f"{name} Precision")) for i, name in enumerate(names)))


def settings(rect):
    numbers = INSET + SPLICING_LABELS + 8

    # The unit stands behind the number: with ends as far apart as the units differ, the numbers end at one line.
    def number(i, id, low, high, value, unit, width, **properties):
        return hot_text_number((numbers, FIRST_ROW + i * ROW, width, 24), id, low, high, value, decimalPlaces=1,
                               textLabel=unit, **properties)

    return outline_box_with_label(rect, "PS_OutlineBox_Settings", "", (
        label(INSET, FIRST_ROW, SPLICING_LABELS, "SplicingFrequency", "Splicing Frequency:"),
        number(0, "PS_SplicingFrequency", 10, 200, 52, "Hz", 72),
        label(INSET, FIRST_ROW + ROW, SPLICING_LABELS, "Overlapping", "Overlapping:"),
        number(1, "PS_Overlapping", 0, 50, 21.5, "%", 68, shiftIncrement=1),
        checkbox((INSET, FIRST_ROW + 2 * ROW, rect[2] - 2 * INSET, 24), "PS_UseDefaultSetting",
                 localized(f"{GROUP}/UseDefaultSettings", "Use appropriate default settings"))))


def root():
    width = WIDTH - 2 * MARGIN
    upper = FIRST_ROW + 2 * (SLIDER + GAP // 2) + 24 + 12
    lower = FIRST_ROW + 2 * ROW + 24 + 12
    top = MARGIN + upper + GAP
    left = MARGIN + PRECISION + GAP
    boxes = (transpose((MARGIN, MARGIN, width, upper)), precision((MARGIN, top, PRECISION, lower)),
             settings((left, top, WIDTH - MARGIN - left, lower)))
    return sub_view((0, 0, WIDTH, top + lower + MARGIN), children=boxes)
