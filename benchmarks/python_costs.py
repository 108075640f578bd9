#!/usr/bin/env python3
"""Measures what a call of the Python module costs: benchmarks/python_costs.py BUILD [PEOPLE [REPEATS]].

BUILD is a folder such as build/release. The same people, 50 by default, walk in pairs and alone. A frame costs
the program the difference between a long and a short run, divided by the frames between, so that its start
does not count. The kinds alternate and the fastest of each counts. The reference in pure Python is the rule
that people write first: two are together when they are near each other and walk alike, and so are those
whom others connect; it looks at one moment only.
"""
import math
import pathlib
import random
import subprocess
import sys
import tempfile
import time

BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release").resolve()
PEOPLE = int(sys.argv[2]) if len(sys.argv) > 2 else 50
REPEATS = int(sys.argv[3]) if len(sys.argv) > 3 else 5
SHORT, LONG, RATE = 50, 450, 10

sys.path.insert(0, str(BUILD / "python"))
import numpy  # noqa: E402

import grouptracker  # noqa: E402


def make_frames():
    """Ids and N x 2 positions of each frame: people who walk to and fro in a square, half of them in pairs."""
    chance = random.Random(1)
    walkers = []
    while len(walkers) < PEOPLE:
        place = complex(chance.uniform(0, 30), chance.uniform(0, 30))
        step = 0.12 * complex(math.cos(angle := chance.uniform(0, 6.28)), math.sin(angle))
        walkers.append((place, step))
        if len(walkers) < PEOPLE and chance.random() < 0.35:
            walkers.append((place + 0.7j * step / abs(step), step))
    ids = numpy.arange(1, PEOPLE + 1)
    for frame in range(LONG):
        at = [place + step * (90 - abs(frame % 180 - 90)) for place, step in walkers]
        yield ids, numpy.array([[p.real, p.imag] for p in at])


def write_csv(frames, path):
    with open(path, "w") as file:
        file.write("frame,id,x,y\n")
        for number, (ids, positions) in enumerate(frames, 1):
            for person, (x, y) in zip(ids.tolist(), positions.tolist()):
                file.write(f"{number},{person},{x!r},{y!r}\n")


def program_ms(path, folder):
    def run(last):
        start = time.perf_counter()
        subprocess.run([BUILD / "bin/grouptracker", "run", path, "--rate", str(RATE), "--frames", f":{last}",
                        "--output", "groups.jsonl", "--actors", "actors.jsonl", "--diagnostics", "none",
                        "--mobile-dump", "none", "--quiet"], cwd=folder, check=True)
        return time.perf_counter() - start
    return (run(LONG) - run(SHORT)) / (LONG - SHORT) * 1e3


def module_ms(frames, **options):
    tracker = grouptracker.Tracker(rate=RATE, **options)
    for ids, positions in frames[:SHORT]:
        tracker.update(ids, positions)
    start = time.perf_counter()
    for ids, positions in frames[SHORT:]:
        step = tracker.update(ids, positions)
        [(group.id, group.members, group.confidence) for group in step.groups]
    return (time.perf_counter() - start) / (LONG - SHORT) * 1e3


def pairwise(people, before):
    """Groups of a moment, as lists of ids: places and those of the frame before, by id."""
    head = {person: person for person in people}

    def find(person):
        while head[person] != person:
            person = head[person]
        return person

    persons = list(people)
    for i, a in enumerate(persons):
        for b in persons[i + 1:]:
            (ax, ay), (bx, by) = people[a], people[b]
            if math.hypot(ax - bx, ay - by) > 1.5:
                continue
            (ux, uy), (vx, vy) = before.get(a, people[a]), before.get(b, people[b])
            if math.hypot((ax - ux) - (bx - vx), (ay - uy) - (by - vy)) < 0.05:
                head[find(a)] = find(b)
    groups = {}
    for person in persons:
        groups.setdefault(find(person), []).append(person)
    return [group for group in groups.values() if len(group) > 1]


def reference_ms(frames):
    moments = [dict(zip(ids.tolist(), positions.tolist())) for ids, positions in frames]
    start = time.perf_counter()
    for before, now in zip(moments[SHORT - 1:], moments[SHORT:]):
        pairwise(now, before)
    return (time.perf_counter() - start) / (LONG - SHORT) * 1e3


def main():
    frames = list(make_frames())
    best = {}
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "tracks.csv"
        write_csv(frames, path)
        kinds = {
            "program: groups and process": lambda: program_ms(path, folder),
            "module: groups and process": lambda: module_ms(frames, actors=True),
            "module: groups": lambda: module_ms(frames),
            "pairwise rule in pure Python": lambda: reference_ms(frames),
        }
        for _ in range(REPEATS):
            for name, measure in kinds.items():
                best[name] = min(best.get(name, math.inf), measure())
    whole = best["program: groups and process"]
    print(f"{PEOPLE} people, ms a frame, and times the program's frame")
    for name, ms in best.items():
        print(f"  {name:30} {ms:7.3f} {ms / whole:6.2f}")


if __name__ == "__main__":
    main()
