"""What is loaded, what is refused, and that nothing is lost or kept too long."""

import copy
import gc
import io
import os
import pathlib
import pickle
import threading

import kestrindb
import pytest
from conftest import SAMPLE

BYTES = SAMPLE.read_bytes()
BAD = BYTES.replace(b"<TMode>: {", b"<TMode>: {\n  x", 1)


def test_sources(tmp_path):
    with open(SAMPLE, "rb") as binary, open(SAMPLE, encoding="utf-8") as text:
        sources = [str(SAMPLE), SAMPLE, BYTES, bytearray(BYTES), io.BytesIO(BYTES), binary, text]
        for source in sources:
            # Beyond ASCII, so that the encoding counts.
            assert kestrindb.load(source).mode_name(160) == "Spur run-up 10–50 Hz", source
    for path, error in ((tmp_path / "none.par", FileNotFoundError), (tmp_path, IsADirectoryError)):
        with pytest.raises(error):
            kestrindb.load(path)
    for source in (None, 3, ["gearbox.par"]):
        with pytest.raises(TypeError):
            kestrindb.load(source)


def test_refusals():
    for content, reason in {
        b"": "no lines",
        b"<DbDesign.CacheVersion>: 99\n<DbDesign.CacheMinorVersion>: 1": "99.1",
        b"\xef\xbb" + BYTES: "mark",
    }.items():
        with pytest.raises(kestrindb.Refused, match=reason):
            kestrindb.load(content)
    assert kestrindb.check(b"no parameters")[0].kind == "no_parameter_file"


def test_bad_lines_are_told_and_lose_nothing_else():
    db = kestrindb.load(BAD)
    for line in db.log:
        assert line.section == "<TMode>" and line.row == "x" and line.text
    assert db.log
    (finding,) = [finding for finding in db.check() if finding.severity == "error"]
    assert finding.kind == "bad_line" and finding.field == "mode" and finding.position == 1
    assert BAD.splitlines()[finding.line - 1].strip() == b"x"
    assert len(db.tables["TMode"]) == len(kestrindb.load(BYTES).tables["TMode"]) + 1
    # A file that breaks off is a data base so far.
    broken = kestrindb.load(BYTES + b"\n\xff")
    assert "UTF-8" in broken.log[0].text and broken.channel_name(3) == "Sync input"


def test_copies_and_what_was_never_made(db):
    assert pickle.loads(pickle.dumps(db)).diff(copy.copy(db)) == []
    table = db.tables["TMode"]
    with pytest.raises(TypeError):
        copy.copy(table)
    empty = kestrindb.Database.__new__(kestrindb.Database)
    for ask in (
        lambda: empty.base_type(),
        lambda: empty.channel_name(3),
        lambda: empty._log(),
        lambda: db._diff(empty),
        lambda: kestrindb.Database.base_type(None),
        lambda: kestrindb.Table(empty, "<TMode>"),
        lambda: kestrindb.Table(None, "<TMode>"),
        lambda: len(kestrindb.Table.__new__(kestrindb.Table)),
        lambda: db.diff(None),
    ):
        with pytest.raises((TypeError, RuntimeError)):
            ask()


def memory():
    return int(pathlib.Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGESIZE")


def test_loads_are_not_kept():
    def load_and_ask():
        db = kestrindb.load(BYTES)
        db.tables["TMode"].to_pandas()
        db.mode_name([130, 405664])
        with pytest.raises(LookupError):
            db.channel_name("none")

    gc.disable()  # nothing may need it
    try:
        for _ in range(50):
            load_and_ask()
        before = memory()
        for _ in range(1000):
            load_and_ask()
    finally:
        gc.enable()
    # A data base of the sample takes more than that by itself.
    assert memory() - before < 8e6


def test_threads_load_and_ask_side_by_side():
    shared, failures = kestrindb.load(BYTES), []

    def work(number):
        try:
            for _ in range(20):
                own = kestrindb.load(BAD if number % 2 else BYTES)
                assert bool(own.log) == bool(number % 2)
                assert shared.mode_name(405664) == own.mode_name(405664)
                assert not shared.diff(kestrindb.load(BYTES))
        except BaseException as error:
            failures.append(error)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failures
