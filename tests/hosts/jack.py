"""A JACK server without a sound card, and a client that plays a sound through others and hears what comes back."""

import array
import contextlib
import ctypes
import os
import subprocess
import tempfile
import threading
import time

BLOCK = 512
RATE = 48000
FOR_INPUT, FOR_OUTPUT = 1, 2  # of JACK's port flags
AUDIO = b"32 bit float mono audio"
PATIENCE = 20  # seconds


@contextlib.contextmanager
def server():
    """Runs a server, which the environment names, until the block ends; in a home of its own."""
    name = f"qo{os.getpid()}"
    with tempfile.TemporaryDirectory() as home:
        os.environ |= {"HOME": home, "XDG_RUNTIME_DIR": home, "JACK_DEFAULT_SERVER": name, "JACK_NO_START_SERVER": "1",
                       "JACK_NO_AUDIO_RESERVATION": "1"}
        log = open(f"{home}/jackd.log", "w")
        process = subprocess.Popen(["jackd", "-n", name, "--no-realtime", "-d", "dummy", "-r", str(RATE), "-p",
                                    str(BLOCK)], stdout=log, stderr=subprocess.STDOUT)
        try:
            subprocess.run(["jack_wait", "-s", name, "-w", "-t", str(PATIENCE)], check=True, stdout=log, stderr=log)
            yield
        finally:
            process.terminate()
            process.wait()
            log.close()


def eventually(call, what):
    """The first true value of the call."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        if value := call():
            return value
        time.sleep(0.02)
    raise TimeoutError(what)


class Client:
    """Two channels out and in."""

    def __init__(self):
        self.jack = ctypes.CDLL("libjack.so.0")
        for name in ("jack_client_open", "jack_port_register", "jack_port_get_buffer", "jack_port_name"):
            getattr(self.jack, name).restype = ctypes.c_void_p
        self.handle = ctypes.c_void_p(self.jack.jack_client_open(b"probe", 0, None))
        if not self.handle:
            raise RuntimeError("there is no JACK server")
        self.outs = [self.port(f"out{i}", FOR_OUTPUT) for i in (1, 2)]
        self.ins = [self.port(f"in{i}", FOR_INPUT) for i in (1, 2)]
        self.callback = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_uint32, ctypes.c_void_p)(self.process)
        self.sound, self.heard, self.place = None, None, 0
        self.is_done = threading.Event()
        self.jack.jack_set_process_callback(self.handle, self.callback, None)
        self.jack.jack_activate(self.handle)

    def port(self, name, direction):
        return ctypes.c_void_p(self.jack.jack_port_register(self.handle, name.encode(), AUDIO, direction, 0))

    def process(self, frames, _):
        size = frames * 4
        place = self.place * 4
        playing = self.sound is not None and not self.is_done.is_set()
        for i in (0, 1):
            out = self.jack.jack_port_get_buffer(self.outs[i], frames)
            ctypes.memset(out, 0, size)
            if playing:
                piece = self.sound[i][place:place + size]
                ctypes.memmove(out, piece, len(piece))
                self.heard[i] += ctypes.string_at(self.jack.jack_port_get_buffer(self.ins[i], frames), size)
        if playing:
            self.place += frames
            if self.place * 4 >= len(self.sound[0]):
                self.is_done.set()
        return 0

    def connect(self, host):
        """With the client of that name, when it is there."""
        pairs = [(f"probe:out{i}", f"{host}:in{i}") for i in (1, 2)] + [(f"{host}:out{i}", f"probe:in{i}") for i in (1, 2)]
        for source, target in pairs:
            eventually(lambda: self.jack.jack_connect(self.handle, source.encode(), target.encode()) in (0, 17),
                       f"{source} can't be connected to {target}")

    def play(self, channels, later=8192):
        """As fast as it goes. What comes back, a block late and so many frames longer."""
        self.is_done.set()
        self.sound = [channel.tobytes() + bytes(4 * later) for channel in channels]
        self.heard, self.place = [bytearray(), bytearray()], 0
        self.jack.jack_set_freewheel(self.handle, 1)
        self.is_done.clear()
        if not self.is_done.wait(PATIENCE):
            raise TimeoutError("the sound does not come to its end")
        self.jack.jack_set_freewheel(self.handle, 0)
        return [array.array("f", bytes(channel)) for channel in self.heard]

    def close(self):
        self.jack.jack_client_close(self.handle)
