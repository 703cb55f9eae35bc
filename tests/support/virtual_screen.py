"""A screen without a display, for tests that drive a real window."""

import contextlib
import os
import subprocess


@contextlib.contextmanager
def virtual_screen(size):
    """Runs an X server of `size` pixels on a free number, which DISPLAY names, until the block ends.

    It goes on when its last client leaves, which would otherwise shut out the next one for a moment."""
    read_end, write_end = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-noreset", "-displayfd", str(write_end), "-screen", "0", f"{size[0]}x{size[1]}x24"],
        pass_fds=[write_end], stderr=subprocess.DEVNULL)
    os.close(write_end)
    try:
        with os.fdopen(read_end) as numbers:
            os.environ["DISPLAY"] = ":" + numbers.readline().strip()
        yield
    finally:
        server.terminate()
        server.wait()
