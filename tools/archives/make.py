#!/usr/bin/env python3
"""Writes the layout archives of the panels from their descriptions.

usage: make.py [FOLDER]        FOLDER: where the archives go, by default resources/archives
"""
import importlib
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
PANELS = ["amplify", "autopitchcorrect", "doppler", "fft_filter", "graphic_phase_shifter", "notch_filter", "pitchshift",
          "scientific_filter", "stereoexpander"]


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parents[1] / "resources" / "archives"
    sys.path.insert(0, str(HERE))
    nodes = importlib.import_module("nodes")
    for panel in PANELS:
        description = importlib.import_module(panel)
        (folder / f"{panel.replace('_', '').upper()}.xml").write_bytes(nodes.write(description.root()))
    return 0


if __name__ == "__main__":
    sys.exit(main())
