#!/usr/bin/env python3
"""Writes scientific_filter.txt beside this file: responses of filters designed by SciPy (Debian package python3-scipy).

A line a filter: family, mode, order, sample rate, cutoff, high cutoff, pass ripple, stop attenuation; then by fours the
frequency in hertz, the level in dB, the phase in degrees and the group delay in ms, for frequencies at which the level
is above -140 dB.
"""
import pathlib
import random

import numpy as np
import scipy
from scipy import optimize, signal

FAMILIES = ("bessel", "butterworth", "chebyshev1", "chebyshev2")
MODES = ("lowpass", "highpass", "bandpass", "bandstop")
SETTINGS = [  # sample rate, cutoff, high cutoff, ripple, attenuation
    (44100, 1000, 4000, 1, 60), (44100, 60, 9000, 0.1, 100), (48000, 15000, 21000, 3, 20), (96000, 440, 466, 0.5, 40),
    (192000, 31.5, 63, 2, 80)]
ORDERS = (1, 2, 3, 4, 7, 10, 15, 20)
POINTS = 6


def prototype(family, order, ripple, attenuation):
    if family == "bessel":
        return signal.besselap(order, norm="mag")
    if family == "butterworth":
        return signal.buttap(order)
    if family == "chebyshev1":
        return signal.cheb1ap(order, ripple)
    z, p, k = signal.cheb2ap(order, attenuation)
    half = np.log10(0.5) / 2 * 20  # SciPy's ends at the stop band's edge, ours at half of the power

    def loss(w):
        return 20 * np.log10(abs(signal.freqs_zpk(z, p, k, [w])[1][0])) - half

    return signal.lp2lp_zpk(z, p, k, wo=1 / optimize.brentq(loss, 1e-7, 1, xtol=1e-15, rtol=1e-14))


def digital(family, mode, order, rate, low, high, ripple, attenuation):
    z, p, k = prototype(family, order, ripple, attenuation)
    warped = [2 * rate * np.tan(np.pi * f / rate) for f in (low, high)]
    centre, width = np.sqrt(warped[0] * warped[1]), warped[1] - warped[0]
    analog = {"lowpass": lambda: signal.lp2lp_zpk(z, p, k, wo=warped[0]),
              "highpass": lambda: signal.lp2hp_zpk(z, p, k, wo=warped[0]),
              "bandpass": lambda: signal.lp2bp_zpk(z, p, k, wo=centre, bw=width),
              "bandstop": lambda: signal.lp2bs_zpk(z, p, k, wo=centre, bw=width)}[mode]()
    return signal.bilinear_zpk(*analog, fs=rate)


def response(filter_, hertz, rate):
    return signal.freqz_zpk(*filter_, [hertz], fs=rate)[1][0]


def delay(filter_, hertz, rate):
    """In ms: how much the phase falls over a millionth of the frequency."""
    half = hertz * 5e-7
    fall = np.angle(response(filter_, hertz - half, rate) / response(filter_, hertz + half, rate))
    return fall / (2 * np.pi * 2 * half) * 1000


def points(filter_, rate, low, high):
    result = []
    while len(result) < POINTS:
        hertz = round(float(np.exp(random.uniform(np.log(max(low / 4, 10)), np.log(min(high * 4, rate * 0.49))))), 3)
        value = response(filter_, hertz, rate)
        if abs(value) > 1e-7:
            result += [(hertz, 20 * np.log10(abs(value)), np.degrees(np.angle(value)), delay(filter_, hertz, rate))]
    return result


def main():
    random.seed(1)
    lines = [f"# SciPy {scipy.__version__}, made by make_scientific_filter.py"]
    for family in FAMILIES:
        for mode in MODES:
            for i, order in enumerate(ORDERS):
                settings = SETTINGS[(i + MODES.index(mode)) % len(SETTINGS)]
                rate, low, high = settings[:3]
                found = points(digital(family, mode, order, *settings), rate, low, high if "band" in mode else low)
                numbers = " ".join(f"{a:.3f} {b:.5f} {c:.3f} {d:.6g}" for a, b, c, d in found)
                lines.append(f"{family} {mode} {order} " + " ".join(map(str, settings)) + " " + numbers)
    pathlib.Path(__file__).with_name("scientific_filter.txt").write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
