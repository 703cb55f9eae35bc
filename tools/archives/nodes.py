"""Describes layout archives in a few lines of Python and writes them in the archive format.

A node is made by one of the functions at the end of this file, which take the node's bounds (left, top, width, height),
its id, and the properties that differ from their defaults. `write` gives the bytes of the archive: every property of
every class of the node's chain, keys in ascending byte order, CR LF, attribute values in single quotes.
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
}

NODE = ["kroui::ui::UI_Node"]
SUB_VIEW = ["kroui::ui::UI_SubView"] + NODE
CONTROL = ["kroui::controls::UI_ControlView"] + SUB_VIEW
INTERACTIVE = ["kroui::controls::UI_InteractiveControlView"] + CONTROL
BUTTON = ["kroui::controls::UI_Button"] + INTERACTIVE

CONTAINERS = {"kroui::ui::UI_SubView"}


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


def checkbox(rect, id, caption, **properties):
    return node(["kroui::controls::UI_Checkbox"] + BUTTON, rect, id, text=caption, **properties)
