#!/usr/bin/env python3
"""Measures what drawing and exporting cost a run: benchmarks/output_costs.py [PROGRAM [REPEATS]].

All runs take the same simulated scene and alternate, so that their ratios hold on a busy machine,
too; the fastest of each kind counts. "more wall" is by how much the run takes longer than the one
without options, "own CPU" how much more processor time it needs: what runs beside the tracking
lengthens the run by less than its own time, as long as a second core is free. The second row
repeats the run without options: what differs there is noise.
"""
import pathlib
import subprocess
import sys
import tempfile

from commands import measure

PROGRAM = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release/bin/grouptracker").resolve()
REPEATS = int(sys.argv[2]) if len(sys.argv) > 2 else 5
PARAMETERS = pathlib.Path(__file__).resolve().parent.parent / "samples/parameters/video.txt"

OPTIONS = {
    "nothing": [],
    "nothing again": [],
    "--events": ["--events", "events.jsonl"],
    "--graph": ["--graph", "tree.dot"],
    "--csv": ["--csv", "members.csv"],
    "--mot": ["--mot", "groups.txt"],
    "--sqlite": ["--sqlite", "run.sqlite"],
    "--video (images, top view)": ["--video", "film.mp4", "--top-view"],
}


def run_with(options):
    return [PROGRAM, "run", "scene/scene.jsonl", "--parameters", PARAMETERS,
            "--calibration", "scene/calibration.yml", "--output", "groups.jsonl",
            "--diagnostics", "none", "--mobile-dump", "none", "--quiet", *options]


def main():
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([PROGRAM, "simulate", "--people", "30", "--frames", "200", "--images",
                        "--quiet", "--output", "scene"], cwd=folder, check=True)
        best = {}
        for _ in range(REPEATS):
            for name, options in OPTIONS.items():
                now = measure(run_with(options), folder)
                best[name] = tuple(map(min, best.get(name, now), now))
    plain = best["nothing"]
    print("| option | wall s | more wall s | own CPU s | wall / CPU of the option | memory MB |")
    print("| --- | --- | --- | --- | --- | --- |")
    for name, (wall, cpu, memory) in best.items():
        more_wall, own = wall - plain[0], cpu - plain[1]
        ratio = f"{more_wall / own:.2f}" if own > 0.02 else "-"
        print(f"| {name} | {wall:.2f} | {more_wall:+.2f} | {own:+.2f} | {ratio} | {memory:.0f} |")


if __name__ == "__main__":
    main()
