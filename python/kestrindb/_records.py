"""What answers consist of: named tuples, so that a list of them makes a data frame."""

from typing import Any, Dict, List, NamedTuple, Optional, Tuple

from numpy.typing import NDArray


class LogLine(NamedTuple):
    """What a load logged."""

    section: str  # with its angle brackets; empty if the line is about none
    row: str  # the row as it was being read, or its key
    text: str


class Finding(NamedTuple):
    """A fault of a file. Lines, columns and positions count from 1; 0 stands for none."""

    line: int
    column: int
    severity: str  # "error", "loss" or "note"
    kind: str  # "bad_line" and so on
    section: str
    field: str
    position: int  # of the field in its line
    reason: str  # what is so, what becomes of it, and what to do
    other_line: int  # of which the reason speaks besides
    further: int  # findings of this kind in this section that are not listed


class Change(NamedTuple):
    """A row that stands in one data base alone, or in both with different values.

    Of a row in both, `before` and `after` hold the fields that differ. The names of the four
    documents have no section and no key.
    """

    section: str
    change: str  # "added", "removed" or "changed"
    key: Dict[str, Any]
    before: Dict[str, Any]  # empty for an added row
    after: Dict[str, Any]  # empty for a removed one


class Interval(NamedTuple):
    """A spectrum interval in a test step."""

    parameter: int  # -1 for a definition that was given
    name: str
    definition: str
    assembly: int  # order source that harmonics refer to, or -1
    speed_source: int  # or -1
    low: float  # NaN where it can't be computed
    high: float
    unit: str  # "orders" or "Hz"
    first_line: int  # -1 unless the result is "ok"
    last_line: int
    result: str  # "ok", or why there are no lines


class Rotor(NamedTuple):
    """An order source in a test step, and the rotor that it sits on."""

    order_source: int
    rotor: int
    speed: float  # of the rotor against others; NaN if no table tells it
    speed_source: int
    signal: int  # that carries the speed of the speed source, or -1
    signal_name: str
    base_order: float
    ratio: float  # of the rotor's speed to that of its speed source
    order: float  # on the axis of the speed source


class OrderSource(NamedTuple):
    """An order source that a channel sees."""

    phys_mode: int
    speed_source: int
    rotor: int
    number: int
    source: int


class Polygon(NamedTuple):
    """The track polygon of a measured quantity."""

    polygon: int
    name: str
    track_a: int
    track_c: int
    points: NDArray[Any]  # structured: x, y


class Axis(NamedTuple):
    """An axis of a trigger."""

    dimension: int  # 0 to 3
    low: float
    high: float
    step: float
    cells: int
    raising: bool


class Trigger(NamedTuple):
    """A trigger of a test step."""

    mode: int
    trigger: int
    name: str
    dimension: int  # the one in which it runs, or -1
    axes: List[Axis]


class Position(NamedTuple):
    """A position of an order definition: the sum of its terms, 0 for one that isn't there."""

    frequency: float
    order: float
    harmonic: float
    modulation: float
    lines: int
    domain: str  # "none", "frequency", "order" or "mixed"


class PassedOver(NamedTuple):
    """Characters of a definition that nothing reads; the offset counts from 0."""

    offset: int
    text: str


class Order(NamedTuple):
    """What an order definition is read as."""

    positions: List[Position]
    intervals: List[Tuple[Position, Position]]  # none of an odd number of positions above one
    passed_over: List[PassedOver]
    dropped: int  # positions behind the 32 for which there is room


class OrderError(ValueError):
    """An order definition that is none, and where it is wrong."""

    def __init__(self, definition: str, position: int, letter: str, offset: int, reason: str):
        self.definition = definition
        self.position = position  # index of the position, from 0
        self.letter = letter  # of the term; empty if the position as a whole is at fault
        self.offset = offset  # index of the character to point at, from 0
        self.reason = reason
        super().__init__(f"{reason} at character {offset + 1}: {definition!r}")

    def __reduce__(self) -> Any:
        args = (self.definition, self.position, self.letter, self.offset, self.reason)
        return (OrderError, args)
