#!/usr/bin/python3
"""Measures a frame beside what people would write or take instead, on the same people in one run.

usage: benchmarks/compare_alternatives.py [BUILD [REPEATS]]

BUILD is build/release by default. Needs scikit-learn (Debian: python3-sklearn). Each alternative is the cheapest
form of its kind and does less: it knows one or two moments, no confidence and no groups that live, merge and split.

- association: what a tracker in Python does at least for each frame, places foretold at constant velocity
  and assigned to what is seen by the Hungarian method (Kuhn, 1955; scipy) within a metre;
- density: DBSCAN (Ester et al., 1996; scikit-learn) of the places;
- pairwise: whoever is near and walks alike, in numpy, and whom others connect.
"""
import pathlib
import sys
import tempfile
import time

BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release").resolve()
REPEATS = int(sys.argv[2]) if len(sys.argv) > 2 else 3
SIZES = (20, 50, 200, 1000)

sys.path.insert(0, str(BUILD / "python"))
import numpy  # noqa: E402
from scipy.optimize import linear_sum_assignment  # noqa: E402
from scipy.sparse.csgraph import connected_components  # noqa: E402
from scipy.spatial.distance import cdist  # noqa: E402
from sklearn.cluster import DBSCAN  # noqa: E402

import grouptracker  # noqa: E402

from walkers import LONG, RATE, SHORT, fastest, make_frames, program_ms, update_ms, write_csv  # noqa: E402

NEAR = 1.5  # metres
ALIKE = 0.05  # metres a frame


class Association:
    """Tracks of places, one step of constant velocity from frame to frame."""

    def __init__(self, positions):
        self.positions = positions
        self.velocities = numpy.zeros_like(positions)

    def step(self, positions):
        far = 1e6
        distances = cdist(self.positions + self.velocities, positions)
        tracks, seen = linear_sum_assignment(numpy.where(distances > 1.0, far, distances))
        self.velocities[tracks] = positions[seen] - self.positions[tracks]
        self.positions[tracks] = positions[seen]


def pairwise(before, now):
    """The number of everybody's group at a moment."""
    together = (cdist(now, now) < NEAR) & (cdist(now - before, now - before) < ALIKE)
    return connected_components(together, directed=False)[1]


def step_ms(step, frames):
    """Milliseconds a frame of a step that gets the places of the frame before and its own."""
    start = time.perf_counter()
    for (_, before), (_, now) in zip(frames[SHORT - 1:], frames[SHORT:]):
        step(before, now)
    return (time.perf_counter() - start) / (LONG - SHORT) * 1e3


def measure(people, folder):
    frames = make_frames(people)
    path = pathlib.Path(folder) / "tracks.csv"
    write_csv(frames, path)

    def associate():
        tracks = Association(frames[SHORT - 1][1].copy())
        return step_ms(lambda before, now: tracks.step(now), frames)

    return fastest({
        "ours: groups that live": lambda: update_ms(grouptracker.Tracker(rate=RATE), frames),
        "association": associate,
        "density": lambda: step_ms(lambda before, now: DBSCAN(eps=NEAR, min_samples=2).fit_predict(now), frames),
        "pairwise": lambda: step_ms(pairwise, frames),
        "ours: the whole program": lambda: program_ms(BUILD, path, folder),
    }, REPEATS)


def main():
    with tempfile.TemporaryDirectory() as folder:
        rows = {people: measure(people, folder) for people in SIZES}
    print(f"ms a frame  {'':12}" + "".join(f"{people:>16} people" for people in SIZES))
    for name in rows[SIZES[0]]:
        cells = (f"{row[name]:10.3f} {row[name] / row['ours: groups that live']:5.1f} times" for row in rows.values())
        print(f"{name:24}" + " ".join(cells))


if __name__ == "__main__":
    main()
