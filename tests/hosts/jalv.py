#!/usr/bin/env python3
"""Plays effects in jalv, without a screen, beside the workbench: jalv.py BUNDLE WORKBENCH."""

import contextlib
import os
import pathlib
import subprocess
import sys
import tempfile

import jack
import sound
import wav

MOST_LEFT = -120  # dB


class Jalv:
    """The host with a plug-in, which takes commands."""

    def __init__(self, uri, *arguments):
        self.process = subprocess.Popen(["stdbuf", "-oL", "jalv", "-x", "-n", "host", *arguments, uri], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def tell(self, command, answer):
        """Until a line of what it says has the answer in it."""
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        for line in self.process.stdout:
            if answer in line:
                return
        raise RuntimeError(f"jalv does not answer {command} by {answer}")

    def close(self):
        self.process.terminate()
        self.process.communicate()
        if self.process.returncode not in (0, -15):
            raise RuntimeError(f"jalv ended with {self.process.returncode}")


@contextlib.contextmanager
def playing(uri, *arguments):
    host = Jalv(uri, *arguments)
    client = jack.Client()
    try:
        client.connect("host")
        yield host, client
    finally:
        client.close()
        host.close()


def main():
    os.environ["LV2_PATH"] = str(pathlib.Path(sys.argv[1]).resolve().parent)
    workbench = sound.Workbench(sys.argv[2])
    faults = []
    with tempfile.TemporaryDirectory() as name, jack.server():
        folder = pathlib.Path(name)
        music = sound.music(0.4)
        wav.write(folder / "source.wav", music, jack.RATE)

        def check(what, client, effect, *settings):
            workbench.run("render", "--effect", effect, "--live", "--tail", "none", "--bits", "float", "--overwrite",
                          *settings, folder / "source.wav", folder / "wanted.wav")
            client.play(music)  # until what was set has settled
            left, lag = sound.difference(client.play(music), wav.read(folder / "wanted.wav")[0])
            print(f"{effect} {what}: {left:.0f} dB, {lag} frames late")
            if left > MOST_LEFT:
                faults.append(f"{effect} {what}: {left:.1f} dB from the workbench's render")

        with playing("urn:qoaudio:parametriceq") as (host, client):
            check("as it is", client, "parametriceq")
            host.tell("set gain4 9", "gain4 = 9")
            check("set", client, "parametriceq", "--set", "gain4=9")
            host.tell("preset urn:qoaudio:parametriceq:preset:voice\ncontrols", "slope2 = ")
            check("with a preset", client, "parametriceq", "--preset", "Voice")
        workbench.run("preset", "--effect", "fftfilter", "--preset", "Telephone", "--set", "spline=on", "--as-lv2",
                      folder / "lv2" / "Mine.lv2")
        os.environ["LV2_PATH"] += f":{folder / 'lv2'}"
        with playing("urn:qoaudio:fftfilter") as (host, client):
            host.tell("presets", "Mine")
            host.tell("preset urn:qoaudio:fftfilter:user:mine\ncontrols", "viewEnd = ")
            check("with a preset of the user's", client, "fftfilter", "--preset", folder / "lv2" / "Mine.lv2")
    sys.exit("\n".join(faults) or 0)


if __name__ == "__main__":
    main()
