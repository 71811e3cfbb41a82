"""Import of files, and measurements out of memory."""

import shutil

import numpy as np
import pandas as pd
import pytest

import dbapi
from conftest import MEASUREMENTS

FACTS = {"$DEVNAME": "nmos1", "$SETNAME": "IDVG", "$TEMP": 27, "Key(W,device,DOUBLE,PHYSICAL)": "7u"}
SWEEP = {"IND.VG": [0.0, 0.6, 1.2], "OUTD.ID": [1e-12, 2e-6, 3e-4]}


def test_import(empty, tmp_path, capsys):
    file = sorted(MEASUREMENTS.glob("*.csv"))[0]
    shutil.copy(file, tmp_path / "again.csv")
    first = empty.import_files(file, progress=True)
    assert (first.files, first.setups, first.superseded_setups) == (1, 1, 0) and first.new_keys
    assert "100 %" in capsys.readouterr().err
    told = []
    again = empty.import_files([tmp_path / "again.csv"], progress=lambda done, total: told.append((done, total)))
    assert again.superseded_setups == 1 and again.superseding[0].file.endswith("again.csv") and not again.new_keys
    assert told[-1][0] == told[-1][1] == file.stat().st_size
    assert len(empty.ids("setup")) == 1 and len(empty.ids("setup", "ALLDATA:")) == 2


def test_import_of_faulty_files(empty, tmp_path):
    (tmp_path / "good.csv").write_text("# $DEVNAME = a\nIND.VG,OUTD.ID\n0,1\n")
    (tmp_path / "bad.csv").write_text("# $DEVNAME = a\nIND.VG,OUTD.ID\n0,much\n")
    (tmp_path / "nobody.csv").write_text("IND.VG,OUTD.ID\n0,1\n")
    with pytest.raises(dbapi.DataError) as caught:
        empty.import_files(tmp_path)
    assert {(f.file.rsplit("/")[-1], f.line) for f in caught.value.faults} == {("bad.csv", 3), ("nobody.csv", 0)}
    assert "allow_anonymous=True" in str(caught.value) and "bad.csv:3" in str(caught.value)
    assert len(empty.ids("setup")) == 0, "all or nothing"
    with pytest.raises(dbapi.ArgumentError, match="Nothing was imported"):
        empty.import_files([tmp_path / "missing.csv"])
    assert empty.import_files(tmp_path / "nobody.csv", allow_anonymous=True).setups == 1


@pytest.mark.parametrize(
    "data",
    [
        SWEEP,
        {name: np.array(column) for name, column in SWEEP.items()},
        pd.DataFrame(SWEEP),
        {name: tuple(column) for name, column in SWEEP.items()},
    ],
)
def test_write(empty, data):
    first = empty.write(data, FACTS, headers={"OUTD.ID": "A"})
    assert first.superseded == () and {key.name for key in first.new_keys} == {"W", "VG", "ID"}
    t = empty.values("W", "$TEMP", *SWEEP, order="stored")
    assert {name: t[name].tolist() for name in t} == {"W": [7e-06] * 3, "$TEMP": [27] * 3, **SWEEP}
    assert empty.setup(first.setup).headers == {"VG": "", "ID": "A"}
    second = empty.write(data, FACTS)
    assert second.superseded == (dbapi.Superseded(first.measurement, first.setup),) and second.new_keys == ()
    assert second.device == first.device and len(empty.values("OUTD.ID", all_data=True)) == 6
    assert empty.write(t.to_pandas()[list(SWEEP)], FACTS).superseded == ((second.measurement, second.setup),)


def test_write_facts_alone(empty):
    facts = {
        "$DEVNAME": "nmos1", "$ROUTINENAME": "vth", "$LOT": "S1",
        "Key(VTH,measurement,DOUBLE)": 0.1 + 0.2, "Key(ok,measurement,TEXT)": "größe; =x",
        "Key(s11,measurement,COMPLEX)": 1 - 2j, "Key(y,measurement,MATRIX)": np.array([[1, 2j]]),
        "Key(n,measurement,DOUBLE)": np.int64(3), "Key(none,measurement,DOUBLE)": float("nan"),
    }
    first = empty.write(facts=facts)
    assert first.setup is None and first.die and first.routine
    record = empty.record("measurement", first.measurement)
    assert (record["VTH"], record["ok"], record["s11"], record["n"]) == (0.1 + 0.2, "größe; =x", 1 - 2j, 3)
    assert record["y"].tolist() == [[1, 2j]] and "none" not in record
    second = empty.write(facts=facts)
    assert second.superseded == ((first.measurement, None),)
    assert empty.values("VTH")["VTH"].tolist() == [0.1 + 0.2]


def test_write_many(empty):
    written = empty.write_many(
        dbapi.Measurement({"IND.x": [1.0, 2.0]}, {"$DEVNAME": f"d{i}"}) for i in range(5)
    )
    assert len({one.catalog_entry for one in written}) == 1 and len({one.device for one in written}) == 5
    assert empty.write_many([]) == []
    same = dbapi.Measurement({"IND.x": [1.0]}, {"$DEVNAME": "twice"})
    with pytest.raises(dbapi.DataError, match='"measurement 1" and "measurement 2" hold the same sweep'):
        empty.write_many([same, same])
    assert len(empty.ids("device")) == 5, "all or nothing"


@pytest.mark.parametrize(
    "data, facts, error, says",
    [
        (SWEEP, {}, dbapi.ArgumentError, "names no device"),
        (SWEEP, {"$DEVNAME": "a", "$DEVNAM": "b"}, dbapi.ArgumentError, "Did you mean"),
        (SWEEP, {"$DEVNAME": "a", "W": 1}, dbapi.ArgumentError, "Write table and data type"),
        (SWEEP, {"$DEVNAME": "a", "$DEVDBID": 1}, dbapi.ArgumentError, "cannot be set"),
        (SWEEP, {"$DEVNAME": "a", "$TEMP": "warm"}, dbapi.ArgumentError, "TEMP"),
        (SWEEP, {"$DEVNAME": True}, TypeError, "bool"),
        (SWEEP, {"$DEVNAME": [1]}, TypeError, "list"),
        (None, {"$DEVNAME": "a", "$SETNAME": "s"}, dbapi.ArgumentError, "no columns"),
        ({"VG": [1]}, FACTS, dbapi.ArgumentError, "VG"),
        ({"IND.a": [1, 2], "IND.b": [1]}, FACTS, dbapi.DataError, ""),
        ({"IND.a": [np.inf]}, FACTS, dbapi.DataError, ""),
        ({"IND.a": ["x"]}, FACTS, (TypeError, ValueError), ""),
        ({"IND.a": np.array([1j])}, FACTS, dbapi.ArgumentError, "complex"),
        ({"IND.a": [[1, 2]]}, FACTS, dbapi.ArgumentError, "dimensions"),
        ({"INS.a": [1]}, FACTS, TypeError, "str"),
        ({"IND.a": np.array(["2020"], "M8[s]")}, FACTS, TypeError, "times"),
    ],
)
def test_what_cannot_be_written(empty, data, facts, error, says):
    with pytest.raises(error, match=says):
        empty.write(data, facts)
    assert len(empty.ids("measurement", "ALLDATA:")) == 0


@pytest.mark.parametrize(
    "column, values, expected",
    [
        ("IND.a", [1, None], [1, None]),
        ("IND.a", pd.Series([1.0, None]), [1, None]),
        ("IND.a", pd.array([1, None], dtype="Int64"), [1, None]),
        ("IND.a", np.ma.array([1.0, 9.0], mask=[False, True]), [1, None]),
        ("INS.a", pd.Series(["x", None], dtype="category"), ["x", None]),
        ("INS.a", np.array(["x", "y"]), ["x", "y"]),
    ],
)
def test_no_value_in_what_is_written(empty, column, values, expected):
    empty.write({column: values, "OUTD.b": [1.0, 2.0]}, FACTS)
    found = empty.values(column, "OUTD.b", order="stored").to_pandas()[column]
    assert [None if pd.isna(value) else value for value in found] == expected
