"""People who walk to and fro in a square, half of them in pairs, and what a frame of them costs this project: for
the comparisons of benchmarks/."""
import math
import random
import subprocess
import time

import numpy

#: Frames before anything counts, and all frames; frames a second.
SHORT, LONG, RATE = 50, 450, 10


def make_frames(people):
    """Ids and N x 2 positions in metres of each frame; the square is as large as keeps the crowd as dense."""
    chance = random.Random(1)
    side = 30 * math.sqrt(people / 50)
    walkers = []
    while len(walkers) < people:
        place = complex(chance.uniform(0, side), chance.uniform(0, side))
        step = 0.12 * complex(math.cos(angle := chance.uniform(0, 6.28)), math.sin(angle))
        walkers.append((place, step))
        if len(walkers) < people and chance.random() < 0.35:
            walkers.append((place + 0.7j * step / abs(step), step))
    ids = numpy.arange(1, people + 1)
    frames = []
    for frame in range(LONG):
        at = [place + step * (90 - abs(frame % 180 - 90)) for place, step in walkers]
        frames.append((ids, numpy.array([[p.real, p.imag] for p in at])))
    return frames


def write_csv(frames, path):
    with open(path, "w") as file:
        file.write("frame,id,x,y\n")
        for number, (ids, positions) in enumerate(frames, 1):
            for person, (x, y) in zip(ids.tolist(), positions.tolist()):
                file.write(f"{number},{person},{x!r},{y!r}\n")


def program_ms(build, path, folder, *options):
    """Milliseconds a frame of `grouptracker run`: a long run less a short one, so that its start does not count."""
    def run(last):
        start = time.perf_counter()
        subprocess.run([build / "bin/grouptracker", "run", path, "--rate", str(RATE), "--frames", f":{last}",
                        "--output", "groups.jsonl", "--diagnostics", "none", "--mobile-dump", "none", "--quiet",
                        *options], cwd=folder, check=True)
        return time.perf_counter() - start
    return (run(LONG) - run(SHORT)) / (LONG - SHORT) * 1e3


def update_ms(tracker, frames):
    """Milliseconds a frame of a `grouptracker.Tracker`, looked at as a caller would."""
    for ids, positions in frames[:SHORT]:
        tracker.update(ids, positions)
    start = time.perf_counter()
    for ids, positions in frames[SHORT:]:
        step = tracker.update(ids, positions)
        [(group.id, group.members, group.confidence) for group in step.groups]
    return (time.perf_counter() - start) / (LONG - SHORT) * 1e3


def fastest(kinds, repeats):
    """What each kind measures at its best, by its name; the kinds alternate."""
    best = {}
    for _ in range(repeats):
        for name, measure in kinds.items():
            best[name] = min(best.get(name, math.inf), measure())
    return best
