"""The graphic phase shifter panel: the graph, under it its axes and how the curve is drawn, and in a box what is
processed. The channel and FFT size pop-ups are filled by the editor."""
from nodes import (KEEP_BOTTOM, KEEP_RIGHT, KEEP_TOP, checkbox, custom, localized, outline_box, picture_button, popup,
                   radio_button, static_text, sub_view)

MARGIN = 16
ROW = 24
GAP = 8
RIGHT = 2

GRAPH = (688, 304)
LABELS = 112
SCALE = 168  # width of the two radio buttons
RANGE_LABEL = 90
RANGES = 120
INSET = 12  # inside the outline box


def words(key, default):
    return localized(key, default, group="GraphicPhaseShifterUI")


def label(key, default, left=0, width=LABELS):
    return static_text((left, 0, width, ROW), words(key, default), alignment=RIGHT)


# The radio buttons under one parent are a group.
def scale_group():
    first = LABELS + GAP
    return sub_view((0, 0, first + SCALE, ROW), children=[
        label("FrequencyScale", "Frequency Scale:"),
        radio_button((first, 0, 64, ROW), "Linear", words("Linear", "Linear")),
        radio_button((first + 72, 0, 96, ROW), "Logarithmic", words("Log", "Logarithmic"))])


def range_group(left):
    first = RANGE_LABEL + GAP
    return sub_view((left, 0, first + RANGES, ROW), children=[
        label("PhaseRange", "Phase Range:", width=RANGE_LABEL),
        radio_button((first, 0, 56, ROW), "Range180", words("Range180", "180#{deg}")),
        radio_button((first + 64, 0, 56, ROW), "Range360", words("Range360", "360#{deg}"))])


def curve_group(left):
    width = GRAPH[0] - left
    return sub_view((left, 0, width, ROW), Constraints=KEEP_RIGHT | KEEP_TOP | KEEP_BOTTOM, children=[
        checkbox((0, 0, width - ROW - GAP, ROW), "SplineCurves", words("SplineCurves", "Spline Curves"),
                 tooltip=words("SplineCurvesTip", "Round between the points")),
        picture_button((width - ROW, 0, ROW, ROW), "ResetButton", "Reset", displayBorderAlways=True,
                       tooltip=words("Reset", "Reset"))])


def channel_group():
    labels = LABELS - INSET
    return sub_view((INSET, INSET, labels + GAP + 160, ROW), children=[
        label("Channel", "Channel:", width=labels),
        popup((labels + GAP, 0, 160, ROW), "Channel", [],
              tooltip=words("ChannelTip", "The channels whose phase is shifted"))])


def size_group(left):
    labels = 72
    return sub_view((left, INSET, labels + GAP + 96, ROW), children=[
        label("FFTSize", "FFT Size:", width=labels),
        popup((labels + GAP, 0, 96, ROW), "FFTSize", [],
              tooltip=words("FFTSizeTip", "Larger is more exact in frequency, smaller in time"))])


def root():
    width, height = GRAPH
    controls_top = MARGIN + height + GAP
    box_top = controls_top + ROW + GAP
    box_height = ROW + 2 * INSET
    ranges = LABELS + GAP + SCALE + 16
    curve = ranges + RANGE_LABEL + GAP + RANGES + 16
    controls = sub_view((MARGIN, controls_top, width, ROW),
                        children=[scale_group(), range_group(ranges), curve_group(curve)])
    box = outline_box((MARGIN, box_top, width, box_height), children=[channel_group(), size_group(304)])
    return sub_view((0, 0, width + 2 * MARGIN, box_top + box_height + MARGIN), children=[
        custom((MARGIN, MARGIN, width, height), "GraphicPhaseShifterGraph", "GraphicPhaseShifterGraph"), controls, box])
