"""The doppler panel: the path's kind, the numbers that place it, volume and quality on the left; its picture between
compass labels, with the description under it, on the right. The picture is made by the editor."""
from nodes import (KEEP_LEFT, KEEP_MIDDLE, KEEP_TOP, checkbox, custom, hot_text_number, localized, optional_view,
                   outline_box_with_label, popup, radio_button, static_image, static_text, sub_view)

MARGIN = 16
ROW = 24
GAP = 8
PITCH = ROW + GAP
LEFT, CENTRE, RIGHT = 0, 1, 2
CORNER = KEEP_LEFT | KEEP_TOP

LABELS = 152  # width of the labels' column
FIELDS = LABELS + GAP
NUMBER = 64  # width of a number and its gaps
CONTROLS = 340  # width of the left half
BOX = 72
ICON = 32
PATH = 256  # side of the picture
COMPASS = (36, 16)
COMPASS_GAP = 4
SECTION = 24  # between the groups

STRAIGHT_LABELS = (("StartingDistanceAway", "Starting Distance Away"), ("Velocity", "Velocity"),
                   ("ComingFrom", "Coming From"), ("PassesInFrontBy", "Passes in Front by"),
                   ("PassesOnRightBy", "Passes on Right by"))
CIRCULAR_LABELS = (("Radius", "Radius"), ("Velocity", "Velocity"), ("StartingAngle", "Starting Angle"),
                   ("CenterInFrontBy", "Center in Front by"), ("CenterOnRightBy", "Center on Right by"))


def words(key, default):
    return localized(key, default, group="DopplerShifterUI")


METRES = words("Meters", "m")
FIELD_ROWS = (("Radius", 0.01, 10000, METRES), ("Velocity", 0.1, 355, words("MetersPerSecond", "m/s")),
              ("StartingAngle", 0, 360, words("Degrees", "#{deg}")), ("CenterFront", -10000, 10000, METRES),
              ("CenterRight", -10000, 10000, METRES))
FIELDS_HEIGHT = len(FIELD_ROWS) * PITCH - GAP


def path_type(top):
    choices = (("StraightLine", "Straight Line", "DopplerStraightPath", GAP + 8),
               ("Circular", "Circular", "DopplerCircularPath", FIELDS + GAP))
    children = []
    for id, caption, image, left in choices:
        children.append(static_image((left, 28, ICON, ICON), f"{id}Image", image))
        children.append(radio_button((left + ICON + GAP, 32, 120, ROW), id, words(id, caption)))
    return outline_box_with_label((MARGIN, top, CONTROLS, BOX), "", words("PathType", "Path Type:"), children,
                                  Constraints=CORNER)


def label_set(labels):
    return sub_view((0, 0, LABELS, FIELDS_HEIGHT), children=[
        static_text((0, row * PITCH, LABELS, ROW), words(*label), alignment=RIGHT) for row, label in enumerate(labels)])


def fields(top):
    # The editor makes each field wider by its unit, so that the numbers end at one line.
    numbers = [hot_text_number((FIELDS, row * PITCH, NUMBER, ROW), id, low, high, value=low if low > 0 else 0,
                               textLabel=unit) for row, (id, low, high, unit) in enumerate(FIELD_ROWS)]
    labels = optional_view((0, 0, LABELS, FIELDS_HEIGHT), "OptionalLabels",
                           [label_set(STRAIGHT_LABELS), label_set(CIRCULAR_LABELS)])
    return sub_view((MARGIN, top, CONTROLS, FIELDS_HEIGHT), children=[labels] + numbers, Constraints=CORNER)


def volume(top):
    return sub_view((MARGIN, top, CONTROLS, ROW), Constraints=CORNER, children=[
        static_text((0, 0, LABELS, ROW), words("AdjVol", "Adjust Volume based on:"), alignment=RIGHT),
        checkbox((FIELDS, 0, 84, ROW), "Distance", words("Distance", "Distance")),
        checkbox((FIELDS + 92, 0, 84, ROW), "Direction", words("Direction", "Direction"))])


def quality(top):
    # Disabled until the effect says that the quality may be changed.
    return sub_view((MARGIN, top, CONTROLS, ROW), Constraints=CORNER, children=[
        static_text((0, 0, LABELS, ROW), words("Quality", "Quality:"), alignment=RIGHT),
        popup((FIELDS, 0, 148, ROW), "Quality", [], enabled=False)])


def picture(left, top):
    width, height = COMPASS
    x, y = width, height + COMPASS_GAP
    middle = (PATH - height) / 2
    return sub_view((left, top, PATH + 2 * width, PATH + 2 * y), children=[
        static_text((x, 0, PATH, height), words("deg0", "0#{deg}"), alignment=CENTRE,
                    Constraints=KEEP_MIDDLE | KEEP_TOP),
        static_text((x + PATH + COMPASS_GAP, y + middle, width - COMPASS_GAP, height), words("deg90", "90#{deg}")),
        static_text((x, y + PATH + COMPASS_GAP, PATH, height), words("deg180", "180#{deg}"), alignment=CENTRE,
                    Constraints=KEEP_MIDDLE),
        static_text((0, y + middle, width - COMPASS_GAP, height), words("deg270", "270#{deg}"), alignment=RIGHT),
        custom((x, y, PATH, PATH), "Graph", "DopplerShifterGraph",
               tooltip=words("PathTip", "The path of the source around the listener"))])


def root():
    fields_top = MARGIN + BOX + SECTION
    volume_top = fields_top + FIELDS_HEIGHT + SECTION
    picture_left = MARGIN + CONTROLS + GAP
    picture_width = PATH + 2 * COMPASS[0]
    bottom = MARGIN + PATH + 2 * (COMPASS[1] + COMPASS_GAP) + GAP
    description = static_text((picture_left, bottom, picture_width, ROW), "", "Description", alignment=CENTRE)
    return sub_view((0, 0, picture_left + picture_width + MARGIN, bottom + ROW + MARGIN), children=[
        path_type(MARGIN), fields(fields_top), volume(volume_top), quality(volume_top + PITCH),
        picture(picture_left, MARGIN), description])
