#!/usr/bin/env python3
"""Measures what a batch costs: benchmarks/batch_costs.py [PROGRAM [RECORDINGS [ROWS]]].

Rounds of single runs, a batch with one job and one with two take turns over the same short
recordings, so that their ratios hold on a busy machine, too; the fastest of each kind counts.
"overhead" is the time of a recording in the batch with one job less that of `run` alone on the same
input; it is negative where the batch saves a program's start. The last table walks through
manifests of growing length, once while all recordings are open and once when none is any more, and
tells time and memory.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

from commands import measure

PROGRAM = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release/bin/grouptracker").resolve()
RECORDINGS = int(sys.argv[2]) if len(sys.argv) > 2 else 200
ROWS = int(sys.argv[3]) if len(sys.argv) > 3 else 100_000
ROUNDS = 3
SCENES = 10


def write_manifest(path, inputs):
    rows = "".join(f"r{i},{name}\n" for i, name in enumerate(inputs))
    path.write_text("name,input\n" + rows)


def batch(folder, results, jobs, *more):
    return measure([PROGRAM, "batch", "manifest.csv", "--output", results, "--jobs", str(jobs), "--quiet", *more],
                   folder)


def measure_throughput(folder, inputs):
    seconds = {}
    for turn in range(ROUNDS):
        start = time.perf_counter()
        for name in inputs[:SCENES * 2]:
            measure([PROGRAM, "run", name, "--output", "groups.jsonl", "--diagnostics", "none", "--mobile-dump", "none",
                     "--quiet"], folder)
        alone = (time.perf_counter() - start) / (SCENES * 2)
        kinds = {
            "run alone": alone,
            "batch --jobs 1 --no-report": batch(folder, f"a{turn}", 1, "--no-report")[0] / len(inputs),
            "batch --jobs 2 --no-report": batch(folder, f"b{turn}", 2, "--no-report")[0] / len(inputs),
            "batch --jobs 1": batch(folder, f"c{turn}", 1)[0] / len(inputs),
            "batch --jobs 2": batch(folder, f"d{turn}", 2)[0] / len(inputs),
        }
        for kind, time_of_one in kinds.items():
            seconds.setdefault(kind, []).append(time_of_one)
    print("| kind | ms a recording |\n| --- | --- |")
    for kind, times in seconds.items():
        print(f"| {kind} | {min(times) * 1000:.1f} |")
    one, two = min(seconds["batch --jobs 1"]), min(seconds["batch --jobs 2"])
    plain = min(seconds["batch --jobs 1 --no-report"])
    print(f"\nthroughput of two jobs: {one / two:.2f} times, without reports "
          f"{plain / min(seconds['batch --jobs 2 --no-report']):.2f} times (wanted: 1.85)")
    print(f"overhead beside run alone: {(plain - min(seconds['run alone'])) * 1000:.0f} ms "
          f"(wanted: below 50)\n")


def pretend_made(recordings, rows):
    """Results of all rows, which are those of the first one."""
    most_links = 10_000  # file systems allow some ten thousand to a file
    for row in range(1, rows):
        place = recordings / f"r{row}"
        if not place.exists():
            place.mkdir()
            source = recordings / f"r{row - row % most_links}"
            for file in (source if source != place else recordings / "r0").iterdir():
                (shutil.copyfile if source == place else os.link)(file, place / file.name)


def measure_rows(folder, name):
    write_manifest(folder / "manifest.csv", [name])
    batch(folder, "made", 1, "--no-report")
    print("| rows of the manifest | all open, s | MB | none open, s | MB |\n| --- | --- | --- | --- | --- |")
    rows = 1000
    while rows <= ROWS:
        write_manifest(folder / "manifest.csv", [name] * rows)
        pretend_made(folder / "made" / "recordings", rows)
        columns = []
        for results in ("none", "made"):
            wall, _, memory = measure([PROGRAM, "batch", "manifest.csv", "--output", results, "--list", "--no-report"],
                                      folder)
            columns.append(f"{wall:.1f} | {memory:.1f}")
        print(f"| {rows} | {' | '.join(columns)} |")
        rows *= 10


def main():
    with tempfile.TemporaryDirectory() as text:
        folder = pathlib.Path(text)
        for i in range(SCENES):
            subprocess.run([PROGRAM, "simulate", "--people", "20", "--frames", "300", "--quiet",
                            "--seed", str(i), "--output", f"scene{i}"], cwd=folder, check=True)
        inputs = [f"scene{i % SCENES}/scene.jsonl" for i in range(RECORDINGS)]
        write_manifest(folder / "manifest.csv", inputs)
        measure_throughput(folder, inputs)
        measure_rows(folder, inputs[0])


if __name__ == "__main__":
    main()
