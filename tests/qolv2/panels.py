#!/usr/bin/env python3
"""Runs the tests of the plug-ins' panels on a screen of their own: panels.py PROGRAM."""

import os
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from virtual_screen import virtual_screen  # noqa: E402

with virtual_screen((1280, 900)), tempfile.TemporaryDirectory() as folder:
    os.environ["QO_TEST_SCREEN"] = "1"
    os.environ["XDG_CONFIG_HOME"] = folder
    sys.exit(subprocess.run([sys.argv[1], "--gtest_filter=Lv2Panel.*"]).returncode)
