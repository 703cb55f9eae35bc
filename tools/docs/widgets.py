#!/usr/bin/env python3
"""Says what a widget of layouts lacks, and exits with 1 then: its section in docs/scripts.md, its word for the fuzzer, a test.

    tools/docs/widgets.py

Widgets are found where their classes are named: the table of the engine and the adapters of the toolkit. A widget whose
control is new has a role for those who cannot see it besides; AccessiblePanelTest walks the panels for that.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
ENGINE = ROOT / "platform/krotarnlio/src/WidgetTable.cpp"
TOOLKIT = ROOT / "platform/uit/src/lio"
IN_ENGINE = re.compile(r'^\s*(?:Box|Class)<[^"]*>\("(\w+)"\)', re.MULTILINE)
IN_TOOLKIT = re.compile(r'WidgetClass \w+::kClass\{"(\w+)"')


def text_of(path):
    return path.read_text(encoding="utf-8")


def widgets():
    names = IN_ENGINE.findall(text_of(ENGINE))
    for source in sorted(TOOLKIT.glob("*.cpp")):
        names += IN_TOOLKIT.findall(text_of(source))
    return names


def main():
    places = {
        "is not described in docs/scripts.md": (text_of(ROOT / "docs/scripts.md"), "`{}`"),
        "has no word in fuzz/script.dict": (text_of(ROOT / "fuzz/script.dict"), '"{}('),
        "is in no test": ("\n".join(text_of(test) for test in sorted((ROOT / "tests").rglob("*.cpp"))), "{}"),
    }
    names = widgets()
    missing = [f"the widget {name} {what}" for name in names for what, (text, form) in places.items()
               if name != "subview" and form.format(name) not in text]
    if len(names) < 20 or len(set(names)) != len(names):
        missing.append(f"only {len(set(names))} widgets were found: {' '.join(names)}")
    print("\n".join(missing) or f"{len(names)} widgets are described, fuzzed and tested")
    sys.exit(1 if missing else 0)


if __name__ == "__main__":
    main()
