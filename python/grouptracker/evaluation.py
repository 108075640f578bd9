"""Scores against annotated groups, and learning from them."""

from __future__ import annotations

import json
import os
from typing import Any, Iterable, Mapping, Optional, Sequence, Union

from . import _native
from ._native import Model, Step, Truth
from .tables import Table, columns_of, read_groups
from .tracker import Path, Person

#: The groups of one frame, as lists of ids or by their numbers.
FrameTruth = Union[Iterable[Sequence[Person]], Mapping[int, Sequence[Person]]]
#: A `Truth`, a file, the groups of the whole sequence as lists of ids, or those of each frame.
AnyTruth = Union[Truth, Path, Iterable[Sequence[Person]], Mapping[int, FrameTruth]]


def read_truth(path: Path) -> Truth:
    """Annotated groups: one a line for the whole sequence, or per frame in a file *.jsonl."""
    return _native.read_truth(os.fspath(path))


def truth_of(truth: AnyTruth) -> Truth:
    """Whatever says who belongs together, as a `Truth`."""
    if isinstance(truth, Truth):
        return truth
    if isinstance(truth, (str, os.PathLike)):
        return read_truth(truth)
    if isinstance(truth, Mapping):
        return Truth.per_frame({frame: _numbered(groups) for frame, groups in truth.items()})
    return Truth.always([_numbers(group) for group in truth])


def _numbered(groups: FrameTruth) -> dict[int, list[int]]:
    if isinstance(groups, Mapping):
        return {number: _numbers(group) for number, group in groups.items()}
    return dict(enumerate(map(_numbers, groups), 1))


def _numbers(group: Sequence[Person]) -> list[int]:
    return _native.numbers_of(list(group))


def evaluate(groups: Union[Path, Iterable[Step]], truth: AnyTruth, *, window: int = 15, together: int = 6,
             event_tolerance: float = 2.0) -> dict[str, Any]:
    """Scores groups against annotated ones: what `grouptracker evaluate --output` writes.

    Parameters
    ----------
    groups:
        Steps, of `track_steps` or `Tracker`, or a groups file.
    truth:
        A `Truth`, a file, lists of ids that hold for the whole sequence, or {frame: lists of ids}.
    window, together:
        Time steps of a window, and of these, how many in one group make two persons one.
    event_tolerance:
        Seconds between a found merge or split and the true one.
    """
    steps = read_groups(groups) if isinstance(groups, (str, os.PathLike)) else list(groups)
    if window < 1 or together < 1:
        raise ValueError("window and together: whole numbers from 1 on are expected")
    scores: dict[str, Any] = json.loads(_native.evaluate(steps, truth_of(truth), window, together, event_tolerance))
    return scores


def learn(annotated: Iterable[tuple[Any, ...]], *, ridge: float = 30.0, look_ahead: float = 3.2) -> Model:
    """Learns from annotated tables what speaks for two people's belonging together.

    Parameters
    ----------
    annotated:
        One tuple for each recording: the table (see `track`), its truth (see `evaluate`) and, where the
        table tells no times, its frame numbers a second.
    ridge:
        How strongly weights are held back: larger learns less from the single case.
    look_ahead:
        Seconds of the future that the evidence may use.
    """
    if not ridge > 0 or not look_ahead >= 0:
        raise ValueError("ridge: a number above 0 is expected; look_ahead: one from 0 on")
    lessons: list[tuple[str, dict[str, Any], Truth]] = []
    rates: list[Optional[float]] = []
    for number, (table, truth, *rate) in enumerate(annotated, 1):
        lessons.append((f"recording {number}", columns_of(table), truth_of(truth)))
        rates.append(float(rate[0]) if rate else None)
    if not lessons:
        raise ValueError("annotated: at least one recording is expected")
    return _native.learn(lessons, rates, ridge, look_ahead)
