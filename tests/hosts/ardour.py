#!/usr/bin/env python3
"""A session in Ardour with all effects on one track: made, saved, loaded and exported: ardour.py BUNDLE WORKBENCH.

Needs neither a screen nor a sound card.
"""

import json
import math
import os
import pathlib
import subprocess
import sys
import tempfile

import sound
import wav

HERE = pathlib.Path(__file__).parent
LAST = "amplify"
RAMP = {"label": "Gain 2", "length": 24000, "to": -30}  # frames, dB
NEAR = 1500  # frames that a point is heard beside its place at most: Ardour reads automation block by block


def lua(value):
    """A value of Python's as Lua writes it."""
    if isinstance(value, dict):
        return "{" + ", ".join(f"[{lua(key)}] = {lua(each)}" for key, each in value.items()) + "}"
    if isinstance(value, list):
        return "{" + ", ".join(map(lua, value)) + "}"
    return json.dumps(value)


def setting(workbench, effect):
    """The first number of an effect, a bit away from its default; its first switch, the other way, where it has none."""
    ports = [each for each in workbench.parameters(effect)
             if each["automatable"] and not each["readOnly"] and not each["curve"] and each["kind"] != "choice"]
    port = min(ports, key=lambda each: each["kind"] != "number")
    if port["kind"] == "switch":
        value = 1 - port["default"]
    else:
        farthest = max(port["minimum"], port["maximum"], key=lambda end: abs(end - port["default"]))
        value = port["default"] + 0.001 * (farthest - port["default"])
    return {"uri": f"urn:qoaudio:{effect}", "label": port["name"],
            "value": math.ceil(value) if port["whole"] else value}


def run(*command):
    process = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120)
    if process.returncode != 0:
        raise SystemExit(f"{command[0]}: {process.returncode}\n{process.stdout}{process.stderr}")
    return process.stdout


def script(folder, name, word, **values):
    """Runs a script with values in front of it. `word` is its last, for the program's status says nothing."""
    text = "".join(f"{key} = {lua(value)}\n" for key, value in values.items()) + (HERE / name).read_text()
    (folder / name).write_text(text)
    said = run("ardour7-lua", str(folder / name))
    if word not in said.splitlines():
        raise SystemExit(f"{name}:\n{said}")
    return [line for line in said.splitlines() if line.startswith("urn:")]


def export(session, snapshot, target):
    run("ardour7-export", "-b", "float", "-o", target, session, snapshot)
    return wav.read(target)[0]


def ramp_faults(automated, plain):
    """The left side is not automated; the right one goes down evenly, in decibels."""
    if automated[0] != plain[0] or len(plain[0]) < sound.RATE:
        yield "two exports differ where nothing is automated"
    for place in range(2000, len(plain[1]) - 100, 2000):
        heard, whole = (sound.largest(channel[place:place + 100]) for channel in (automated[1], plain[1]))
        gain = sound.decibels(heard / whole)
        early, late = (RAMP["to"] * min(max(frame, 0) / RAMP["length"], 1) for frame in (place - NEAR, place + NEAR))
        if not late - 0.01 < gain < early + 0.01:
            yield f"at {place} the automated gain is {gain:.2f} dB, not {late:.2f} to {early:.2f}"


def chain_faults(channels):
    """All effects sound at once."""
    if not all(math.isfinite(sample) for channel in channels for sample in channel):
        yield "a sample is not finite"
    loudest = [sound.decibels(sound.largest(channel)) for channel in channels]
    print(f"all effects: {loudest[0]:.0f} and {loudest[1]:.0f} dB, {len(channels[0])} frames")
    if not all(-80 < each < 0 for each in loudest):
        yield f"the chain of all effects sounds at {loudest} dB"


def main():
    os.environ["LV2_PATH"] = str(pathlib.Path(sys.argv[1]).resolve().parent)
    workbench = sound.Workbench(sys.argv[2])
    names = [name for name in workbench.effects() if name != LAST] + [LAST]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        os.environ |= {"HOME": name, "XDG_CONFIG_HOME": f"{name}/config", "XDG_CACHE_HOME": f"{name}/cache"}
        session = str(folder / "session")
        effects = [setting(workbench, effect) for effect in names]
        script(folder, "ardour_make.lua", "made", session=session, effects=effects, automated=RAMP)
        found = script(folder, "ardour_check.lua", "checked", session=session, effects=effects)
        channels = {each: export(session, each, folder / f"{each}.wav") for each in ("session", "bypassed", "plain")}
        found += [*chain_faults(channels["session"]), *ramp_faults(channels["bypassed"], channels["plain"])]
    sys.exit("\n".join(found) or 0)


if __name__ == "__main__":
    main()
