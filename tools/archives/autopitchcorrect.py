"""The automatic pitch correction panel: what to correct to and how on the left, what is being corrected on the right.

The key, channel and FFT size pop-ups, the ranges and the attack ruler's words come from the editor. What can't be
automated is disabled here; the editor enables it when the filter lets it be changed.
"""
from nodes import custom, edit_number_horizontal, hot_text_number, localized, popup, static_text, sub_view

GROUP = "AutoPitchCorrectXML"
RIGHT, END = 2, 2  # text alignment and truncation

MARGIN = 16
ROW = 32  # with the gap to the next
HEIGHT = 24
LABELS = 96
CONTROLS = MARGIN + LABELS + 8
POPUPS = 160
OVERHANG = 14  # of a slider's ruler over the ends of the track
SLIDER = 40  # the height of a slider with its ruler
SLIDERS_END = 424
METER = 88
WORDS_ONLY = 200  # pixels between a ruler's numbers: none fits beside the words at its ends
METER_HEIGHT = 217  # odd, so that the zero mark lies on a pixel


def label(row_top, key, default, id=""):
    return static_text((MARGIN, row_top, LABELS, HEIGHT), localized(f"{GROUP}/{key}", default), id, alignment=RIGHT,
                       textTruncation=END)


def tip(key, default):
    return localized(f"{GROUP}/{key}Tip", default)


def slider(row_top, id, low, high, name, unit, **properties):
    left = CONTROLS + 4 - OVERHANG
    return edit_number_horizontal((left, row_top, SLIDERS_END - left, SLIDER), id, low, high,
                                  label=localized(f"{GROUP}/{name}Name", name), useLabel=False, unitLabel=unit,
                                  unitLabelLength=3, **properties)


def root():
    row = [MARGIN + i * ROW for i in range(6)]
    sensitivity = row[5] + SLIDER + 8
    items = [localized(f"{GROUP}/{scale}", scale) for scale in ("Major", "Minor", "Chromatic")]

    def choice(i, id, items=(), **properties):
        return popup((CONTROLS, row[i], POPUPS, HEIGHT), id, list(items), **properties)

    children = (
        label(row[0], "Scale", "Scale:"), choice(0, "ScaleID", items),
        label(row[1], "Key", "Key:", "KeyLabelID"), choice(1, "KeyID"),
        label(row[2], "Channel", "Channel:"), choice(2, "ChannelID", enabled=False),
        label(row[3], "FFTSize", "FFT Size:"), choice(3, "ResolutionID", enabled=False),
        label(row[4], "Calibration", "Calibration:"),
        hot_text_number((CONTROLS, row[4], 60, HEIGHT), "CalibrationID", 410, 470, 440, decimalPlaces=1, textLabel="Hz",
                        enabled=False),
        label(row[5], "Attack", "Attack:"), slider(row[5], "AttackID", 0.5, 500, "Attack", "ms", decimalPlaces=1,
                                                 stepFactor=WORDS_ONLY,
                                                 tooltip=tip("Attack", "How fast a note is pulled to its pitch")),
        label(sensitivity, "Sensitivity", "Sensitivity:"),
        slider(sensitivity, "SensitivityID", 0, 100, "Sensitivity", "%", stepFactor=50,
               tooltip=tip("Sensitivity", "How far off a note may be and still be corrected")),
        custom((456, MARGIN, METER, METER_HEIGHT), "MeterID", "CorrectionMeter",
               tooltip=tip("Meter", "The correction at this moment")),
        static_text((448, MARGIN + METER_HEIGHT + 7, 104, HEIGHT), "", "CorrectionID", alignment=1))
    return sub_view((0, 0, 560, sensitivity + SLIDER + MARGIN), children=children)
