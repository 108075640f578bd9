"""What the tests of the module share."""

import csv
import json
import os
import pathlib
import subprocess
import tempfile
import unittest

import numpy

PROGRAM = os.environ.get("GROUPTRACKER_PROGRAM", "grouptracker")
DATA = pathlib.Path(os.environ.get("GROUPTRACKER_DATA", "data"))


class InFolder(unittest.TestCase):
    """A test with a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_program(self, *arguments, status=0):
        done = subprocess.run([PROGRAM, *map(str, arguments)], cwd=self.folder, capture_output=True,
                              text=True, timeout=300)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def write_csv(self, tracks, name="tracks.csv"):
        """A file that says the same as a mapping of columns, to the last bit."""
        with open(self.folder / name, "w", newline="") as file:
            writer = csv.writer(file)
            writer.writerow(tracks)
            writer.writerows(zip(*(values.tolist() for values in tracks.values())))
        return self.folder / name


def walkers(frames=40):
    """Persons 1 and 2 walk side by side, 3 comes the other way: ids, positions of each frame."""
    for frame in range(1, frames + 1):
        way = 0.5 * frame
        yield [1, 2, 3], [[way, 0.0], [way, 0.7], [20.0 - way, 3.0]]


def read_obsmat(folder):
    rows = numpy.loadtxt(folder / "obsmat.txt")
    return {"frame": rows[:, 0].astype(int), "id": rows[:, 1].astype(int), "x": rows[:, 2], "y": rows[:, 4]}


def frames_of(tracks):
    """Frame numbers from the first to the last at the usual step, with ids and positions of each."""
    numbers = numpy.unique(tracks["frame"])
    steps, counts = numpy.unique(numpy.diff(numbers), return_counts=True)
    step = steps[counts.argmax()]
    for number, following in zip(numbers, [*numbers[1:], numbers[-1]]):
        rows = tracks["frame"] == number
        yield int(number), tracks["id"][rows], numpy.column_stack([tracks["x"][rows], tracks["y"][rows]])
        for missing in range(1, (following - number + step // 2) // step):
            yield int(number + missing * step), [], numpy.empty((0, 2))


def lines(steps):
    return "".join(step.line() for step in steps)


def read_lines(path):
    """The objects of a file of JSON Lines."""
    return [json.loads(line) for line in path.read_text().splitlines()]
