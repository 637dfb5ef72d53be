"""Rows as numpy and pandas have them, against the file and against each other."""

import kestrindb
import numpy as np
import pytest
from conftest import SAMPLE


def test_all_tables_agree_in_all_forms(db):
    for section, table in db.tables.items():
        rows = table.rows()
        array = table.to_numpy()
        assert db.tables[section.strip("<>")] is table and len(rows) == len(table) == len(array)
        assert [tuple(row) for row in rows] == [tuple(row) for row in array.tolist()]
        frame = table.to_pandas(index=False)
        assert list(frame) == [column.name for column in table.columns]
        assert list(frame.itertuples(index=False, name=None)) == rows
        for row in rows:
            key = row[: len(table.key)]
            assert key in table
            assert row == table[key] if table.unique_keys else row in table[key]


def test_numbers_are_views_that_keep_the_data_base(db):
    speeds = db.tables["TRotorSpeed"]
    array, column = speeds.to_numpy(), speeds["speed"]
    assert np.shares_memory(array, column) and not array.flags.writeable
    assert np.shares_memory(column, speeds["speed"])
    expected = column.tolist()
    texts = db.tables["TMode"]["name"].tolist()
    names = db.tables["TMode"]
    del db, speeds, array
    for _ in range(20):  # others would take the memory
        kestrindb.load(SAMPLE)
    assert column.tolist() == expected and names["name"].tolist() == texts
    with pytest.raises(ValueError):
        column[0] = 1


def test_columns_say_what_their_ids_are(db):
    table = db.tables["TChannelInheritance"]
    assert [column.refers_to for column in table.columns] == ["channel", "test step", "channel"]
    frame = table.to_pandas(names=True)
    assert frame.iloc[0].tolist() == ["Envelope", "", 1, "Raw"]
    assert table.names("ref")[0] == "Raw" and db.tables["TRotorSpeed"].names("rotor") is None


def test_what_is_not_there(db):
    with pytest.raises(KeyError, match="mean '<TMode>'"):
        db.tables["TMod"]
    for key in (99, (1, 2), "mod", None, 2**70, slice(3)):
        with pytest.raises((KeyError, TypeError)):
            db.tables["TMode"][key]
    with pytest.raises(ImportError, match=r"to_arrow\(\) needs pyarrow"):
        db.tables["TMode"].to_arrow()


def test_a_name_that_is_added_shows(db):
    table = db.tables["TMode"]
    before = table.to_numpy()
    assert db.add_v_mode_name(405664, "My band") and not db.add_v_mode_name(405664, "Again")
    assert table[405664].name == "My band" == db.mode_name("My band")
    assert len(table) == len(before) + 1
