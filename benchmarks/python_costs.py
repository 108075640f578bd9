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
import sys
import tempfile
import time

BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release").resolve()
PEOPLE = int(sys.argv[2]) if len(sys.argv) > 2 else 50
REPEATS = int(sys.argv[3]) if len(sys.argv) > 3 else 5

sys.path.insert(0, str(BUILD / "python"))
import grouptracker  # noqa: E402

from walkers import LONG, RATE, SHORT, fastest, make_frames, program_ms, update_ms, write_csv  # noqa: E402


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
    frames = make_frames(PEOPLE)
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "tracks.csv"
        write_csv(frames, path)
        best = fastest({
            "program: groups and process": lambda: program_ms(BUILD, path, folder, "--actors", "actors.jsonl"),
            "module: groups and process": lambda: update_ms(grouptracker.Tracker(rate=RATE, actors=True), frames),
            "module: groups": lambda: update_ms(grouptracker.Tracker(rate=RATE), frames),
            "pairwise rule in pure Python": lambda: reference_ms(frames),
        }, REPEATS)
    whole = best["program: groups and process"]
    print(f"{PEOPLE} people, ms a frame, and times the program's frame")
    for name, ms in best.items():
        print(f"  {name:30} {ms:7.3f} {ms / whole:6.2f}")


if __name__ == "__main__":
    main()
