"""Scenes of people with known groups."""

from __future__ import annotations

import os
from dataclasses import dataclass
from typing import Any, Optional, Sequence

from . import _native
from ._native import Truth
from .tables import Table
from .tracker import Path

_counts = ("people", "streams", "waiting", "queue", "joins", "leaves", "merges", "splits")
_shares = ("group_share", "missed", "renamed")
_amounts = ("noise", "jitter", "gaps", "switches")


@dataclass(frozen=True)
class Simulation:
    """A simulated scene: what a tracker of persons would say, and who really belongs together."""

    tracks: Table  #: columns frame, time (seconds), id, x and y (metres)
    truth: Truth   #: the groups of each frame, of which two members or more are in view


def _as_table(columns: dict[str, Any]) -> Table:
    try:
        import pandas  # type: ignore[import]
    except ImportError:
        return columns
    return pandas.DataFrame(columns)


def _check(options: _native.SimulationOptions) -> None:
    for name in _counts:
        if not 0 <= getattr(options, name) <= 100000:
            raise ValueError(f"{name}: a number from 0 to 100000 is expected")
    for name in _shares:
        if not 0.0 <= getattr(options, name) <= 1.0:
            raise ValueError(f"{name}: a share from 0 to 1 is expected")
    for name in _amounts:
        if not 0.0 <= getattr(options, name) <= 1000.0:
            raise ValueError(f"{name}: a number from 0 to 1000 is expected")
    if not 0.1 <= options.rate <= 1000.0 or options.frames < 1 or options.people < 1:
        raise ValueError("rate: 0.1 to 1000 is expected; frames and people: 1 and more")
    if options.seconds is not None and not 0.1 <= options.seconds <= 1e6:
        raise ValueError("seconds: 0.1 to 1000000 is expected")
    if any(not 2 <= size <= 6 for size in options.groups) or sum(options.groups) > options.people:
        raise ValueError("groups: sizes from 2 to 6 are expected, together no more than people")
    if any(not 2 <= size <= 12 for size in options.circles):
        raise ValueError("circles: sizes from 2 to 12 are expected")


def simulate(folder: Optional[Path] = None, *, seed: int = 1, people: int = 30, groups: Sequence[int] = (),
             group_share: float = 0.6, frames: int = 300, seconds: Optional[float] = None,
             rate: float = 10.0, streams: int = 0, circles: Sequence[int] = (), waiting: int = 0,
             queue: int = 0, joins: int = 1, leaves: int = 1, merges: int = 1, splits: int = 1,
             missed: float = 0.0, noise: float = 0.0, jitter: float = 0.0, gaps: float = 0.0,
             renamed: float = 0.0, switches: float = 0.0) -> Simulation:
    """Makes a scene of people with known groups; the same arguments give the same scene.

    With a folder, everything that `grouptracker simulate` writes goes there, too. Tracks are a data frame
    where pandas is installed, else a mapping of names to arrays.

    Parameters
    ----------
    people, groups, group_share:
        Who comes in the course of the scene; sizes of the groups in which they come (2 to 6), or else
        the share of those who come in groups of drawn sizes.
    frames, seconds, rate:
        Length in frames, or in seconds in place of it; frames a second.
    streams, circles, waiting, queue:
        Further people: in two streams that pass each other, in groups of these sizes (2 to 12) that stand
        and talk, who wait, who queue.
    joins, leaves, merges, splits:
        How often that happens.
    missed, noise, jitter, gaps, renamed, switches:
        What the tracker does wrong: probability of a miss; deviations in metres, of each frame or lasting a
        second; losses a minute, share of these who get a new id, exchanged ids a minute.
    """
    options = _native.SimulationOptions()
    values = dict(seed=seed, people=people, groups=list(groups), group_share=group_share, frames=frames,
                  seconds=seconds, rate=rate, streams=streams, circles=list(circles), waiting=waiting,
                  queue=queue, joins=joins, leaves=leaves, merges=merges, splits=splits, missed=missed,
                  noise=noise, jitter=jitter, gaps=gaps, renamed=renamed, switches=switches)
    for name, value in values.items():
        setattr(options, name, value)
    _check(options)
    if folder is not None:
        options.folder = os.fspath(folder)
        _native.simulate_scene(options)
    scene = _native.simulate(options)
    truth = Truth.per_frame(scene.pop("truth"))
    return Simulation(_as_table(scene), truth)
