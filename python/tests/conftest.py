import pathlib

import kestrindb
import pytest

ROOT = pathlib.Path(__file__).parents[2]
SAMPLE = ROOT / "samples" / "gearbox.par"


@pytest.fixture
def db():
    return kestrindb.load(SAMPLE)
