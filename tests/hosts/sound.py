"""What the tests in hosts share: a sound, what the workbench makes of it, and how far two sounds are apart."""

import array
import json
import math
import os
import random
import subprocess

import wav

RATE = 48000
LOWEST = -300  # dB, of sounds that are equal


def music(seconds, channels=2, seed=1):
    """Tones and noise that swell, with something else in every channel."""
    numbers = random.Random(seed)

    def sample(i, channel):
        swell = 0.3 + 0.2 * math.sin(i / RATE * 17 + channel)
        tone = math.sin(i / RATE * 2 * math.pi * (220 + 110 * channel)) + math.sin(i / RATE * 2 * math.pi * 1760)
        return swell * (0.4 * tone + 0.4 * numbers.uniform(-1, 1))

    return [array.array("f", (sample(i, channel) for i in range(int(seconds * RATE)))) for channel in range(channels)]


class Workbench:
    def __init__(self, program):
        self.program = program

    def run(self, *arguments):
        environment = {**os.environ, "LC_ALL": "C.UTF-8"}
        return subprocess.run([self.program, *map(str, arguments)], check=True, capture_output=True, text=True,
                              env=environment).stdout

    def effects(self):
        return [each["name"] for each in json.loads(self.run("list", "--format", "json")) if each["sound"]]

    def parameters(self, effect, rate=RATE):
        return json.loads(self.run("params", effect, "--rate", rate, "--format", "json"))

    def render(self, effect, values, source, target):
        """As a host plays it. `values` are those of ports."""
        kinds = {each["id"]: each for each in self.parameters(effect)}
        settings = [f"--set={symbol}={text(kinds[symbol], value)}" for symbol, value in values.items()]
        self.run("render", "--effect", effect, "--live", "--tail", "none", "--bits", "float", "--overwrite", *settings,
                 source, target)
        return wav.read(target)[0]


def text(parameter, value):
    """A port's value as the workbench takes it."""
    if parameter["kind"] == "choice":
        return parameter["items"][int(value)]
    if parameter["kind"] == "switch":
        return "on" if value else "off"
    return repr(value)


def decibels(value):
    return 20 * math.log10(value) if value > 0 else LOWEST


def largest(samples):
    return max(map(abs, samples), default=0)


def latency(late, early, longest=1 << 16):
    """By how many frames the first sound is later than the other; None when there is no such number."""
    loud = sorted(range(min(len(early), 8000)), key=lambda i: -abs(early[i]))[:40]
    for lag in range(min(longest, len(late))):
        if all(i + lag < len(late) and abs(late[i + lag] - early[i]) < 1e-5 for i in loud):
            return lag
    return None


def difference(host, workbench):
    """What is left of a host's sound without the workbench's, in decibels from full scale, and the host's latency."""
    lag = latency(host[0], workbench[0])
    if lag is None:
        return math.inf, None
    left = max(largest(a - b for a, b in zip(channel[lag:], its)) for channel, its in zip(host, workbench))
    return decibels(left), lag
