"""The stereo expander panel: two sliders, a row each. Their ranges come from the effect by way of the editor."""
from nodes import edit_number_horizontal, localized, static_text, sub_view

GROUP = "StereoExpanderXML"
RIGHT, END = 2, 2  # text alignment and truncation

MARGIN = 16
WIDTH = 520
LABELS = 128
OVERHANG = 14  # of a slider's ruler over the ends of the track
SLIDER = 40    # the height of a slider with its ruler: the least that it needs
TRACK = LABELS + 12


def row(top, id, key, name, low, high, step):
    width = WIDTH - 2 * MARGIN
    label = static_text((0, 0, LABELS, 24), localized(f"{GROUP}/{key}", f"{name}:"), alignment=RIGHT, textTruncation=END)
    slider = edit_number_horizontal((TRACK - OVERHANG, 0, width - TRACK + OVERHANG, SLIDER), id, low, high,
                                    label=localized(f"{GROUP}/{key}Name", name), useLabel=False, decimalPlaces=1,
                                    digits=6, unitLabel="%", stepFactor=step)
    return sub_view((MARGIN, top, width, SLIDER), children=(label, slider))


def root():
    second = MARGIN + SLIDER + 8
    rows = (row(MARGIN, "SE_Slider_Pan", "CenterChannelPan", "Center Channel Pan", -100, 100, 60),
            row(second, "SE_Slider_Expand", "StereoExpand", "Stereo Expand", 0, 300, 60))
    return sub_view((0, 0, WIDTH, second + SLIDER + MARGIN), children=rows)
