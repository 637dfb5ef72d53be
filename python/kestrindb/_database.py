"""A parameter file loaded, and asked."""

import os
from typing import IO, Any, Dict, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import NDArray

from . import _core
from ._records import (
    Axis,
    Change,
    Finding,
    Interval,
    LogLine,
    Order,
    OrderError,
    OrderSource,
    PassedOver,
    Polygon,
    Position,
    Rotor,
    Trigger,
)
from ._tables import Tables

Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview, IO[bytes], IO[str]]
IdOrName = Union[int, "np.integer[Any]", str]
Key = Sequence[IdOrName]

_MARK = b"\xef\xbb\xbf"


def _read(source: Source) -> Tuple[bytes, str]:
    """The content and the name of a file. A text that was decoded already is UTF-8 again."""
    if isinstance(source, (bytes, bytearray, memoryview)):
        return bytes(source), "<bytes>"
    if hasattr(source, "read"):
        content = source.read()
        if isinstance(content, str):
            content = _MARK + content.lstrip("\ufeff").encode()
        # A number would be so many zeros.
        return bytes(memoryview(content)), _shown(getattr(source, "name", "<file>"))
    path = os.fspath(source)  # and no number, which would be a file that somebody else has open
    with open(path, "rb") as file:
        return file.read(), _shown(path)


def _shown(name: object) -> str:
    """A name that need not be UTF-8, for messages."""
    return str(name).encode(errors="replace").decode()


class Database(_core.Database):
    """A data base of its own; as many as one likes live side by side.

    An argument that is an id takes the name as well, and an array or a list of either: then an
    array of answers comes back, arguments being broadcast as numpy does it. A name that isn't
    there, or belongs to several, is a LookupError; an unknown id is none: each query says what it
    gives then. The floats of arrays are 32 bits wide, as in the data base.
    """

    def __init__(self, source: Source):
        """Loads a file: a path, an open file, or the bytes of one.

        Raises OSError if the file can't be read, Refused with the reason if it is no data base.
        Bad lines don't raise: `log` and `check()` have them.
        """
        self._content, self._name = _read(source)
        super().__init__(self._content, self._name)
        #: What the load logged.
        self.log: List[LogLine] = [LogLine(*line) for line in self._log()]
        #: All tables by section.
        self.tables: Tables = Tables(self)

    def check(self, references: bool = True, most_of_a_kind: int = 20) -> List[Finding]:
        """Every fault of the file as it was loaded; see `kestrindb.check`."""
        return check(self._content, references, most_of_a_kind)

    def diff(self, other: "Database") -> List[Change]:
        """What is different in another data base, which counts as the later one: rows, and the
        names of the documents."""
        if not isinstance(other, Database):
            raise TypeError(f"diff() takes a Database, not {type(other).__name__}")
        changes = []
        for name in ("base_type", "alias_type", "calib_file_name", "learn_file_name"):
            before, after = getattr(self, name)(), getattr(other, name)()
            if before != after:
                changes.append(Change("", "changed", {}, {name: before}, {name: after}))
        for section, key, before, after in self._diff(other):
            what = "added" if before is None else "removed" if after is None else "changed"
            changes.append(Change(section, what, key, before or {}, after or {}))
        return changes

    def intervals(
        self,
        mode: IdOrName,
        parameter: Optional[IdOrName] = None,
        *,
        lines: int,
        resolution_orders: float = 0.0,
        resolution_hz: float = 0.0,
        order_scale: float = 1.0,
        definition: Optional[str] = None,
        assembly: Optional[int] = None,
        speed_source: Optional[int] = None,
    ) -> List[Interval]:
        """The spectrum intervals of a parameter, or of all, in a test step, on the spectrum's axis
        and in lines.

        `lines` is the number of spectral lines, a resolution their distance: in orders for
        intervals of orders, in the unit of F, mostly Hz, for the others. `order_scale` is the
        value of one order in the unit of F, for mixed intervals. A parameter without intervals has
        none. `definition` is tried in place of
        those in the file, and raises OrderError if it is none. An assembly is the order source
        that harmonics refer to, by itself that of each parameter; a speed source by itself that of
        the assembly's rotor.
        """
        step = self._id("test step", mode)
        base = self.virt_mode_2_base_mode(step)
        records: List[Tuple[int, str, int]]
        if definition is not None and parameter is not None:
            raise TypeError("intervals() takes a parameter or a definition, not both")
        if definition is not None:
            order(definition)
            records = [(-1, definition, -1)]
        else:
            found = self.tables["IpSvOfSpec"].rows()
            records = [(row.parameter, row.definition, row.reference) for row in found]
        if parameter is not None:
            wanted = self._id("parameter", parameter)
            records = [record for record in records if record[0] == wanted]
        told = []
        for number, text, reference in records:
            source = reference if assembly is None else assembly
            speed = speed_source
            if speed is None:
                speed = self.rotor_speed_source(base, source)
            of: Union[int, str] = number if definition is None else text
            name = self.instrument_param_name(number)
            for unit, low, high, first, last, result in self._intervals(
                of, step, speed, source, lines, resolution_orders, resolution_hz, order_scale
            ):
                about = (number, name, text, source, speed)
                told.append(Interval(*about, low, high, unit, first, last, result))
        return told

    def rotors(self, mode: IdOrName) -> List[Rotor]:
        """The order sources of a test step, where they sit and how fast they turn; none for an
        unknown one."""
        step = self._id("test step", mode)
        base = self.virt_mode_2_base_mode(step)
        phys_mode = self.phys_mode_id(step)
        speeds = {row[:2]: row.speed for row in self.tables["TRotorSpeed"]}
        told = []
        for row in self.tables["TOrderSource2Rotor"]:
            source, phys, rotor = row[:3]
            if phys != phys_mode:
                continue
            signal = self.rotor_speed_source_app_id(step, source)
            order_of_base = self.base_order(step, source)
            ratio = self.rotor_frequency_relative_to_speed_source_rotor(step, source)
            told.append(
                Rotor(
                    source,
                    rotor,
                    speeds.get((phys_mode, rotor), float("nan")),
                    self.rotor_speed_source(base, source),
                    signal,
                    self.application_signal_name(signal),
                    order_of_base,
                    ratio,
                    order_of_base * ratio,
                )
            )
        return told

    def order_source_range(
        self, mode: IdOrName, channel: IdOrName, rotor: int
    ) -> List[OrderSource]:
        """The order sources that a channel sees: of this rotor for a sync channel, of all rotors of
        this rotor's speed source for a mix channel, none for others."""
        step, number = self._id("test step", mode), self._id("channel", channel)
        return [OrderSource(*row) for row in self._order_sources(step, number, rotor)]

    def spec_interval_range(self, parameter: IdOrName) -> NDArray[Any]:
        """The intervals of a parameter's definition, as rows of <PiSpecIntervalStore>."""
        rows = self.tables["PiSpecIntervalStore"].to_numpy()
        found: NDArray[Any] = rows[rows["parameter"] == self._id("parameter", parameter)]
        return found

    def polygon(self, key: Key) -> Polygon:
        """The track polygon of a measured quantity: of six ids or names, which are test step,
        instrument, channel, object, parameter and signal. KeyError for one that has none."""
        ids = tuple(self._key(key))
        found = self.tables["IpTrackPolygon"][ids]
        number = found.polygon_id
        stored = self.tables["TIpPolygon"]
        name = stored[number].name if number in stored else ""
        points = self.tables["IpPolygonValues"].to_numpy()
        points = points[points["polygon"] == number][["x", "y"]]
        return Polygon(number, name, found.track_a, found.track_c, points)

    @property
    def triggers(self) -> List[Trigger]:
        """The triggers of all test steps that have axes."""
        pairs = dict.fromkeys(row[:2] for row in self.tables["TTriggerParam"])
        all_triggers = [
            Trigger(
                mode,
                trigger,
                self.trigger_name(trigger),
                self.trigger_dimension(mode, trigger),
                self.trigger_axes(mode, trigger),
            )
            for mode, trigger in pairs
        ]
        return [trigger for trigger in all_triggers if trigger.axes]

    def trigger_axes(self, mode: IdOrName, trigger: IdOrName) -> List[Axis]:
        """The axes of a trigger in a test step; none for an unknown one."""
        step, number = self._id("test step", mode), self._id("trigger", trigger)
        return [Axis(*axis) for axis in self._axes(step, number)]

    def trigger_cell(
        self, mode: IdOrName, trigger: IdOrName, values: Mapping[int, float], clamp: bool = False
    ) -> Tuple[int, ...]:
        """The indexes of the cell in which running values lie, given by dimension, along the axes
        as `trigger_axes` has them. () without axes, and where an index is out of range, which
        `clamp` makes the nearer bound."""
        step, number = self._id("test step", mode), self._id("trigger", trigger)
        indexes: Tuple[int, ...] = self._cell(step, number, dict(values), clamp)
        return indexes

    def trigger_places(
        self,
        mode: IdOrName,
        trigger: IdOrName,
        cell: Sequence[int],
        offset: Sequence[int] = (0, 0, 0, 0),
    ) -> Dict[int, float]:
        """By dimension the middle of a cell, or where an offset isn't 0 the lower edge of the cell
        that is so many away. {} without axes."""
        step, number = self._id("test step", mode), self._id("trigger", trigger)
        return self._places(step, number, tuple(cell), tuple(offset))

    def virt_mode_extension_of_bands(self, bands: Sequence[int]) -> int:
        """The extension for one band index, -1 to 62, for each row of <TAutoModeParam>. Others
        give another test step's, or none's."""
        if len(bands) != len(self.tables["TAutoModeParam"]):
            raise ValueError("one band is needed for each row of <TAutoModeParam>")
        return self._extension(list(bands))

    def __reduce__(self) -> Any:
        return (Database, (self._content,))  # a copy, also one in another process, loads anew

    def __repr__(self) -> str:
        return f"<Database {self.base_type()!r} of {self._name}>"


def load(source: Source) -> Database:
    """Loads a parameter file: a path, an open file, or the bytes of one.

    Raises OSError if the file can't be read, Refused with the reason if it is no data base. Bad
    lines don't raise: `log` and `check()` of the data base have them.
    """
    return Database(source)


def check(source: Source, references: bool = True, most_of_a_kind: int = 20) -> List[Finding]:
    """Every fault of a parameter file by line, also of one that is refused.

    `references`: whether ids are looked up in the tables that name them. Of a kind in a section
    only so many are listed, 1 at least; `further` of the last one counts the rest.
    """
    if most_of_a_kind < 1:
        raise ValueError("most_of_a_kind is 1 at least")
    most_of_a_kind = min(most_of_a_kind, 2**31)
    content, name = _read(source)
    return [Finding(*finding) for finding in _core.check(content, name, references, most_of_a_kind)]


def order(definition: str) -> Order:
    """What an order definition such as "H1-O0.5;H1+O0.5" means; OrderError where it is wrong."""
    error, told, unread, dropped = _core.order(definition)
    if error is not None:
        raise OrderError(definition, *error)
    positions = [Position(*position) for position in told]
    if len(positions) == 1:
        intervals = [(positions[0], positions[0])]
    elif len(positions) % 2 == 0:
        intervals = list(zip(positions[::2], positions[1::2]))
    else:
        intervals = []
    return Order(positions, intervals, [PassedOver(*passage) for passage in unread], dropped)


def set_language(language: Union[str, int]) -> str:
    """Sets the language of the library's texts for the whole process, by a tag such as "de" or by
    the id that the system has for it, and gives the tag of the one that is taken: English if there
    is no such language."""
    return _core.set_language(language)
