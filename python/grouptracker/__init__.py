"""Groups out of the tracks of people: who walks with whom, since when, and how sure that is.

Frame by frame, while a tracker of persons runs:

    import grouptracker

    groups = grouptracker.Tracker(rate=10)
    for ids, positions in frames:                  # N ids, N x 2 metres on the ground
        step = groups.update(ids, positions)
        for group in step.groups:
            print(step.frame, group.id, group.members, group.confidence)
    rest = groups.finish()

A whole recording in a table with columns frame (or time), id, x and y in metres:

    tracks = pandas.read_csv("tracks.csv")
    tracks = grouptracker.track(tracks, rate=25)   # the same with a column group
    steps = grouptracker.track_steps(tracks, rate=25)

Against annotated groups, and out of nothing:

    scores = grouptracker.evaluate(steps, grouptracker.read_truth("groups.txt"))
    scene = grouptracker.simulate(people=30, seconds=60, rate=5)

Positions are in metres on the ground, boxes in pixels with y downwards: left, top, width, height. Ids
are whole numbers from 0 to 4294967295, or texts. What is wrong with parameters, cameras and input is a
`ValueError` with the line that the program `grouptracker` prints.
"""

from ._native import Event, Model, Step, Truth, __version__
from .evaluation import evaluate, learn, read_truth
from .group import Group
from .simulation import Simulation, simulate
from .tables import read_groups, track, track_steps
from .tracker import Tracker

__all__ = [
    "Event", "Group", "Model", "Simulation", "Step", "Tracker", "Truth", "__version__", "evaluate",
    "learn", "read_groups", "read_truth", "simulate", "track", "track_steps",
]
