"""Names, arrays and what is wrong in arguments; the answers themselves are in test_cases.py."""

import pickle

import kestrindb
import numpy as np
import pytest
from conftest import SAMPLE

STEP = "Spur 30 Hz low load"


def test_names_stand_for_ids(db):
    assert db.base_channel(STEP, "Mix") == db.base_channel(130, 6)
    assert db.phys_mode_id(mode=STEP) == 1 == db.phys_mode_id(130)
    key = (160, 2001, 1, 10, 20011, 11)
    assert db.polygon([db.mode_name(160), *key[1:]]).polygon == db.polygon(key).polygon == 1
    for name, told in {
        "Snyc input": "no channel 'Snyc input'. Did you mean 'Sync input'",
        "": "no channel ''",
        "\U0001d711": "no channel '\U0001d711'",
    }.items():
        with pytest.raises(LookupError, match=told):
            db.channel_name(name)
    with pytest.raises(LookupError, match="belongs to several: 17001, 20701"):
        db.instrument_parameter_to_instrument("Mesh 1 H1")
    with pytest.raises(TypeError, match="rotor has no name here"):
        db.speed_info_of_rotor(130, "input shaft")


def test_calculation_parameters_have_texts(db):
    assert len(db.calc_param_enum_texts()) == 43
    assert db.calc_param_enum_texts()[1] == db.calc_param_enum_text(1) == "Trigger"
    assert db.calc_param_enum_sub_texts(0)[3] == db.calc_param_enum_sub_text(0, 3) != ""
    assert db.calc_param_enum_sub_texts(99) == ["(0)"]


def test_arrays_are_broadcast(db):
    steps, sources = np.array([[130], [170]]), [1, 2, 3]
    ratios = db.frequency_ratio(steps, 1, sources)
    assert ratios.shape == (2, 3) and ratios.dtype == np.float32
    assert ratios[1, 2] == db.frequency_ratio(170, 1, 3)
    assert db.mode_name([130, STEP]).tolist() == [STEP, STEP]
    assert db.channel_name(db.tables["TChannel"].to_pandas().index).tolist()[2] == "Sync input"
    assert db.mode_name([]).shape == (0,) and db.mode_name(np.zeros((0, 3), int)).shape == (0, 3)
    many = db.base_channel(np.arange(1_000_000, dtype=np.int64) % 300, 3)
    assert many[130] == db.base_channel(130, 3) and many.size == 1_000_000
    with pytest.raises(ValueError, match="broadcast"):
        db.base_channel([1, 2], [1, 2, 3])


@pytest.mark.parametrize(
    "wrong, error",
    [(value, TypeError) for value in (None, 1.5, b"Raw", {}, object(), [1.5], [None], [True])]
    + [(value, OverflowError) for value in (2**31, -(2**31) - 1, 2**64, [2**31], np.uint64(2**63))]
    + [("a\0b", ValueError), ("\ud800", UnicodeEncodeError), ([[1], 2], ValueError)],
)
def test_wrong_arguments_are_exceptions(db, wrong, error):
    asked = 0
    for query, arguments, _ in kestrindb._core.queries:
        good = {"str": "x", "key": range(6)}
        others = [good.get(kind, 1) for _, kind, _ in arguments]
        for i, (_, kind, named) in enumerate(arguments):
            if kind == "int" and named:
                with pytest.raises(error):
                    getattr(db, query)(*others[:i], wrong, *others[i + 1 :])
                asked += 1
    assert asked > 50
    for ask in (db.rotors, db.polygon, lambda step: db.intervals(step, lines=9)):
        with pytest.raises((error, TypeError, ValueError)):
            ask(wrong)


def test_intervals(db):
    spectrum = {"lines": 400, "resolution_orders": 0.25, "resolution_hz": 10}
    told = db.intervals(STEP, **spectrum)
    assert {interval.parameter for interval in told} == set(db.tables["IpSvOfSpec"]["parameter"])
    number = told[5].parameter
    of_one = [interval for interval in told if interval.parameter == number]
    assert db.intervals(STEP, number, **spectrum) == of_one
    assert all((interval.first_line == -1) == (interval.result != "ok") for interval in told)
    for wrong in ({"lines": -1}, {"lines": 2**40}, {"lines": None}):
        with pytest.raises(TypeError):
            db.intervals(STEP, **wrong)
    with pytest.raises(TypeError, match="not both"):
        db.intervals(STEP, number, definition="H1", lines=9)
    with pytest.raises(kestrindb.OrderError) as caught:
        db.intervals(STEP, definition="\U0001d711H", lines=9)
    assert caught.value.offset == 1 and pickle.loads(pickle.dumps(caught.value)).offset == 1


def test_a_difference_tells_rows_and_fields(db):
    text = SAMPLE.read_text(encoding="utf-8").replace(STEP, "Renamed")
    text = text.replace('Name>: "PHM09-GB"', "Name>: new")
    changes = kestrindb.load(text.encode("utf-8-sig")).diff(db)
    assert changes[:2] == [
        ("", "changed", {}, {"alias_type": "new"}, {"alias_type": "PHM09-GB"}),
        ("<TMode>", "changed", {"mode": 130}, {"name": "Renamed"}, {"name": STEP}),
    ]
    assert len(changes) == 2 and not db.diff(db)
