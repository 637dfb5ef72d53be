"""Writes the type stubs of the compiled module beside it, from its own list of queries.

    stubs.py PACKAGE
"""

import importlib.util
import pathlib
import sys

HEAD = '''# Made by stubs.py.
from typing import Any, Dict, List, Tuple, Union, overload

import numpy as np
from numpy.typing import NDArray

Id = Union[int, np.integer[Any]]
IdOrName = Union[Id, str]
Ids = Union[List[Any], Tuple[Any, ...], range, NDArray[Any]]
Key = Union[List[IdOrName], Tuple[IdOrName, ...], NDArray[np.integer[Any]]]

__version__: str
sections: List[str]
queries: List[Tuple[str, List[Tuple[str, str, bool]], str]]

class Refused(ValueError): ...

def set_language(language: Union[str, int]) -> str: ...
def order(definition: str) -> Tuple[Any, List[Any], List[Any], int]: ...
def hint(section: str) -> str: ...
def columns(section: str) -> List[Tuple[str, np.dtype[Any], bool, str]]: ...
def check(content: bytes, name: str, references: bool, most_of_a_kind: int) -> List[Any]: ...

class Rows:
    def __init__(self, data: Database, section: str) -> None: ...
    def __len__(self) -> int: ...
    @property
    def unique_keys(self) -> bool: ...
    def _column(self, index: int) -> NDArray[Any]: ...
    def _view(self) -> Union[NDArray[Any], None]: ...
    def _names(self, index: int) -> Union[NDArray[Any], None]: ...

class Database:
    def __init__(self, content: bytes, name: str) -> None: ...
    def _id(self, kind: str, value: IdOrName) -> int: ...
    def _key(self, key: Any) -> List[int]: ...
    def calc_param_enum_texts(self) -> List[str]: ...
    def calc_param_enum_sub_texts(self, number: int) -> List[str]: ...
    def _extension(self, bands: List[int]) -> int: ...
    def _log(self) -> List[Tuple[str, str, str]]: ...
    def _diff(self, after: Database) -> List[Any]: ...
    def _intervals(self, of: Union[int, str], mode: int, speed_source: int, assembly: int,
                   lines: int, resolution_orders: float, resolution_hz: float,
                   order_scale: float) -> List[Any]: ...
    def _order_sources(self, mode: int, channel: int, rotor: int) -> List[Any]: ...
    def _axes(self, mode: int, trigger: int) -> List[Any]: ...
    def _cell(self, mode: int, trigger: int, values: Dict[int, float], clamp: bool) -> Any: ...
    def _places(self, mode: int, trigger: int, cell: Any, offset: Any) -> Dict[int, float]: ...
'''

ARRAYS = {"int": "np.int32", "unsigned": "np.uint32", "float": "np.float32", "bool": "np.bool_"}
SCALARS = {"unsigned": "int", "str | None": "Union[str, None]"}


def signatures(name, arguments, answer):
    """The one or two forms of a query: with one of each id, and with arrays of them."""

    def form(arrays):
        words = ["self"]
        for argument, kind, named in arguments:
            one = "IdOrName" if named else "Id"
            both = f"Union[{one}, Ids]" if arrays else one
            word = {"int": both, "unsigned": both, "key": "Key"}.get(kind, kind)
            words.append(f"{argument}: {word}")
        array = f"NDArray[{ARRAYS.get(answer, 'np.object_')}]"
        returned = array if arrays else SCALARS.get(answer, answer)
        return f"    def {name}({', '.join(words)}) -> {returned}: ..."

    if not any(kind in ("int", "unsigned") for _, kind, _ in arguments):
        return [form(False)]
    # To mypy the second form takes what the first one does, with another answer.
    return [form(False) + "  # type: ignore[misc]", form(True)]


def main(package):
    (binary,) = package.glob("_core.*.so")
    spec = importlib.util.spec_from_file_location("_core", binary)
    core = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(core)
    forms = {}
    for name, arguments, answer in core.queries:
        forms.setdefault(name, []).extend(signatures(name, arguments, answer))
    lines = []
    for all_forms in forms.values():
        for form in all_forms:
            lines += ["    @overload"] * (len(all_forms) > 1)
            lines.append(form)
    (package / "_core.pyi").write_text(HEAD + "\n".join(lines) + "\n")


main(pathlib.Path(sys.argv[1]))
