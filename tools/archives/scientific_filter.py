"""The scientific filter panel: the response on top, under it how it is shown, the filter's settings in three columns and
the master gain. Ranges, units' formats and what a filter does not use come from the editor."""
from nodes import (color_field, custom, edit_number_horizontal, hot_text_number, localized, popup, radio_button,
                   static_text, sub_view)

MARGIN = 16
ROW = 24
GAP = 8
PITCH = ROW + GAP
SECTION = 16  # between the groups
RIGHT, END = 2, 2  # text alignment and truncation

GRAPH = (688, 288)
SWATCH = (20, 14)
SLIDER = 40    # height of a slider with its ruler
OVERHANG = 14  # of a slider's ruler over the ends of the track

# Left end of each column's labels, their width, and the width of the fields behind them.
COLUMNS = ((0, 84, 124), (232, 132, 88), (496, 108, 76))
LABELS, FIELDS = COLUMNS[0][1], COLUMNS[0][1] + GAP
HEIGHT = 3 * PITCH - GAP


def words(key, default):
    return localized(key, default, group="ScientificFilterUI")


def tip(key, default):
    return words(f"{key}Tip", default)


def label(rect, key, default, id=""):
    return static_text(rect, words(key, default), id, alignment=RIGHT, textTruncation=END)


def radios(left, choices):
    """Radio buttons in a row, each with its colour behind it if it has one: a group of the panel."""
    children = []
    at = 0
    for id, text, width, color in choices:
        children.append(radio_button((at, 0, width, ROW), id, words(id, text)))
        at += width
        if color:
            children.append(color_field((at, (ROW - SWATCH[1]) / 2, *SWATCH), color, allowUserColorChange=True,
                                        tooltip=tip(color, f"{text} color")))
            at += SWATCH[0] + SECTION
    return sub_view((left, 0, at, ROW), children=children)


def view_bar(top):
    curves = radios(FIELDS, (("Magnitude", "Magnitude", 94, "MagnitudeColor"), ("Phase", "Phase", 68, "PhaseColor"),
                             ("GroupDelay", "Group Delay", 106, "GroupDelayColor")))
    axis = radios(512, (("LinearAxis", "Linear", 72, ""), ("LogarithmicAxis", "Logarithmic", 104, "")))
    return sub_view((MARGIN, top, GRAPH[0], ROW), children=[
        label((0, 0, LABELS, ROW), "Show", "Show:"), curves, label((456, 0, 48, ROW), "Axis", "Axis:"), axis])


def labels(column, texts):
    left, width, _ = COLUMNS[column]
    return sub_view((left, 0, width, HEIGHT), children=[
        label((0, row * PITCH, width, ROW), key, default, f"{key}Label") for row, (key, default) in enumerate(texts)])


def fields(column, make):
    left, width, room = COLUMNS[column]
    return sub_view((left + width + GAP, 0, room, HEIGHT), children=[
        field((0, row * PITCH, room, ROW)) for row, field in enumerate(make)])


def number(id, low, high, value, unit, explanation, **properties):
    # The unit stands behind the number; with the same room for both the numbers end at one line.
    width = {"": 40, "dB": 76, "Hz": 76}[unit]
    return lambda rect: hot_text_number((rect[0], rect[1], width, ROW), id, low, high, value, textLabel=unit,
                                        tooltip=tip(id, explanation), **properties)


def settings(top):
    types = [words("Bessel", "Bessel"), words("Butterworth", "Butterworth"), words("Chebyshev1", "Chebyshev 1"),
             words("Chebyshev2", "Chebyshev 2")]
    modes = [words("LowPass", "Low Pass"), words("HighPass", "High Pass"), words("BandPass", "Band Pass"),
             words("BandStop", "Band Stop")]
    hertz = {"decimalPlaces": 1, "formatNoTrailingZeros": True}
    return sub_view((MARGIN, top, GRAPH[0], HEIGHT), children=[
        labels(0, (("Type", "Type:"), ("Mode", "Mode:"), ("Order", "Order:"))),
        fields(0, (lambda rect: popup(rect, "Type", types), lambda rect: popup(rect, "Mode", modes),
                   number("Order", 1, 20, 4, "", "How steep the filter is", shiftIncrement=5, cmdIncrement=1))),
        labels(1, (("Cutoff", "Cutoff:"), ("HighCutoff", "High Cutoff:"),
                   ("TransitionBandwidth", "Transition Bandwidth:"))),
        fields(1, (number("Cutoff", 1, 22050, 1000, "Hz", "Where the pass band ends, or the lower end of the band",
                          **hertz),
                   number("HighCutoff", 1, 22050, 4000, "Hz", "The upper end of the band", **hertz),
                   number("TransitionBandwidth", 0.01, 22050, 1000, "Hz",
                          "From the cutoff to where the stop band begins; sets the order", **hertz))),
        labels(2, (("PassRipple", "Pass Ripple:"), ("StopAttenuation", "Stop Attenuation:"),
                   ("LevelRange", "Level Range:"))),
        fields(2, (number("PassRipple", 0.01, 12, 1, "dB", "How much the pass band may vary", decimalPlaces=2,
                          increment=0.1, shiftIncrement=1, cmdIncrement=0.01),
                   number("StopAttenuation", 10, 140, 60, "dB", "How much the stop band loses at least",
                          decimalPlaces=1),
                   number("LevelRange", 6, 240, 96, "dB", "How many decibels the graph shows", increment=6,
                          shiftIncrement=24, cmdIncrement=1)))])


def gain(top):
    left = FIELDS + 4 - OVERHANG
    return sub_view((MARGIN, top, GRAPH[0], SLIDER), children=[
        label((0, 0, LABELS, ROW), "MasterGain", "Master Gain:"),
        edit_number_horizontal((left, 0, 452 - left, SLIDER), "MasterGain", -36, 36, useLabel=False,
                               label=words("MasterGainName", "Master Gain"), unitLabel="dB", unitLabelLength=3,
                               decimalPlaces=1, stepFactor=40)])


def root():
    bar = MARGIN + GRAPH[1] + GAP
    columns = bar + ROW + SECTION
    bottom = columns + HEIGHT + SECTION
    graph = sub_view((MARGIN, MARGIN, *GRAPH), children=[
        custom((0, 0, *GRAPH), "Graph", "SFGraph", tooltip=words("GraphTip", "The response of the filter"))])
    return sub_view((0, 0, GRAPH[0] + 2 * MARGIN, bottom + SLIDER + MARGIN), children=[
        graph, view_bar(bar), settings(columns), gain(bottom)])
