#!/usr/bin/python3
"""Measures a frame beside what people would write or take instead, on the same people in one run.

usage: benchmarks/compare_alternatives.py [BUILD [REPEATS]]

BUILD is build/release by default. Needs scikit-learn (Debian: python3-sklearn). Each alternative is the cheapest
form of its kind and does less: it knows one or two moments, no confidence and no groups that live, merge and split.

- assignment: a part of what a tracker does for each frame: distances from where people were going to who is
  seen, and the best assignment within a metre by the Hungarian method (Kuhn, 1955; scipy);
- tracking: the whole of that step as a tracker in Python takes it: a filter of each person (Kalman, 1960) at
  constant velocity foretells its place, the assignment follows within the gate of the filter, filters are
  corrected by what they were assigned to, tracks begin and end; in numpy, all people at once;
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


class Assignment:
    """Places one step of constant velocity from frame to frame, assigned."""

    def __init__(self, positions):
        self.positions = positions
        self.velocities = numpy.zeros_like(positions)

    def step(self, positions):
        far = 1e6
        distances = cdist(self.positions + self.velocities, positions)
        tracks, seen = linear_sum_assignment(numpy.where(distances > 1.0, far, distances))
        self.velocities[tracks] = positions[seen] - self.positions[tracks]
        self.positions[tracks] = positions[seen]


class Tracking:
    """Tracks of people, each a filter of place and velocity; both axes of a track have the same variances."""

    SEEN = 0.05 ** 2  # variance of a place that is seen, square metres
    PLACE, BOTH, VELOCITY = 2.5e-7, 5e-7, 1e-6  # what walking adds to the variances from frame to frame
    GATE = 9.21  # squared distance in standard deviations; one in a hundred of two axes is beyond
    PATIENCE = 30  # frames that somebody may be unseen

    def __init__(self):
        self.places, self.velocities = numpy.empty((0, 2)), numpy.empty((0, 2))
        # Variance of the place, its covariance with the velocity, variance of the velocity; frames unseen.
        self.place, self.both, self.velocity, self.unseen = (numpy.empty(0) for _ in range(4))

    def step(self, seen):
        self._foretell()
        expected = self.place + self.SEEN
        distances = cdist(self.places, seen, "sqeuclidean")
        outside = distances > self.GATE * expected[:, None]
        tracks, found = linear_sum_assignment(numpy.where(outside, 1e6, distances))
        inside = ~outside[tracks, found]
        tracks, found = tracks[inside], found[inside]
        self._correct(tracks, seen[found], expected[tracks])
        self.unseen += 1
        self.unseen[tracks] = 0
        if len(found) < len(seen):
            self._begin(numpy.delete(seen, found, axis=0))
        if self.unseen.max(initial=0) > self.PATIENCE:
            self._keep(self.unseen <= self.PATIENCE)

    def _foretell(self):
        self.places += self.velocities
        self.place += 2 * self.both + self.velocity + self.PLACE
        self.both += self.velocity + self.BOTH
        self.velocity += self.VELOCITY

    def _correct(self, tracks, seen, expected):
        of_place, of_velocity = self.place[tracks] / expected, self.both[tracks] / expected
        missed = seen - self.places[tracks]
        self.places[tracks] += of_place[:, None] * missed
        self.velocities[tracks] += of_velocity[:, None] * missed
        self.velocity[tracks] -= of_velocity * self.both[tracks]
        self.both[tracks] *= 1 - of_place
        self.place[tracks] *= 1 - of_place

    def _begin(self, seen):
        new = len(seen)
        self.places = numpy.vstack([self.places, seen])
        self.velocities = numpy.vstack([self.velocities, numpy.zeros((new, 2))])
        self.place = numpy.append(self.place, numpy.full(new, self.SEEN))
        self.both = numpy.append(self.both, numpy.zeros(new))
        self.velocity = numpy.append(self.velocity, numpy.full(new, 0.15 ** 2))
        self.unseen = numpy.append(self.unseen, numpy.zeros(new))

    def _keep(self, which):
        for name in ("places", "velocities", "place", "both", "velocity", "unseen"):
            setattr(self, name, getattr(self, name)[which])


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

    def assign():
        tracks = Assignment(frames[SHORT - 1][1].copy())
        return step_ms(lambda before, now: tracks.step(now), frames)

    def track():
        tracks = Tracking()
        for _, places in frames[:SHORT]:
            tracks.step(places)
        ms = step_ms(lambda before, now: tracks.step(now), frames)
        assert len(tracks.places) == people  # nobody was lost or taken for two
        return ms

    return fastest({
        "ours: groups that live": lambda: update_ms(grouptracker.Tracker(rate=RATE), frames),
        "assignment": assign,
        "tracking": track,
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
