#!/usr/bin/env python3
"""Draws the pictures of docs/how.md with the Python module: make-how-pictures.py BUILD [FOLDER].

They go to docs/images by default.
"""

import json
import pathlib
import sys

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plt  # noqa: E402
import numpy  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release").resolve() / "python"))
import grouptracker  # noqa: E402

FOLDER = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else ROOT / "docs/images"

# The same picture has the same bytes.
plt.rcParams.update({"svg.hashsalt": "how", "font.size": 9, "axes.spines.top": False, "axes.spines.right": False})
RATE = 5


def save(name):
    plt.tight_layout()
    plt.savefig(FOLDER / f"how-{name}.svg", metadata={"Date": None})
    plt.close()


def draw_delay():
    """When each frame is seen, and when its groups are handed out."""
    plt.figure(figsize=(6, 2.6))
    for look_ahead, colour in ((0.0, "C1"), (3.2, "C0")):
        tracker = grouptracker.Tracker(rate=RATE, look_ahead=look_ahead)
        came = [(step.frame / RATE, number / RATE) for number in range(1, 41)
                if (step := tracker.update([1, 2], [[number * 0.2, 0], [number * 0.2, 0.7]]))]
        plt.plot(*zip(*came), ".", color=colour, label=f"look-ahead {look_ahead} s")
    plt.xlabel("a frame is seen, s")
    plt.ylabel("its groups come, s")
    plt.legend()
    save("delay")


def draw_evidence():
    """What the built-in model makes of distance and of other ways."""
    features = json.loads(grouptracker.Model.built_in().text())["features"]
    names = list(features)[:3]
    _, axes = plt.subplots(1, len(names), figsize=(7, 2.4), sharey=True)
    for axis, name in zip(axes, names):
        curve = features[name]
        axis.axhline(0, color="lightgrey")
        axis.plot(curve["knots"], curve["always"], "o-")
        axis.set_xlabel(name)
    axes[0].set_ylabel("log-odds")
    save("evidence")


def draw_identity():
    """Who is in which group over time, in a scene with a merge and a split."""
    scene = grouptracker.simulate(seed=6, people=14, groups=[2, 2, 4], seconds=40, rate=RATE, merges=1, splits=1)
    steps = grouptracker.track_steps(scene.tracks, rate=RATE)
    times = numpy.array([step.time for step in steps])
    plt.figure(figsize=(7, 3))
    persons = sorted({member for step in steps for group in step.groups for member in group.members})
    for row, person in enumerate(persons):
        of = numpy.array([step.group_of([person])[0] for step in steps])
        for group in sorted(set(of) - {0}):
            plt.plot(times, numpy.where(of == group, row, numpy.nan), linewidth=4,
                     color=f"C{(group - 1) % 10}", label=f"group {group}")
    handles = dict(zip(*plt.gca().get_legend_handles_labels()[::-1]))
    plt.legend(handles.values(), handles.keys(), loc="upper left", bbox_to_anchor=(1, 1))
    plt.yticks(range(len(persons)), persons)
    plt.xlabel("s")
    plt.ylabel("person")
    save("identity")


draw_delay()
draw_evidence()
draw_identity()
