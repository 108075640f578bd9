"""Frame by frame: the tracker of groups beside a tracker of persons."""

from __future__ import annotations

import json
import os
from typing import Any, Mapping, Optional, Protocol, Sequence, Union

import numpy
from numpy.typing import ArrayLike

from . import _native
from ._native import Model, Step

Path = Union[str, "os.PathLike[str]"]
#: The id of a person, as the tracker of persons gives it.
Person = Union[int, str]
#: A file, or labels with values that differ from the built-in set, such as {"temporalWinSize": 4}.
Parameters = Union[None, Path, Mapping[str, Any]]
#: A file with a camera, or the homography from (column, row, 1) to the ground, 3 x 3.
Calibration = Union[None, Path, ArrayLike]


class Writable(Protocol):
    """What takes text, such as sys.stdout."""

    def write(self, text: str, /) -> Any: ...


def make_settings(parameters: Parameters, calibration: Calibration, *, model: Union[None, Model, Path],
                  look_ahead: Optional[float], image_size: Optional[Sequence[int]]) -> _native.Settings:
    """What all ways of finding groups can be told; see `Tracker`."""
    settings = _native.Settings()
    if isinstance(parameters, Mapping):
        settings.parameter_changes = [f"{label}={_text(value)}" for label, value in parameters.items()]
    elif parameters is not None:
        settings.parameter_file = os.fspath(parameters)
    if isinstance(calibration, (str, os.PathLike)):
        settings.calibration_file = os.fspath(calibration)
    elif calibration is not None:
        matrix = numpy.asarray(calibration, dtype=float)
        if matrix.shape != (3, 3):
            raise ValueError("calibration: a file or an array of 3 x 3 is expected")
        settings.homography = matrix.ravel().tolist()
    if isinstance(model, Model):
        settings.model_text = model.text()
    elif model is not None:
        settings.model_file = os.fspath(model)
    settings.look_ahead = look_ahead
    if image_size is not None:
        settings.image_size = [int(side) for side in image_size]
    return settings


def _text(value: Any) -> str:
    return str(int(value)) if isinstance(value, (bool, numpy.bool_)) else str(value)


def corners_to_sizes(boxes: ArrayLike) -> "numpy.ndarray[Any, Any]":
    """Boxes as left, top, width, height out of left, top, right, bottom."""
    corners = numpy.asarray(boxes, dtype=float).reshape(-1, 4)
    return numpy.hstack([corners[:, :2], corners[:, 2:] - corners[:, :2]])


class Tracker:
    """Says who walks with whom while a tracker of persons says who is where: one call a frame.

    What follows confirms or revokes what was seen. `update` therefore returns the step of an earlier
    frame, as many calls back as fit into the look-ahead; `step.frame` says which. The first calls return
    a step that is false and about no frame. `finish` returns the steps of the last frames.

    There may be any number of trackers in any threads; none knows of the others, and the
    interpreter's lock is released while they work.

        >>> groups = Tracker(rate=2.5)
        >>> for frame in range(40):
        ...     step = groups.update([1, 2, 3], [[frame, 0], [frame, 0.7], [20 - frame, 3]])
        >>> step
        <Step of frame 32: 1 groups, 1 alone>
        >>> step.groups
        [<Group 1: 1, 2>]
        >>> step.alone
        [3]

    Parameters
    ----------
    parameters:
        The process's 47 parameters: a file, or a mapping of labels to values that differ from the
        built-in set, which suits the rate. The groups depend on one of them only, "temporalWinSize":
        the frames that are waited before one is decided.
    rate:
        Calls of `update` a second.
    calibration:
        For boxes: a file with the camera, or the homography from (column, row, 1) in the image to
        (x, y, 1) in metres on the ground, an array of 3 x 3.
    look_ahead:
        Seconds of the future that a decision may use, 0 for decisions at once; by default as long as the
        process waits, at most 3.2.
    model:
        What speaks for belonging together: a `Model` or its file; the built-in one by default.
    image_size:
        Width and height of the video's images in pixels, of use beside a homography.
    box_format:
        "xywh" for boxes of left, top, width, height; "xyxy" for left, top, right, bottom.
    actors:
        Whether the process itself works, too; `actors` then tells what it puts out. It costs time
        and changes nothing about the groups.
    diagnostics:
        Where the process's lines go, such as `sys.stdout`; it then works, too. Nowhere by default.

    Raises
    ------
    ValueError
        Parameters, a camera or a model that are wrong, with the line that the program prints.
    """

    def __init__(self, parameters: Parameters = None, rate: float = 25.0, calibration: Calibration = None, *,
                 look_ahead: Optional[float] = None, model: Union[None, Model, Path] = None,
                 image_size: Optional[Sequence[int]] = None, box_format: str = "xywh",
                 actors: bool = False, diagnostics: Optional[Writable] = None) -> None:
        if box_format not in ("xywh", "xyxy"):
            raise ValueError('box_format: "xywh" or "xyxy" is expected')
        settings = make_settings(parameters, calibration, model=model, look_ahead=look_ahead,
                                 image_size=image_size)
        settings.rate = float(rate)
        settings.runs_process = actors
        self._printed: list[str] = []
        self._diagnostics = diagnostics
        if diagnostics is not None:
            settings.on_diagnostics = self._printed.append
        self._has_corners = box_format == "xyxy"
        self._native = _native.Tracker(settings)
        self._write()

    def update(self, ids: ArrayLike, positions: Optional[ArrayLike] = None,
               boxes: Optional[ArrayLike] = None, time: Optional[float] = None, *,
               frame: Optional[int] = None) -> Step:
        """Takes the people of the next frame; returns the oldest step that is decided.

        Parameters
        ----------
        ids:
            N whole numbers or texts, those of the tracker of persons, in any order, each once; none for a frame
            without people, which must not be left out.
        positions:
            N x 2, where their feet are on the ground, metres; nan for somebody of whom only the box
            is known.
        boxes:
            N x 4, pixels, see `box_format`. Without positions they need a calibration.
        time:
            Seconds, never going back; by default frames follow each other at the rate.
        frame:
            The frame's own number, growing; by default they count from 1.

        Raises
        ------
        ValueError
            Input that is wrong, with frame and person. The frame is then left out.
        """
        if boxes is not None and self._has_corners:
            boxes = corners_to_sizes(boxes)
        step = self._native.update(ids, positions, boxes, time, frame)
        if self._printed:
            self._write()
        return step

    def decided(self) -> list[Step]:
        """The further steps that are decided by now, which the next calls would return one by one.

        There are some when frames take longer to follow than before.
        """
        return self._native.decided()

    def finish(self) -> list[Step]:
        """The steps of all remaining frames, decided without a future; once, after the last frame."""
        return self._native.finish()

    @property
    def actors(self) -> Optional[dict[str, Any]]:
        """What the process put out at the latest frame, as a line of an actors file; None without it."""
        line = self._native.actors_line()
        return json.loads(line) if line else None

    @property
    def frames(self) -> int:
        """Frames taken so far."""
        return self._native.frames()

    def _write(self) -> None:
        text = "".join(self._printed)
        self._printed.clear()
        if self._diagnostics is not None and text:
            self._diagnostics.write(text)

    def __repr__(self) -> str:
        return f"<Tracker after {self.frames} frames>"
