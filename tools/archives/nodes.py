"""Describes layout archives in a few lines of Python and writes them in the archive format.

A node is made by one of the functions at the end of this file, which take the node's bounds (left, top, width, height)
in its parent, its id, and the properties that differ from their defaults. `write` gives the bytes of the archive: every
property of every class of the node's chain, keys in ascending byte order, CR LF, attribute values in single quotes.
"""
import struct

from xml.sax.saxutils import escape


class Value:
    """One value element: its tag, attributes and text, or nested pairs."""

    def __init__(self, tag, text="", attributes=""):
        self.tag, self.text, self.attributes = tag, text, attributes


def integer(value):
    return Value("int", str(value), " type='signed' size='32'")


def unsigned(value):
    return Value("int", str(value), " type='unsigned' size='32'")


def boolean(value):
    return Value("true" if value else "false")


def number(value):
    single = struct.unpack("f", struct.pack("f", value))[0]
    for decimals in range(7):
        text = f"{single:.{decimals}f}"
        if struct.unpack("f", struct.pack("f", float(text)))[0] == single:
            break
    return Value("float", text)


def double(value):
    return Value("double", f"{value:.15g}")


def text(value):
    return Value("ustring", value)


def raw(value):
    return Value("string", value)


def texts(values):
    return list(values)


def enumeration(selected, items=()):
    record = {".aptype": integer(2), "selected": integer(selected)}
    if items:
        record["items"] = texts(items)
    return record


def bounds(rect):
    left, top, width, height = rect
    return {".aptype": integer(1), "height": number(height), "left": number(left), "top": number(top),
            "width": number(width)}


# Bits of Constraints: the edges of its parent to which a node keeps its distance when the parent is resized (it grows
# between two), or the middle.
KEEP_LEFT, KEEP_RIGHT, KEEP_TOP, KEEP_BOTTOM, KEEP_MIDDLE = 1, 2, 4, 8, 16

# The properties of each class: key -> how a Python value becomes a value element, and the default.
RULER_TYPES = ("None", "Linear", "Logarithmic", "DB", "FaderDB")
PLACEMENTS = ("None", "Left/Top", "Right/Bottom")
TEXT_PLACEMENTS = ("Left/Top", "Right/Bottom", "Both")

CLASSES = {
    "kroui::ui::UI_Node": {},  # written by hand below
    "kroui::ui::UI_SubView": {
        "AutoLayout": (boolean, False), "AutoLayout_Horizontal": (boolean, False),
        "AutoLayout_MaintainMargins": (boolean, False), "AutoLayout_ScaleChildren": (boolean, False),
        "Constraints": (lambda mask: {".aptype": integer(4), "constraints": unsigned(mask)}, 0),
        "LayoutChildren": (boolean, True)},
    "kroui::controls::UI_ControlView": {
        "downState": (boolean, False), "enabled": (boolean, True), "suppressFocusDrawing": (boolean, False),
        "wantsFocus": (boolean, True)},
    "kroui::controls::UI_InteractiveControlView": {},
    "kroui::controls::UI_Button": {
        "changeFocusOnClick": (boolean, True), "contentOffsetX": (number, 0), "contentOffsetY": (number, 0),
        "cornerRadius": (number, 4), "defaultAppearance": (boolean, False), "downOffsetX": (number, 0),
        "downOffsetY": (number, 0), "notificationOnMouseDown": (boolean, False), "springLoaded": (boolean, True),
        "strokeSize1": (number, 1), "strokeSize2": (number, 1)},
    "kroui::controls::UI_Checkbox": {
        "checkSize": (number, 14), "checked": (boolean, False), "fontSize": (number, 12), "text": (text, "")},
    "kroui::controls::UI_RadioButton": {"fontSize": (number, 12), "text": (text, "")},
    "kroui::controls::UI_Popup": {
        "alwaysNotify": (boolean, False), "drawDivider": (boolean, False), "fontSize": (number, 12),
        "popupItems": (texts, ()), "popupType": (enumeration, 0)},
    "kroui::controls::UI_TextButton": {"text": (text, ""), "textAlignment": (enumeration, 1), "textIndent": (number, 0)},
    "kroui::controls::UI_PictureButton": {
        "displayBorderAlways": (boolean, False), "displayBorderNever": (boolean, False), "imageName": (raw, "")},
    "kroui::controls::UI_PictureTextButton": {
        "imageName": (raw, ""), "pictureScaleX": (number, 1), "pictureScaleY": (number, 1),
        "pictureVerticalOffset": (number, 0), "relationship": (enumeration, 0), "spacing": (number, 4),
        "text": (text, ""), "textIndent": (number, 0)},
    "kroui::controls::UI_DisclosureTriangleButton": {},
    "kroui::controls::UI_StaticText": {
        "alignment": (enumeration, 0), "fontSize": (number, 12), "multiLine": (boolean, False), "text": (text, ""),
        "textTruncation": (enumeration, 2)},
    "kroui::controls::UI_StaticImage": {"imageName": (raw, "")},
    "kroui::controls::UI_Divider": {},
    "kroui::controls::UI_OutlineBox": {"cornerRadius": (number, 4)},
    "kroui::controls::UI_HotText": {"fontSize": (number, 12), "textLabel": (text, "")},
    "kroui::controls::UI_HotTextNumber": {
        "cmdIncrement": (double, 0.1), "decimalPlaces": (integer, 0), "formatAlwaysSign": (boolean, False),
        "formatLeadingSpaces": (boolean, False), "formatNoLocalization": (boolean, False),
        "formatNoTrailingZeros": (boolean, False), "formatNormal": (boolean, True), "formatPadSign": (boolean, False),
        "formatUseSeparator": (boolean, False), "increment": (double, 1), "maxValue": (double, 100),
        "minValue": (double, 0), "numericInput": (boolean, True), "shiftIncrement": (double, 10), "value": (double, 0)},
    "uit::controls::UI_EditNumber": {
        "abbreviateNumbers": (boolean, False), "decimalPlaces": (unsigned, 0), "digits": (unsigned, 5),
        "increment": (double, 1), "label": (text, ""), "logSeed": (double, 1), "logStep": (double, 10),
        "logarithmic": (boolean, False), "maxValue": (double, 100), "minValue": (double, 0), "rulerLabel1": (text, ""),
        "rulerLabel2": (text, ""), "rulerPlacement": (lambda i: enumeration(i, PLACEMENTS), 2),
        "rulerTextPlacement": (lambda i: enumeration(i, TEXT_PLACEMENTS), 1),
        "rulerType": (lambda i: enumeration(i, RULER_TYPES), 1), "stepFactor": (double, 20), "unitLabel": (text, ""),
        "unitLabelLength": (unsigned, 0), "useInline": (boolean, True), "useLabel": (boolean, True)},
    "uit::controls::UI_EditNumber_Horizontal": {},
    "uit::controls::UI_OutlineBoxWithLabel": {"label": (text, "")},
    "uit::controls::UI_OptionalView": {"activeIndex": (integer, 0)},
    "uit::controls::ColorField": {"allowUserColorChange": (boolean, False)},
}

NODE = ["kroui::ui::UI_Node"]
SUB_VIEW = ["kroui::ui::UI_SubView"] + NODE
CONTROL = ["kroui::controls::UI_ControlView"] + SUB_VIEW
INTERACTIVE = ["kroui::controls::UI_InteractiveControlView"] + CONTROL
BUTTON = ["kroui::controls::UI_Button"] + INTERACTIVE
HOT_TEXT = ["kroui::controls::UI_HotText"] + INTERACTIVE
EDIT_NUMBER = ["uit::controls::UI_EditNumber"] + INTERACTIVE

# Classes whose nodes hold children, in the section of the class itself.
CONTAINERS = {"kroui::ui::UI_SubView", "kroui::controls::UI_OutlineBox", "uit::controls::UI_OutlineBoxWithLabel",
              "uit::controls::UI_OptionalView", "uit::controls::ColorField"}


def node(chain, rect, id="", children=(), tooltip="", visible=True, class_name="", **properties):
    """The dictionary of one node. `chain`: its classes, most derived first."""
    sections = {"count": unsigned(len(chain))}
    for index, name in enumerate(chain):
        section = {"sectionName": text(name)}
        if name == NODE[0]:
            section |= {"bounds": bounds(rect), "id": raw(id), "tooltip": text(tooltip), "visible": boolean(visible)}
        for key, (make, default) in CLASSES[name].items():
            section[key] = make(properties.pop(key, default))
        if index == 0 and name in CONTAINERS:
            section["children"] = numbered("child", children)
        sections[f"section-{index}"] = section
    if properties:
        raise ValueError(f"{chain[0]} has no {', '.join(properties)}")
    result = {"adapter": text(chain[0]), "sections": sections}
    if class_name:
        result["className"] = text(class_name)
    return result


def numbered(name, values):
    return {f"{name}-{i}": value for i, value in enumerate(values)} | {"count": unsigned(len(values))}


def localized(key, default, group="QoAudioComponentsUI"):
    return f"($$$/{group}/{key}={default})"


def write(root):
    lines = ["<?xml version='1.0'?>", "<prop.map version='4'>"]
    write_list({"UINodeArchive": unsigned(1), "root": root}, lines, 1)
    lines.append("</prop.map>")
    return ("\r\n".join(lines) + "\r\n").encode("utf-8")


def write_list(pairs, lines, depth):
    lines.append("\t" * depth + "<prop.list>")
    for key in sorted(pairs, key=lambda k: k.encode()):
        lines.append("\t" * (depth + 1) + "<prop.pair>")
        lines.append("\t" * (depth + 2) + f"<key>{escape(key)}</key>")
        write_value(pairs[key], lines, depth + 2)
        lines.append("\t" * (depth + 1) + "</prop.pair>")
    lines.append("\t" * depth + "</prop.list>")


def write_value(value, lines, depth):
    indent = "\t" * depth
    if isinstance(value, dict):
        write_list(value, lines, depth)
    elif isinstance(value, list):
        lines.append(indent + "<array>")
        lines.append(indent + "\t<array.type>")
        lines.append(indent + "\t\t<ustring/>")
        lines.append(indent + "\t</array.type>")
        for item in value:
            write_value(text(item), lines, depth + 1)
        lines.append(indent + "</array>")
    elif value.text:
        lines.append(f"{indent}<{value.tag}{value.attributes}>{escape(value.text)}</{value.tag}>")
    else:
        lines.append(f"{indent}<{value.tag}{value.attributes}/>")


def sub_view(rect, id="", children=(), **properties):
    return node(SUB_VIEW, rect, id, children, **properties)


def custom(rect, id, class_name, **properties):
    """A place for a node that the editor makes."""
    return node(SUB_VIEW, rect, id, class_name=class_name, **properties)


def control(name, base, rect, id="", children=(), **properties):
    return node([name] + base, rect, id, children, **properties)


def checkbox(rect, id, caption, **properties):
    return control("kroui::controls::UI_Checkbox", BUTTON, rect, id, text=caption, **properties)


def radio_button(rect, id, caption, **properties):
    return control("kroui::controls::UI_RadioButton", BUTTON, rect, id, text=caption, **properties)


def popup(rect, id, items, **properties):
    return control("kroui::controls::UI_Popup", BUTTON, rect, id, popupItems=items, **properties)


def text_button(rect, id, caption, **properties):
    return control("kroui::controls::UI_TextButton", BUTTON, rect, id, text=caption, **properties)


def picture_button(rect, id, image, **properties):
    return control("kroui::controls::UI_PictureButton", BUTTON, rect, id, imageName=image, **properties)


def disclosure(rect, id, caption, **properties):
    chain = ["kroui::controls::UI_PictureTextButton"] + BUTTON
    return control("kroui::controls::UI_DisclosureTriangleButton", chain, rect, id, text=caption, **properties)


def static_text(rect, caption, id="", **properties):
    return control("kroui::controls::UI_StaticText", CONTROL, rect, id, text=caption, wantsFocus=False, **properties)


def static_image(rect, id, image, **properties):
    return control("kroui::controls::UI_StaticImage", CONTROL, rect, id, imageName=image, wantsFocus=False, **properties)


def divider(rect, **properties):
    return control("kroui::controls::UI_Divider", CONTROL, rect, wantsFocus=False, **properties)


def outline_box(rect, id="", children=(), **properties):
    return control("kroui::controls::UI_OutlineBox", CONTROL, rect, id, children, wantsFocus=False, **properties)


def hot_text_number(rect, id, low, high, value=0, **properties):
    chain = ["kroui::controls::UI_HotTextNumber"] + HOT_TEXT
    return node(chain, rect, id, minValue=low, maxValue=high, value=value, **properties)


def edit_number_horizontal(rect, id, low, high, **properties):
    chain = ["uit::controls::UI_EditNumber_Horizontal"] + EDIT_NUMBER
    return node(chain, rect, id, minValue=low, maxValue=high, **properties)


def outline_box_with_label(rect, id, label, children=(), **properties):
    return control("uit::controls::UI_OutlineBoxWithLabel", SUB_VIEW, rect, id, children, label=label, **properties)


def optional_view(rect, id, children, **properties):
    for index, child in enumerate(children):
        sections = child["sections"]
        last = sections[f"section-{int(sections['count'].text) - 1}"]
        last["visible"] = boolean(index == properties.get("activeIndex", 0))
    return control("uit::controls::UI_OptionalView", SUB_VIEW, rect, id, children, **properties)


def color_field(rect, id, **properties):
    return control("uit::controls::ColorField", INTERACTIVE, rect, id, **properties)
