"""The case files of the library's tests, asked through Python; cases_test.cpp tells their form.

Each question is asked once more with a list for each id, which must give the same answer.
"""

import pathlib
import re

import kestrindb
import numpy as np
import pytest
from conftest import ROOT, SAMPLE

# What these ask is no matter of a data base, or not of one that is only read.
ELSEWHERE = set(
    "CMeasuringUnit Clavis CutOut Double Field FillTypeNameCombo Grid GetCalcParamEnumSubTexts "
    "GetCalcParamEnumTexts IdNameMap Int Line LongLong PickTexts Range "
    "ShowIdsInDialogs String ToText TriggerEdges Unsigned Value".split()
)
VERSION = {"<DbDesign.CacheMinorVersion>": "<DbDesign.CacheMinorVersion>: 1\n",
           "<DbDesign.CacheVersion>": "<DbDesign.CacheVersion>: 215\n"}  # fmt: skip


def ids(text):
    return [int(word) for word in (text).split()]


def six(text):
    return (ids(text) + [-1] * 6)[:6]


def interval(db, mode, source, assembly, definition, lines, resolution, scale):
    (told,) = db.intervals(mode, lines=lines, definition=definition, assembly=assembly,
                           speed_source=source, resolution_orders=resolution,
                           resolution_hz=resolution, order_scale=scale)[:1]  # fmt: skip
    result = {"beyond spectrum": "beyond", "no resolution": "invalid"}.get(told.result, told.result)
    return [result] if result != "ok" else [result, *told[5:7], *told[8:10]]


def interpret(db, text, room):
    if room != 32 and re.search("[xX]", text):
        return None  # whole copies fill what room there is
    try:
        domains = {"none": 0, "frequency": 1, "order": 2, "mixed": 3}
        found = kestrindb.order(text).positions[:room]
        return [(*position[:5], domains[position.domain]) for position in found]
    except kestrindb.OrderError as error:
        if error.position >= room:
            return None
        return [error.position, error.letter, error.offset, error.reason]


def axes(db, mode, trigger):
    told = db.trigger_axes(mode, trigger)
    mask = sum(1 << axis.dimension for axis in told)
    return [db.trigger_dimension(mode, trigger), mask, *(axis[1:] for axis in told)]


def cell(db, mode, trigger, values, clamp):
    words = enumerate((values).split())
    given = {dim: float(word) for dim, word in words if word != "-"}
    return db.trigger_cell(mode, trigger, given, bool(clamp)) or "none"


def places(db, mode, trigger, indexes, offset):
    pack = lambda text: [*ids(text), 0, 0, 0, 0][:4]
    found = db.trigger_places(mode, trigger, pack(indexes), pack(offset))
    return [found.get(dim, "-") for dim in range(4)]


# Whether a query takes nothing but ids.
OF_IDS = {
    name: all(kind in ("int", "unsigned") for _, kind, _ in arguments)
    for name, arguments, _ in kestrindb._core.queries
}
# Where Python asks in another form.
FORMS = {
    "Rows": lambda db, section: [row for row in db.tables[section.strip("<>")]],
    "LastRefusal": lambda db: "",  # others are exceptions
    "Initialized": lambda db: True,
    "ApplicationSignalUnit": lambda db, a: ["*"] * 3 + [db.application_signal_unit(a)],
    "SetUserLanguage": lambda db, tag: kestrindb.set_language(tag),
    "Interpret": interpret,
    "IndexRange": interval,
    "TriggerAxes": axes,
    "TriggerCell": cell,
    "TriggerPlaces": places,
    "OrderSourceRange": lambda db, *a: db.order_source_range(*a),
    "SpecIntervalRange": lambda db, a: db.spec_interval_range(a % 2**32 - (a < 0) * 2**32).tolist(),
    "FormatClavisText": lambda db, *a: db.format_clavis_text(six(a[2]), *a[:2]) if a[2:] else None,
    "FormatClavisTextNice": lambda db, text, key: db.format_clavis_text_nice(six(key), text),
    "FrequencyRatioToGeneratingRotor": lambda db, *a: db.frequency_ratio(*a),
}


def words_of(answer):
    """An answer as the case files have it, in words without quotes."""
    if isinstance(answer, (tuple, list)):
        return [word for part in answer for word in words_of(part)]
    if isinstance(answer, bool):
        return [str(answer).lower()]
    return str("null" if answer is None else answer).split()


def same(word, expected):
    try:
        return word in (expected, "*") or np.float32(word) == np.float32(expected)
    except ValueError:
        return False


def argument(word):
    if word[0] in "\"'":
        return word[1:-1]
    if word == "null":
        return ""  # Python has no null text, which is asked for as an empty one
    number = float.fromhex(word) if "x" in word else float(word)
    return int(number) if number.is_integer() else number


class Replay:
    def __init__(self, path):
        self.sections, self.questions, self.asked = dict(VERSION), [], 0
        self.db = kestrindb.load("\ufeff{}{}".format(*VERSION.values()).encode())
        for block in re.split(r"\n(?=[^ };\n])", re.sub(r"(?m)^;.*\n?|^\n", "", path.read_text())):
            self.take(block.strip("\n"))
        self.ask()

    def take(self, block):
        if block.startswith("<"):
            text = re.sub(r"\{ (.*) \}$", "{\n\\1\n}", block).replace(" | ", "\n") + "\n"
            self.sections[block[: block.find(":")]] = text
        elif block.startswith("load") or block == "purge":
            self.ask()
            self.db = None
            text = "\ufeff" + "".join(self.sections[name] for name in sorted(self.sections))
            source = SAMPLE if "sample" in block else text.encode()
            if block == "load fails":
                with pytest.raises(kestrindb.Refused):
                    kestrindb.load(source)
            elif block != "purge":
                self.db = kestrindb.load(source)
        elif block.startswith("log"):
            self.ask()
            expected = re.sub(r"\\[nt]|\s", "", block)
            for line in self.db.log if self.db else []:
                assert re.sub(r"\s", "", line.text) in expected
        else:
            names = []
            for text in re.sub(r" \| ", "\v", block).replace("\n", "\v").split("\v"):
                question, equals, answer = (text + " ").partition(" = ")
                if not equals and names:
                    self.questions[-1][2] += " " + text
                    continue
                found = re.findall(r"\"[^\"]*\"|'[^']*'|\S+", question)
                names += [word for word in found if word[0].isupper()]
                given = [argument(word) for word in found if not word[0].isupper()]
                if equals:
                    self.questions.append([list(names), given, answer])

    def ask(self):
        for names, given, expected in self.questions:
            if self.db is None or ELSEWHERE & set(names) or " or " in expected:
                continue
            answers = [self.answer(name, given) for name in names]
            if None in answers:
                continue
            words = [word for answer in answers for word in words_of(answer)]
            wanted = expected.replace('"', "").replace(",", " ").split()
            words = " ".join(words).replace('"', "").replace(",", " ").split()
            told = (names, given, expected, words)
            assert len(words) == len(wanted) and all(map(same, words, wanted)), told
            self.asked += 1
        self.questions = []

    def answer(self, name, given):
        if name in FORMS:
            return FORMS[name](self.db, *given)
        snake = re.sub(r"(?<!^)(?=[A-Z])|(?<=[a-z])(?=\d)", "_", name).lower()
        snake = snake.removeprefix("get_")
        query = getattr(self.db, snake)
        if name == "VirtModeExtension" and isinstance(given[0], str):
            rows = len(self.db.tables["TAutoModeParam"])
            return self.db.virt_mode_extension_of_bands((ids(given[0]) + [-1] * rows)[:rows])
        answer = query(*given)
        if given and OF_IDS[snake] and not isinstance(given[0], str):
            assert query(*([one] for one in given)).tolist() == [answer]
        return answer


@pytest.mark.parametrize("path", sorted((ROOT / "tests/cases").glob("*.txt")), ids=lambda p: p.stem)
def test_cases(path):
    Replay(path)
