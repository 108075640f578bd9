"""A group as a step tells it."""

from __future__ import annotations

from typing import NamedTuple, Union


class Group(NamedTuple):
    """People who belong together at one frame."""

    id: int
    "Number of the group, from 1, never used again."
    members: list[Union[int, str]]
    "Ids of two persons or more, ascending."
    since: int
    "First frame that lists the group."
    position: list[float]
    "Mean of the members on the ground, [x, y] in metres."
    confidence: float
    "0 to 1, how sure it is that these belong together."
    origin: list[int]
    "Groups of the frame before out of which this one came by a merge or a split."

    def __repr__(self) -> str:
        return f"<Group {self.id}: {', '.join(map(str, self.members))}>"
