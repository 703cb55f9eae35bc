"""How fast our effects are beside other programs' on one file, in CPU time of the user: the rows that
tools/docs/measurements.py writes as its table "programs"."""

import dataclasses
import os
import pathlib
import shutil
import subprocess
import sys

ROUNDS = 5
PATIENCE = 15  # seconds, with one program in one row
RATE = 44100
SEED = 1


@dataclasses.dataclass(frozen=True)
class Comparison:
    """An effect of ours with settings ("id=value"), and what others do that comes nearest. sox: effects and their
    arguments. ffmpeg: audio filters, soundstretch: options. `clipped`: of the sound 6 dB over full scale."""
    title: str
    effect: str
    settings: tuple = ()
    sox: str = ""
    ffmpeg: str = ""
    soundstretch: str = ""
    clipped: bool = False


def bands(frequencies, sox, ffmpeg):
    """An effect of each for every frequency, the gains by turns."""
    pairs = [(hertz, (-6, 6)[i % 2]) for i, hertz in enumerate(frequencies)]
    return {"sox": " ".join(sox.format(hertz=hertz, gain=gain) for hertz, gain in pairs),
            "ffmpeg": ",".join(ffmpeg.format(hertz=hertz, gain=gain) for hertz, gain in pairs)}


def points(names, pairs):
    """Settings of a drawn curve: its count, and both values of each point."""
    count, first, second = names
    return (f"{count}={len(pairs)}", *(f"{name}{i}={value}" for i, pair in enumerate(pairs, 1)
                                       for name, value in zip((first, second), pair)))


HUM = (60, 120, 180, 240, 300, 360)
OCTAVES = [31.25 * 2 ** i for i in range(10)]
THIRDS = [round(1000 * 2 ** ((i - 16) / 3), 1) for i in range(30)]
NOTCH = {"sox": "bandreject {hertz} 30q", "ffmpeg": "bandreject=f={hertz}:width_type=q:width=30"}


def peaks(frequencies, q):
    return bands(frequencies, f"equalizer {{hertz}} {q}q {{gain}}",
                 f"equalizer=f={{hertz}}:width_type=q:width={q}:gain={{gain}}")


FOUR_VOICES = {
    "sox": "chorus 0.5 0.6 20 0.4 0.8 4 -s 35 0.4 0.8 4 -s 50 0.4 0.8 4 -s 65 0.4 0.8 4 -s",
    "ffmpeg": "chorus=0.5:0.6:20|35|50|65:0.4|0.4|0.4|0.4:0.8|0.8|0.8|0.8:4|4|4|4"}
VOCAL_BAND = points(("points", "frequency", "level"),
                    [(20, 0.1), (250, 0.1), (300, 0.631), (3000, 0.631), (3600, 0.1), (20000, 0.1)])
COMPARISONS = (
    Comparison("chorus, four voices", "chorus", **FOUR_VOICES),
    Comparison("chorus, four voices, without Highest Quality", "chorus", ("highQuality=off",), **FOUR_VOICES),
    Comparison("flanger", "flanger", sox="flanger 0.5 4.5 30 71 0.2 sine 25 linear",
               ffmpeg="flanger=delay=0.5:depth=4.5:regen=30:width=71:speed=0.2:shape=sinusoidal:phase=25:interp=linear"),
    Comparison("pitch shift by 3 semitones, low precision", "pitchshift", ("ratio=1.1892", "precision=low"),
               sox="pitch 300", soundstretch="-pitch=3"),
    Comparison("pitch shift by 3 semitones, high precision", "pitchshift", ("ratio=1.1892", "precision=high"),
               sox="pitch 300", soundstretch="-pitch=3"),
    Comparison("FFT filter, band pass", "fftfilter", VOCAL_BAND, sox="sinc -n 4095 300-3000",
               ffmpeg="firequalizer=delay=0.0464:gain_entry='entry(20,-90);entry(250,-90);entry(300,0);"
                      "entry(3000,0);entry(3600,-90)'"),
    Comparison("reverb", "reverb", sox="reverb 50 50 100 100 20 0"),
    Comparison("full reverb", "fullreverb", sox="reverb 50 50 100 100 25 0"),
    Comparison("studio reverb", "studioreverb", sox="reverb 50 40 50 100 0 0"),
    Comparison("dynamics, 4:1 above -20 dB", "dynamics",
               points(("pointCount", "pointInput", "pointOutput"), [(-100, -100), (-20, -20), (0, -15)]),
               sox="compand 0.01,0.1 -100,-100,-20,-20,0,-15",
               ffmpeg="acompressor=threshold=-20dB:ratio=4:attack=10:release=100:knee=1:link=maximum:detection=rms"),
    Comparison("noise reduction", "adaptivenoisereduction", sox="noisered PROFILE 0.21", ffmpeg="afftdn=nr=20:nf=-50"),
    Comparison("channel mixer, middle and side", "channelmixer",
               ("output1Input1=50", "output1Input2=50", "output2Input1=50", "output2Input2=-50"),
               sox="remix 1v0.5,2v0.5 1v0.5,2v-0.5", ffmpeg="pan=stereo|c0=0.5*c0+0.5*c1|c1=0.5*c0-0.5*c1"),
    Comparison("hard limiter, 6 dB", "hardlimiter", ("inputBoost=6",),
               ffmpeg="aresample=176400,alimiter=level_in=2:limit=0.98:level=0,aresample=44100"),
    Comparison("echo", "echo", sox="echos 0.8 0.9 500 0.4", ffmpeg="aecho=0.8:0.9:500:0.4"),
    Comparison("delay", "delay", sox="echo 0.8 0.9 100 0.35", ffmpeg="aecho=0.8:0.9:100:0.35"),
    Comparison("notch, six notches", "notch", tuple(f"enable{i}=on" for i in range(1, 7)),
               **bands(HUM, NOTCH["sox"], NOTCH["ffmpeg"])),
    Comparison("graphic equaliser, 10 bands set", "graphiceq10bands",
               tuple(f"gain{i}={-6 if i % 2 else 6}" for i in range(1, 11)), **peaks(OCTAVES, 1.4)),
    Comparison("graphic equaliser, 30 bands set", "graphiceq30bands",
               tuple(f"gain{i}={-6 if i % 2 else 6}" for i in range(1, 31)), **peaks(THIRDS, 4.3)),
    Comparison("parametric equaliser, five peaks", "parametriceq",
               tuple(f"gain{i}={6 if i % 2 else -6}" for i in range(3, 8)), **peaks((200, 500, 1000, 2500, 6000), 1)),
    Comparison("click remover", "autoclickremover", ffmpeg="adeclick"),
    Comparison("clip restoration, 6 dB over", "intraclip", ffmpeg="adeclip", clipped=True),
    Comparison("phase shifter, 90 degrees", "graphicphaseshifter",
               points(("points", "position", "phase"), [(0, 0.75), (1, 0.75)]), ffmpeg="aphaseshift=shift=0.5:order=16"),
)
PEERS = ("sox", "ffmpeg", "soundstretch")


def user_seconds(command):
    """CPU time of the user of a process of its own."""
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    errors = process.stderr.read().decode(errors="replace")
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{' '.join(command)}\n{errors}")
    return usage.ru_utime


class Track:
    """The sound that all of them get, in a folder of its own."""

    def __init__(self, build, folder, seconds):
        self.seconds = seconds
        self.workbench = str(build / "bin/workbench")
        self.folder = pathlib.Path(folder)
        self.sound = self.folder / "music.wav"
        self.clipped = self.folder / "clipped.wav"
        self.output = self.folder / "out.wav"
        self.profile = self.folder / "profile"
        subprocess.run([build / "bench/sound_material", folder, str(seconds), str(RATE), str(SEED), "music"],
                       check=True, stdout=subprocess.DEVNULL)
        loud = self.folder / "loud.wav"
        self.render(self.sound, loud, "--normalize", "0", "--bits", "float")
        self.render(loud, self.clipped, "--set", "gain=6", "--bits", "24")
        loud.unlink()
        if shutil.which("sox"):
            subprocess.run(["sox", self.sound, "-n", "trim", "0", "1", "noiseprof", self.profile], check=True,
                           stderr=subprocess.DEVNULL)

    def render(self, source, target, *options):
        subprocess.run([self.workbench, "render", "--effect", "amplify", *options, source, target], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def input(self, comparison):
        return str(self.clipped if comparison.clipped else self.sound)

    def ours(self, comparison):
        settings = [word for setting in comparison.settings for word in ("--set", setting)]
        return [self.workbench, "render", "--effect", comparison.effect, *settings, "--tail", "none", "--bits", "float",
                "--overwrite", self.input(comparison), str(self.output)]

    def sox(self, comparison):
        effects = comparison.sox.replace("PROFILE", str(self.profile)).split()
        return ["sox", "-V1", "-D", "--single-threaded", self.input(comparison), "-e", "floating-point", "-b", "32",
                str(self.output), *effects]

    def ffmpeg(self, comparison):
        return ["ffmpeg", "-nostdin", "-v", "error", "-threads", "1", "-filter_threads", "1", "-i",
                self.input(comparison), *(["-af", comparison.ffmpeg] if comparison.ffmpeg else []), "-c:a",
                "pcm_f32le", "-y", str(self.output)]

    def soundstretch(self, comparison):
        return ["soundstretch", self.input(comparison), str(self.output), *comparison.soundstretch.split()]


def measure(build, folder, seconds, wanted=""):
    """Of each comparison that holds the word: itself, a dictionary of program to times real time, and the peers that
    are not at hand. The programs take turns."""
    track = Track(build, folder, seconds)
    found = [peer for peer in PEERS if shutil.which(peer)]
    copying = {}
    rows = []
    for comparison in COMPARISONS:
        if wanted in comparison.title:
            programs = ["ours", *(peer for peer in found if getattr(comparison, peer))]
            rows.append((comparison, best_of_rounds(track, comparison, programs, copying)))
            print(f"{comparison.title}: {rows[-1][1]}", file=sys.stderr, flush=True)
    return [(comparison, {program: seconds / (time - copying[program, comparison.clipped])
                          for program, time in times.items()},
             [peer for peer in PEERS if getattr(comparison, peer) and peer not in found])
            for comparison, times in rows]


def best_of_rounds(track, comparison, programs, copying):
    """The least seconds of each program; those that take long are asked less often. What copying takes goes to
    `copying`, the least of all rounds."""
    copy = Comparison("copy", "amplify", clipped=comparison.clipped)
    best, spent = {}, dict.fromkeys(programs, 0)
    for _ in range(ROUNDS):
        for program in (each for each in programs if spent[each] < PATIENCE):
            command = getattr(track, program)
            time = user_seconds(command(comparison))
            spent[program] += time
            keep_least(best, program, time)
            # soundstretch can't copy a sound without working on it.
            keep_least(copying, (program, comparison.clipped),
                       user_seconds(command(copy)) if program != "soundstretch" else 0)
    return best


def keep_least(times, name, seconds):
    times[name] = min(seconds, times.get(name, seconds))
