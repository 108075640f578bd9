#!/usr/bin/env python3
"""Measures the process in one run and tells which of its speed targets hold.

    benchmarks/check_targets.py [BUILD_FOLDER] [--frames N]

BUILD_FOLDER is build/release by default; --frames N is how long the memory is watched (20000).
Everything is a ratio within this run, of processor times where a row does not say wall. The exit status is 0 whether the targets
hold or not: timings decide nothing."""

import argparse
import json
import os
import pathlib
import re
import statistics
import subprocess
import tempfile

from commands import measure as measure_command

PARAMETERS = pathlib.Path(__file__).resolve().parent.parent / "samples/parameters/walking.txt"


def measure(build, program, which="."):
    """What a program of benchmarks measured, by the name of the benchmark."""
    output = subprocess.run([build / "bin" / program, "--benchmark_format=json",
                             f"--benchmark_filter={which}"], check=True,
                            stdout=subprocess.PIPE).stdout
    rows = json.loads(output)["benchmarks"]
    return {re.sub("/iterations.*", "", row["name"]): row for row in rows}


class WholeRun:
    """`grouptracker run` on steady scenes of two lengths, whose difference is what the frames cost once
    the history is as long as it gets."""

    FILLED = 90  # frames until then
    FRAMES = {50: 1800, 200: 600, 1000: 100}  # more; a few seconds of work

    def __init__(self, build, folder, people):
        self.build = build.resolve()
        self.folder = pathlib.Path(folder)
        self.people = people
        text = PARAMETERS.read_text()
        for label, value in (("temporalWinSize:", 10), ("temporalWinForRemoval:", 60),
                             ("coherenceThreshold:", 8), ("maxDistGroupCreation:", 2),
                             ("maxDistGroupUpdate:", 3)):
            text = re.sub(label + r"\s+\S+", f"{label} {value}", text)
        (self.folder / "parameters.txt").write_text(text)
        self.lengths = (self.FILLED, self.FILLED + self.FRAMES[people])
        for count in self.lengths:
            with self.scene(count).open("w") as out:
                subprocess.run([self.build / "bin/steady_scene", str(people), str(count)], check=True,
                               stdout=out)

    def scene(self, count):
        return self.folder / f"{self.people}-{count}.jsonl"

    def costs(self, *options, repeats=3):
        """Processor and wall milliseconds a frame."""
        best = []
        for count in self.lengths:
            command = [self.build / "bin/grouptracker", "run", self.scene(count), "--parameters",
                       "parameters.txt", "--rate", "25", "--quiet", *options]
            costs = [measure_command(command, self.folder)[1::-1] for _ in range(repeats)]
            best.append([min(column) for column in zip(*costs)])
        frames = self.lengths[1] - self.lengths[0]
        return [1000 * (long - short) / frames for short, long in zip(*best)]


def run_with_everything(build):
    """Processor milliseconds a frame for 50 people."""
    with tempfile.TemporaryDirectory() as folder:
        return WholeRun(build, folder, 50).costs("--actors", "actors.jsonl", "--mobile-dump",
                                                 "/dev/null")[0]


def process_ms(build, people, repetitions=5):
    """Processor milliseconds of process() without lines and dump: the median of several processes."""
    name = f"process/{people}/off"
    return statistics.median(measure(build, "process_benchmark", f"^{name}/")[name]["real_time"]
                             for _ in range(repetitions))


def run_against_process(build, people, rounds=5):
    """Processor and wall time of a frame of a plain run, without lines and dump, as multiples of the
    processor time of process(): medians of rounds, since the speed of a processor changes."""
    with tempfile.TemporaryDirectory() as folder:
        run = WholeRun(build, folder, people)
        rows = []
        for _ in range(rounds):
            before = process_ms(build, people)
            costs = run.costs("--output", "groups.jsonl", "--diagnostics", "none", "--mobile-dump",
                              "none", repeats=1)
            process = (before + process_ms(build, people)) / 2
            rows.append([cost / process for cost in costs])
    return [statistics.median(column) for column in zip(*rows)]


def flatness(build, frames):
    """Resident memory and time at the end against those at the first measured row."""
    text = subprocess.run([build / "bin/flat_memory", str(frames)], check=True,
                          stderr=subprocess.PIPE).stderr.decode()
    rows = [[float(x) for x in line.split()] for line in text.splitlines()[1:]]
    return rows[-1][1] / rows[0][1], rows[-1][2] / rows[0][2]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", nargs="?", default="build/release", type=pathlib.Path)
    parser.add_argument("--frames", default=20000, type=int)
    options = parser.parse_args()
    os.environ["LC_ALL"] = "C"
    ms = {name: row["real_time"]
          for name, row in measure(options.build, "process_benchmark").items()}
    evidence = measure(options.build, "evidence_benchmark")
    memory, slowness = flatness(options.build, options.frames)
    rows = [(f"process() with everything on against printf and ofstream, {n} people",
             ms[f"process/{n}/on"] / ms[f"printf/{n}"], limit)
            for n, limit in ((50, 1 / 10), (200, 1 / 10), (1000, 1 / 8))]
    rows += [(f"the same against formatting it with NumberText alone, {n} people",
              ms[f"process/{n}/on"] / ms[f"number_text/{n}"], limit)
             for n, limit in ((50, 2.2), (200, 1.7), (1000, 1.7))]
    rows += [
        ("from 50 to 200 people", ms["process/200/on"] / ms["process/50/on"], 7),
        ("\"temporalWinForRemoval:\" 60 to 120",
         ms["process/50/window 10, removal 120"] / ms["process/50/window 10, removal 60"], 1.7),
        ("\"temporalWinSize:\" 10 to 20",
         ms["process/50/window 20, removal 60"] / ms["process/50/window 10, removal 60"], 1.4),
        (f"resident memory at frame {options.frames} against the first rows", memory, 1.1),
        (f"time of a frame at frame {options.frames} against the first rows", slowness, 1.1),
        ("one dense group of 60 against groups of 3",
         ms["process/60/one dense group"] / ms["process/60/small groups"], 3),
        ("whole `grouptracker run` a frame against process(), 50 people",
         run_with_everything(options.build) / ms["process/50/on"], 1.5),
        ("diagnostics off against on, 50 people", ms["process/50/off"] / ms["process/50/on"], 0.5),
    ]
    rows += [(f"evidence and groups against process(), 50 people, {rate} frames a second",
              evidence[f"evidence/{rate} frames a second/on"]["share"], 1 / 5)
             for rate in ("2.5", "10", "25")]
    for people in WholeRun.FRAMES:
        processor, wall = run_against_process(options.build, people)
        plain = "plain `grouptracker run`, no lines, no dump"
        rows += [(f"{plain}, processor time against process() off, {people} people", processor, 1.3),
                 (f"{plain}, wall time against process() off, {people} people", wall, 1.1)]
    for name in ms:
        print(f"{name:45} {ms[name]:10.3f} ms")
    print()
    for name, ratio, limit in rows:
        verdict = "holds" if ratio <= limit else "MISSED"
        print(f"{name:95} {ratio:8.3f}  at most {limit:6.3f}  {verdict}")


if __name__ == "__main__":
    main()
