"""The tables of a data base as numpy, pandas and Arrow have them."""

import collections
import functools
import importlib
from typing import Any, Dict, Iterator, List, Mapping, NamedTuple, Optional, Tuple

import numpy as np
from numpy.typing import NDArray

from . import _core


class Column(NamedTuple):
    """A field of a table's key or row."""

    name: str
    dtype: "np.dtype[Any]"  # object for texts
    is_key: bool
    refers_to: str  # what its ids are: "test step", "channel"; empty if it holds none


def _needed(module: str, what: str) -> Any:
    try:
        return importlib.import_module(module)
    except ImportError:
        raise ImportError(f"{what} needs {module}, which isn't installed.") from None


@functools.lru_cache(maxsize=None)
def _described(section: str) -> Tuple[List[Column], Dict[str, int], Any]:
    """Columns, their numbers by name, and a class for rows: the same for all data bases."""
    columns = [Column(*column) for column in _core.columns(section)]
    numbers = {column.name: i for i, column in enumerate(columns)}
    return columns, numbers, collections.namedtuple(section.strip("<>"), numbers, rename=True)


class Table(_core.Rows):
    """The rows of a table in the order of their keys, which can't be changed.

    `table[3]` or `table[130, 3]` is the row of a key, a named tuple; where keys repeat, the list
    of its rows. `table["speed"]` is a column. Iteration gives the rows. A table keeps its data
    base alive, and so does each array of it.
    """

    section: str  #: the section of the file, with its angle brackets
    columns: List[Column]  #: the fields of the key, then those of the row

    def __init__(self, data: _core.Database, section: str):
        super().__init__(data, section)
        self.section = section
        self.columns, self._numbers, self._row = _described(section)
        self._places: Dict[Any, List[int]] = {}
        self._count = 0

    @property
    def key(self) -> List[str]:
        """The names of the key's fields."""
        return [column.name for column in self.columns if column.is_key]

    def rows(self) -> List[Any]:
        """All rows as named tuples."""
        columns = [self._column(i).tolist() for i in range(len(self.columns))]
        return list(map(self._row._make, zip(*columns)))

    def __iter__(self) -> Iterator[Any]:
        return iter(self.rows())

    def _find(self, key: Any) -> List[int]:
        if self._count != len(self):
            keys = [self[name].tolist() for name in self.key]
            self._places = {}
            for i, one in enumerate(zip(*keys)):
                self._places.setdefault(one, []).append(i)
            self._count = len(self)
        parts = key if isinstance(key, (tuple, list)) else (key,)
        return self._places.get(tuple(parts), [])

    def __contains__(self, key: Any) -> bool:
        return bool(self._find(key))

    def __getitem__(self, key: Any) -> Any:
        if isinstance(key, str) and key in self._numbers:
            return self._column(self._numbers[key])
        if isinstance(key, slice):
            raise TypeError("a table is asked by key; slice its to_numpy()")
        places = self._find(key)
        if not places:
            raise KeyError(f"{self.section} has no row {key!r}, and no such column")
        columns = [self._column(i) for i in range(len(self.columns))]
        rows = [self._row(*(column[i : i + 1].tolist()[0] for column in columns)) for i in places]
        return rows[0] if self.unique_keys else rows

    def names(self, column: str) -> Optional[NDArray[np.object_]]:
        """The names of a column's ids, empty where one has none; None for a column whose ids
        have no names."""
        return self._names(self._numbers[column])

    def to_numpy(self) -> NDArray[Any]:
        """A structured array: integers, floats, texts as objects.

        It is a view on the rows, which can't be written, where all of them are numbers and lie
        side by side; of other tables each column of numbers may be one: `table["speed"]`.
        """
        view = self._view()
        if view is not None:
            return view
        rows = np.empty(len(self), dtype=[(c.name, c.dtype) for c in self.columns])
        for i, column in enumerate(self.columns):
            rows[column.name] = self._column(i)
        return rows

    def to_dict(self, names: bool = False) -> Dict[str, NDArray[Any]]:
        """The columns by name; with `names` behind each column of ids one of their names, as
        "channel_name"."""
        columns = {}
        for i, column in enumerate(self.columns):
            columns[column.name] = self._column(i)
            named = self._names(i) if names else None
            if named is not None:
                columns[column.name + "_name"] = named
        return columns

    def to_pandas(self, names: bool = False, index: bool = True) -> Any:
        """A data frame with the key as index; with `names` beside ids as in `to_dict`."""
        frame = _needed("pandas", "to_pandas()").DataFrame(self.to_dict(names))
        return frame.set_index(self.key) if index else frame

    def to_arrow(self, names: bool = False) -> Any:
        """An Arrow table; with `names` beside ids as in `to_dict`."""
        return _needed("pyarrow", "to_arrow()").table(self.to_dict(names))

    def __reduce__(self) -> Any:
        raise TypeError("a table stays with its data base: take its to_numpy() or to_pandas()")

    def __repr__(self) -> str:
        names = ", ".join(self._numbers)
        return f"<Table {self.section}: {len(self)} rows of {names}>"


class Tables(Mapping[str, Table]):
    """All tables by section, with or without angle brackets; what a load derives comes last."""

    def __init__(self, data: _core.Database):
        self._all = {section: Table(data, section) for section in _core.sections}

    def __getitem__(self, section: str) -> Table:
        found = self._all.get(section, self._all.get(f"<{section}>"))
        if found is None:
            raise KeyError(f"There is no table {section!r}.{_core.hint(str(section))}")
        return found

    def __iter__(self) -> Iterator[str]:
        return iter(self._all)

    def __len__(self) -> int:
        return len(self._all)

    def __repr__(self) -> str:
        return f"<Tables: {', '.join(self._all)}>"
