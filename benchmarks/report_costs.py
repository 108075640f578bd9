#!/usr/bin/env python3
"""Measures what a report costs: benchmarks/report_costs.py [BUILD [FRAMES [OTHER_PROGRAM]]].

On a scene of 50 people at 25 frames a second, half an hour unless FRAMES are said: the report beside
reading the run's groups alone (`events`) and beside counting the lines of the scene, which any
reader has to do. All take turns, the fastest of each counts. Another program, such as that of an
earlier version, takes part when it is given.
"""
import pathlib
import subprocess
import sys
import tempfile

from commands import measure

BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release").resolve()
FRAMES = sys.argv[2] if len(sys.argv) > 2 else "45000"
OTHER = pathlib.Path(sys.argv[3]).resolve() if len(sys.argv) > 3 else None
REPEATS = 3

PROGRAM = BUILD / "bin/grouptracker"
REPORT = ["report", "scene.jsonl", "actors.jsonl", "--output", "report.html"]
COMMANDS = {
    "report": [PROGRAM, *REPORT],
    "reading the groups alone": [PROGRAM, "events", "actors.jsonl"],
    "counting the lines of the scene": ["wc", "-l", "scene.jsonl"],
    **({"report of the other program": [OTHER, *REPORT]} if OTHER else {}),
}


def main():
    with tempfile.TemporaryDirectory() as folder:
        with open(f"{folder}/scene.jsonl", "wb") as scene:
            subprocess.run([BUILD / "bin/steady_scene", "50", FRAMES], stdout=scene, check=True)
        subprocess.run([PROGRAM, "run", "scene.jsonl", "--rate", "25", "--actors", "actors.jsonl",
                        "--diagnostics", "none", "--mobile-dump", "none", "--quiet"],
                       cwd=folder, check=True)
        best = {}
        for _ in range(REPEATS):
            for name, command in COMMANDS.items():
                now = measure(command, folder)
                best[name] = tuple(map(min, best.get(name, now), now))
    print("| | wall s | processor s | share of the report | memory MB |")
    print("| --- | --- | --- | --- | --- |")
    for name, (wall, cpu, memory) in best.items():
        print(f"| {name} | {wall:.1f} | {cpu:.1f} | {cpu / best['report'][1]:.2f} | {memory:.0f} |")


if __name__ == "__main__":
    main()
