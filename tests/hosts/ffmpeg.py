#!/usr/bin/env python3
"""Runs three effects in ffmpeg's lv2 filter beside the workbench: ffmpeg.py BUNDLE WORKBENCH."""

import os
import pathlib
import subprocess
import sys
import tempfile

import sound
import wav

MOST_LEFT = -120  # dB
CASES = [("graphiceq10bands", {}), ("hardlimiter", {"inputBoost": 12.0}), ("reverb", {"decay": 900.0})]


def filtered(effect, values, source, target):
    controls = "|".join(f"{symbol}={value}" for symbol, value in values.items())
    uri = f"urn:qoaudio:{effect}".replace(":", r"\\:")
    description = f"lv2=p={uri}" + (f":c={controls}" if controls else "")
    run = subprocess.run(["ffmpeg", "-hide_banner", "-loglevel", "error", "-y", "-i", source, "-af", description, "-c:a",
                          "pcm_f32le", target], stdin=subprocess.DEVNULL, capture_output=True, text=True)
    if run.returncode != 0:
        raise SystemExit(f"ffmpeg: {run.returncode}: {run.stderr}")
    return wav.read(target)[0]


def main():
    os.environ["LV2_PATH"] = str(pathlib.Path(sys.argv[1]).resolve().parent)
    workbench = sound.Workbench(sys.argv[2])
    faults = []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        wav.write(folder / "source.wav", sound.music(0.5), sound.RATE)
        for effect, values in CASES:
            heard = filtered(effect, values, folder / "source.wav", folder / "heard.wav")
            wanted = workbench.render(effect, values, folder / "source.wav", folder / "wanted.wav")
            left, lag = sound.difference(heard, wanted)
            print(f"{effect}: {left:.0f} dB, {lag} frames late")
            if left > MOST_LEFT:
                faults.append(f"{effect}: {left:.1f} dB from the workbench's render")
    sys.exit("\n".join(faults) or 0)


if __name__ == "__main__":
    main()
