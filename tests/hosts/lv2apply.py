#!/usr/bin/env python3
"""Runs every effect in lv2apply beside the workbench: lv2apply.py BUNDLE WORKBENCH."""

import array
import concurrent.futures
import os
import pathlib
import subprocess
import sys
import tempfile

import sound
import wav

SECONDS = 0.4
LONGER = {"delay": 0.9, "graphicphaseshifter": 0.6, "pitchshift": 0.6}  # behind its latency
# The Doppler shifter takes the length of the sound into account, which hosts don't tell; without it, it is this.
UNTOLD_LENGTH = {"doppler": 30}
MOST_LEFT = -120  # dB


def settings(parameters):
    """Defaults, and a third of the way up every port."""
    def third(parameter):
        if parameter["kind"] == "choice":
            return round((len(parameter["items"]) - 1) / 3)
        if parameter["kind"] == "switch":
            return 0
        value = parameter["minimum"] + (parameter["maximum"] - parameter["minimum"]) / 3
        return round(value) if parameter["whole"] else value

    ports = [each for each in parameters if not each["readOnly"] and not each["curve"]]
    return [{}, {each["id"]: third(each) for each in ports}]


def applied(effect, values, source, target):
    controls = [word for symbol, value in values.items() for word in ("-c", symbol, str(value))]
    run = subprocess.run(["lv2apply", "-i", source, "-o", target, *controls, f"urn:qoaudio:{effect}"],
                         capture_output=True, text=True)
    if run.returncode != 0:
        raise RuntimeError(f"lv2apply: {run.returncode}: {run.stderr}")
    return wav.read(target)[0]


def sources(effect, folder):
    """The same sound for the host and for the workbench."""
    source = folder / f"{effect}-source.wav"
    channels = sound.music(LONGER.get(effect, SECONDS))
    wav.write(source, channels, sound.RATE)
    if effect not in UNTOLD_LENGTH:
        return source, source
    padded = folder / f"{effect}-padded.wav"
    silence = array.array("f", [0] * (UNTOLD_LENGTH[effect] * sound.RATE - len(channels[0])))
    wav.write(padded, [channel + silence for channel in channels], sound.RATE)
    return source, padded


def faults(workbench, effect, folder):
    source, padded = sources(effect, folder)
    found = []
    for number, values in enumerate(settings(workbench.parameters(effect))):
        heard = applied(effect, values, source, folder / f"{effect}{number}-host.wav")
        wanted = workbench.render(effect, values, padded, folder / f"{effect}{number}.wav")
        left, lag = sound.difference(heard, wanted)
        print(f"{effect} {'set' if values else 'as it is'}: {left:.0f} dB, {lag} frames late")
        if left > MOST_LEFT:
            found.append(f"{effect}, {values}: {left:.1f} dB from the workbench's render")
    return found


def main():
    os.environ["LV2_PATH"] = str(pathlib.Path(sys.argv[1]).resolve().parent)
    workbench = sound.Workbench(sys.argv[2])
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as threads:
        runs = [threads.submit(faults, workbench, effect, pathlib.Path(folder)) for effect in workbench.effects()]
        found = [fault for run in runs for fault in run.result()]
    sys.exit("\n".join(found) or 0)


if __name__ == "__main__":
    main()
