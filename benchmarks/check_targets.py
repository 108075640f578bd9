#!/usr/bin/env python3
"""Measures the process in one run and tells which of its speed targets hold.

    benchmarks/check_targets.py [BUILD_FOLDER] [--frames N]

BUILD_FOLDER is build/release by default; --frames N is how long the memory is watched (20000).
Everything is a ratio of processor times within this run. The exit status is 0 whether the targets
hold or not: timings decide nothing."""

import argparse
import json
import os
import pathlib
import re
import resource
import subprocess
import tempfile

PARAMETERS = pathlib.Path(__file__).resolve().parent.parent / "samples/parameters/walking.txt"


def measure(build, program):
    """What a program of benchmarks measured, by the name of the benchmark."""
    output = subprocess.run([build / "bin" / program, "--benchmark_format=json"], check=True,
                            stdout=subprocess.PIPE).stdout
    rows = json.loads(output)["benchmarks"]
    return {re.sub("/iterations.*", "", row["name"]): row for row in rows}


def child_seconds(command, **options):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, **options)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def whole_run(build, frames=300):
    """Milliseconds a frame of `grouptracker run` for 50 people, everything on."""
    with tempfile.TemporaryDirectory() as folder:
        text = PARAMETERS.read_text()
        for label, value in (("temporalWinSize:", 10), ("temporalWinForRemoval:", 60),
                             ("coherenceThreshold:", 8), ("maxDistGroupCreation:", 2),
                             ("maxDistGroupUpdate:", 3)):
            text = re.sub(label + r"\s+\S+", f"{label} {value}", text)
        pathlib.Path(folder, "parameters.txt").write_text(text)
        seconds = []
        for count in (100, 100 + frames):
            scene = pathlib.Path(folder, f"{count}.jsonl")
            with scene.open("w") as out:
                subprocess.run([build / "bin/steady_scene", "50", str(count)], check=True, stdout=out)
            command = [build.resolve() / "bin/grouptracker", "run", scene, "--parameters",
                       "parameters.txt", "--actors", "actors.jsonl", "--mobile-dump", "/dev/null",
                       "--quiet"]
            seconds.append(min(child_seconds(command, cwd=folder, stdout=subprocess.DEVNULL)
                               for _ in range(3)))
        return 1000 * (seconds[1] - seconds[0]) / frames


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
    memory, time = flatness(options.build, options.frames)
    rows = [(f"process() with everything on against printf and ofstream, {n} people",
             ms[f"process/{n}/on"] / ms[f"printf/{n}"], limit)
            for n, limit in ((50, 1 / 10), (200, 1 / 10), (1000, 1 / 8))]
    rows += [
        ("from 50 to 200 people", ms["process/200/on"] / ms["process/50/on"], 9),
        ("\"temporalWinForRemoval:\" 60 to 120",
         ms["process/50/window 10, removal 120"] / ms["process/50/window 10, removal 60"], 1.7),
        ("\"temporalWinSize:\" 10 to 20",
         ms["process/50/window 20, removal 60"] / ms["process/50/window 10, removal 60"], 1.5),
        (f"resident memory at frame {options.frames} against the first rows", memory, 1.1),
        (f"time of a frame at frame {options.frames} against the first rows", time, 1.1),
        ("one dense group of 60 against groups of 3",
         ms["process/60/one dense group"] / ms["process/60/small groups"], 3),
        ("whole `grouptracker run` a frame against process(), 50 people",
         whole_run(options.build) / ms["process/50/on"], 1.5),
        ("diagnostics off against on, 50 people", ms["process/50/off"] / ms["process/50/on"], 0.5),
    ]
    rows += [(f"evidence and groups against process(), 50 people, {rate} frames a second",
              evidence[f"evidence/{rate} frames a second/on"]["share"], 1 / 5)
             for rate in ("2.5", "10", "25")]
    for name in ms:
        print(f"{name:45} {ms[name]:10.3f} ms")
    print()
    for name, ratio, limit in rows:
        verdict = "holds" if ratio <= limit else "MISSED"
        print(f"{name:75} {ratio:8.3f}  at most {limit:6.3f}  {verdict}")


if __name__ == "__main__":
    main()
