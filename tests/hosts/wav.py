"""Sound files of 32-bit floats: lists of channels, each an array of samples."""

import array
import struct

FLOAT = 3  # of WAV's formats


def write(path, channels, rate):
    frames = array.array("f", (sample for frame in zip(*channels) for sample in frame)).tobytes()
    head = struct.pack("<HHIIHH", FLOAT, len(channels), rate, rate * 4 * len(channels), 4 * len(channels), 32)
    chunks = b"WAVE" + chunk(b"fmt ", head) + chunk(b"data", frames)
    with open(path, "wb") as file:
        file.write(chunk(b"RIFF", chunks))


def chunk(name, data):
    return name + struct.pack("<I", len(data)) + data


def read(path):
    """The channels, and the sample rate."""
    with open(path, "rb") as file:
        data = file.read()
    place, count, rate, samples = 12, 0, 0, None
    while place + 8 <= len(data) and samples is None:
        name, size = struct.unpack_from("<4sI", data, place)
        if name == b"fmt ":
            _, count, rate, _, _, bits = struct.unpack_from("<HHIIHH", data, place + 8)
            if bits != 32:
                raise ValueError(f"{path}: samples of {bits} bits")
        if name == b"data":
            size = min(size, len(data) - place - 8)  # a host that wrote to a pipe could not fill it in
            samples = array.array("f", data[place + 8:place + 8 + size // 4 * 4])
        place += 8 + size + size % 2
    return [samples[channel::count] for channel in range(count)], rate
