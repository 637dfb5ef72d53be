"""What users read and what their tools read: the page, help() and the types."""

import doctest
import inspect
import os
import pathlib
import subprocess
import sys

import kestrindb
from conftest import ROOT

PROGRAM = """
import kestrindb
import numpy as np
from numpy.typing import NDArray

db = kestrindb.load("samples/gearbox.par")
name: str = db.channel_name("Raw")
names: NDArray[np.object_] = db.channel_name([1, 2])
ratio: float = db.frequency_ratio("Spur 30 Hz low load", 1, 2)
ratios: NDArray[np.float32] = db.frequency_ratio(130, 1, np.arange(3))
lines: list[int] = [i.first_line for i in db.intervals(130, lines=400, resolution_hz=1)]
reasons: list[str] = [finding.reason for finding in db.check()]
speeds: NDArray[np.float32] = db.tables["TRotorSpeed"]["speed"]
"""
WRONG = "db.channel_name(1.5)\ndb.channel_nam(1)\nnumber: int = db.channel_name(1)\n"


def test_the_examples_of_the_page(monkeypatch):
    monkeypatch.chdir(ROOT)
    failed, tried = doctest.testfile(str(ROOT / "docs/python.md"), module_relative=False)
    assert tried > 30 and failed == doctest.testmod(kestrindb).failed == 0


def test_types(tmp_path):
    (tmp_path / "user.py").write_text(PROGRAM + WRONG)
    home = pathlib.Path(kestrindb.__file__).parents[1]
    path = {} if home.name.endswith("-packages") else {"MYPYPATH": str(home)}
    command = [sys.executable, "-m", "mypy", "--strict", "user.py"]
    told = subprocess.run(command, cwd=tmp_path, env={**os.environ, **path}, capture_output=True)
    lines = told.stdout.decode().splitlines()
    places = {int(line.split(":")[1]) for line in lines if ": error:" in line}
    first = PROGRAM.count("\n") + 1
    assert places == {first, first + 1, first + 2}, told


def test_help_tells_every_query():
    for name, arguments, _ in kestrindb._core.queries:
        query = getattr(kestrindb.Database, name)
        assert query.__doc__.endswith("."), name
        if "(self" not in query.__doc__:  # two of one name
            told = list(inspect.signature(query).parameters)
            assert told == ["self", *(argument for argument, _, _ in arguments)], name
    for name in kestrindb.__all__:
        assert name == "__version__" or getattr(kestrindb, name).__doc__, name
