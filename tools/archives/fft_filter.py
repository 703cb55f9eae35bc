"""The FFT filter panel: the graph, under it how it is drawn, and under a disclosure triangle what the analysis uses.

The root takes the height of what is shown, so that the panel grows when the advanced section opens. The archive has it
closed: the section overlaps the empty view that keeps the margin at the bottom.
"""
from nodes import (KEEP_BOTTOM, KEEP_RIGHT, KEEP_TOP, checkbox, custom, disclosure, localized, outline_box,
                   picture_button, popup, static_text, sub_view)

MARGIN = 16
ROW = 24
GAP = 8
RIGHT = 2

GRAPH = (640, 304)
SCALE_LABEL = 112
SCALE = 120
INSET = 12  # inside the outline box


def words(key, default):
    return localized(key, default, group="FFTFilterUI")


def scale_group():
    items = [words("Linear", "Linear"), words("Logarithmic", "Logarithmic")]
    return sub_view((0, 0, SCALE_LABEL + GAP + SCALE, ROW), children=[
        static_text((0, 0, SCALE_LABEL, ROW), words("FrequencyScale", "Frequency Scale:"), alignment=RIGHT),
        popup((SCALE_LABEL + GAP, 0, SCALE, ROW), "LinearLogMode", items,
              tooltip=words("FrequencyScaleTip", "How the frequencies are spaced in the graph"))])


def curve_group(left):
    return sub_view((left, 0, 120, ROW), children=[
        checkbox((0, 0, 120, ROW), "SplineCurves", words("SplineCurves", "Spline Curves"),
                 tooltip=words("SplineCurvesTip", "Round between the points"))])


def points_group(left):
    width = GRAPH[0] - left
    return sub_view((left, 0, width, ROW), Constraints=KEEP_RIGHT | KEEP_TOP | KEEP_BOTTOM, children=[
        static_text((0, 0, width - ROW - GAP, ROW), words("PointsHint", "Click adds a point, Delete removes it"),
                    alignment=RIGHT, fontSize=11),
        picture_button((width - ROW, 0, ROW, ROW), "ResetButton", "Reset", displayBorderAlways=True,
                       tooltip=words("Reset", "Reset"))])


def advanced_section(top):
    types = [("Triangular", "Triangular"), ("Hann", "Hann"), ("Hamming", "Hamming"), ("Blackman", "Blackman"),
             ("Gaussian", "Gaussian"), ("BlackmanHarris", "Blackman-Harris"), ("Kaiser140", "Kaiser (140 dB)"),
             ("Kaiser180", "Kaiser (180 dB)")]
    labels = SCALE_LABEL - INSET
    size = labels + GAP
    unit = size + 88 + GAP
    window_label = unit + 72
    window = window_label + 96 + GAP
    row = sub_view((INSET, INSET, GRAPH[0] - 2 * INSET, ROW), children=[
        static_text((0, 0, labels, ROW), words("FFTSize", "FFT Size:"), alignment=RIGHT),
        popup((size, 0, 88, ROW), "FFTSize", ["4096"],
              tooltip=words("FFTSizeTip", "Larger is more exact in frequency, smaller in time")),
        static_text((unit, 0, 64, ROW), words("Samples", "samples")),
        static_text((window_label, 0, 96, ROW), words("WindowType", "Window Type:"), alignment=RIGHT),
        popup((window, 0, 148, ROW), "WindowType",
              [localized(f"WindowType/{key}", name, group="FFTFilter") for key, name in types],
              tooltip=words("WindowTypeTip", "How steep the curve may be, against ripple"))])
    height = ROW + 2 * INSET
    return sub_view((MARGIN, top, GRAPH[0], height), "AdvancedSection", visible=False, children=[
        outline_box((0, 0, GRAPH[0], height), children=[row])])


def root():
    width, height = GRAPH
    controls_top = MARGIN + height + GAP
    advanced_top = controls_top + ROW + GAP
    section_top = advanced_top + ROW + GAP
    curve = SCALE_LABEL + GAP + SCALE + 24
    controls = sub_view((MARGIN, controls_top, width, ROW),
                        children=[scale_group(), curve_group(curve), points_group(curve + 128)])
    advanced = sub_view((MARGIN, advanced_top, width, ROW), children=[
        disclosure((0, 0, 128, ROW), "Advanced", words("Advanced", "Advanced"), textIndent=4)])
    bottom = advanced_top + ROW
    return sub_view((0, 0, width + 2 * MARGIN, bottom + MARGIN), AutoLayout=True, AutoLayout_MaintainMargins=True,
                    children=[custom((MARGIN, MARGIN, width, height), "FFTFilterGraph", "FFTFilterGraph"), controls,
                              advanced, advanced_section(section_top), sub_view((MARGIN, bottom, width, MARGIN))])
