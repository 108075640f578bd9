"""Whole recordings in tables: pandas data frames, or mappings of names to arrays."""

from __future__ import annotations

import os
from typing import Any, Mapping, Optional, Sequence, Union

import numpy

from . import _native
from ._native import Model, Step
from .tracker import Calibration, Parameters, Path, corners_to_sizes, make_settings

#: A pandas.DataFrame, or a mapping of column names to arrays of equal length.
Table = Any

#: Names under which the ids of persons are known, the first one that a table has counts.
_ids = ("id", "person", "track_id", "ped_id", "ped", "pers_id", "pedestrian_id", "agent_id", "pid")
_sizes = ("left", "top", "width", "height")
_corners = ("left", "top", "right", "bottom")


def columns_of(table: Table) -> dict[str, Any]:
    """The columns that a table has of frame, time, id, positions and boxes."""
    names = set(table.keys())

    def column(name: str, dtype: Any = float) -> Any:
        values = numpy.asarray(table[name], dtype=dtype)
        if values.ndim != 1:
            raise ValueError(f"table: one column {name} is expected, an array of N")
        return values

    person = next((name for name in _ids if name in names), None)
    if person is None or not names & {"frame", "time"}:
        raise ValueError("table: the columns id and frame or time are expected")
    columns = {name: column(name) for name in ("frame", "time") if name in names}
    ids = column(person, None)
    columns["id"] = column(person) if ids.dtype.kind in "biuf" else numpy.array(_native.numbers_of(ids), dtype=float)
    if {"x", "y"} <= names:
        columns["positions"] = numpy.column_stack([column("x"), column("y")])
    if set(_sizes) <= names:
        columns["boxes"] = numpy.column_stack([column(name) for name in _sizes])
    elif set(_corners) <= names:
        columns["boxes"] = corners_to_sizes(numpy.column_stack([column(name) for name in _corners]))
    if "positions" not in columns and "boxes" not in columns:
        raise ValueError("table: the columns x and y, or left, top, width and height, are expected")
    return columns


def _track(table: Table, parameters: Parameters, rate: Optional[float], calibration: Calibration,
           look_ahead: Optional[float], model: Union[None, Model, Path],
           image_size: Optional[Sequence[int]]) -> tuple[list[Step], "numpy.ndarray[Any, Any]"]:
    if rate is not None and not rate > 0:
        raise ValueError("rate: a number above 0 is expected")
    settings = make_settings(parameters, calibration, model=model, look_ahead=look_ahead,
                             image_size=image_size)
    return _native.track(columns_of(table), rate, settings)


def track(table: Table, parameters: Parameters = None, rate: Optional[float] = None,
          calibration: Calibration = None, *, look_ahead: Optional[float] = None,
          model: Union[None, Model, Path] = None, image_size: Optional[Sequence[int]] = None) -> Table:
    """The same table with a column `group`: the group of each row's person at its frame.

    Parameters
    ----------
    table:
        A pandas data frame, or a mapping of names to arrays. Its columns are `frame` (the recording's own
        numbers) or `time` (seconds), `id` (or `person`, `track_id`, ...), and `x`, `y` (metres) or `left`, `top`, `width`, `height` (or
        `right`, `bottom`; pixels). Rows in any order, further columns among them.
    rate:
        Frame numbers a second; only where the table has no times, and frames are not 0.4 s apart.
    calibration:
        For boxes, as in `Tracker`; without it the camera is estimated from the people.
    parameters, look_ahead, model, image_size:
        As in `Tracker`.

    Returns
    -------
    A copy of the table. In a data frame `group` is of pandas' type Int64, <NA> for whoever is in none;
    otherwise an array of whole numbers, 0 for whoever is in none.
    """
    _, groups = _track(table, parameters, rate, calibration, look_ahead, model, image_size)
    if isinstance(table, Mapping):
        return {**table, "group": groups}
    result = table.copy()
    result["group"] = groups
    result["group"] = result["group"].astype("Int64").mask(groups == 0)
    return result


def track_steps(table: Table, parameters: Parameters = None, rate: Optional[float] = None,
                calibration: Calibration = None, *, look_ahead: Optional[float] = None,
                model: Union[None, Model, Path] = None,
                image_size: Optional[Sequence[int]] = None) -> list[Step]:
    """The steps of all frames of a table, from the first to the last; arguments as in `track`."""
    return _track(table, parameters, rate, calibration, look_ahead, model, image_size)[0]


def read_groups(path: Path) -> list[Step]:
    """The steps of a groups file, as `grouptracker run` writes it."""
    return _native.read_groups(os.fspath(path))
