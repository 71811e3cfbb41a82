"""Values as NumPy arrays and DataFrames."""

import copy
import gc
import pickle

import numpy as np
import pandas as pd
import pytest

import dbapi

ONE_SWEEP = "$DEVNAME=nfet_01v8_w7u_l0p15u_m1;$SUBSITE=8434;$DEVID=10_11;$SETNAME=IDVG"

# A sweep with a column of each kind, of which the last row of each has no value.
EVERY_KIND = {
    "IND.VG": [0.0, 0.5, np.nan],
    "OUTD.ID": [1e-12, 2e-6, 3e-4],
    "OUTS.note": ["low", "high", None],
    "OUTX.s11": [1 + 2j, 0.5j, complex("nan")],
    "OUTM.y": [np.array([[1, 2j]]), np.array([[3, 4]]), None],
}


@pytest.fixture
def kinds(empty):
    empty.write(EVERY_KIND, {"$DEVNAME": "nmos1", "$SETNAME": "all", "$TEMP": 27})
    return empty


def test_arrays_by_kind(kinds):
    t = kinds.values(*EVERY_KIND, "$DEVNAME", "$DEVDBID", "$SETTIME", "$LOT", order="stored")
    assert {name: (t[name].dtype.str, t[name].shape) for name in t} == {
        "IND.VG": ("<f8", (3,)),
        "OUTD.ID": ("<f8", (3,)),
        "OUTS.note": ("|O", (3,)),
        "OUTX.s11": ("<c16", (3,)),
        "OUTM.y": ("<c16", (3, 1, 2)),
        "$DEVNAME": ("|O", (3,)),
        "$DEVDBID": ("<i8", (3,)),
        "$SETTIME": ("<M8[us]", (3,)),
        "$LOT": ("|O", (3,)),
    }
    np.testing.assert_array_equal(t["IND.VG"], EVERY_KIND["IND.VG"])
    assert t["OUTS.note"].tolist() == ["low", "high", None]
    assert t["OUTX.s11"][:2].tolist() == [1 + 2j, 0.5j] and np.isnan(t["OUTX.s11"][2])
    assert t["OUTM.y"][0].tolist() == [[1, 2j]] and np.isnan(t["OUTM.y"][2]).all()
    assert t["$LOT"].tolist() == [None] * 3
    assert abs(t["$SETTIME"][0] - np.datetime64("now")) < np.timedelta64(1, "D")
    assert t["$DEVNAME"][0] is t["$DEVNAME"][2], "texts that are equal are one object"
    assert t.codes("OUTS.note").tolist() == [t.dictionary("OUTS.note").index(x) for x in ("low", "high")] + [-1]
    assert [t.column(i).missing for i in range(len(t.columns))] == [1, 0, 1, 1, 1, 0, 0, 0, 3]


def test_missing_ids_and_matrices_of_several_shapes(empty):
    empty.write({"OUTM.y": [np.eye(2), np.eye(3)]}, {"$SETNAME": "b"}, allow_anonymous=True)
    empty.write({"OUTM.y": [np.eye(2)]}, {"$SETNAME": "a", "$DEVNAME": "x"})
    t = empty.values("$DEVDBID", "OUTM.y", order="stored")
    assert t["OUTM.y"].dtype == object and [y.shape for y in t["OUTM.y"]] == [(2, 2), (3, 3), (2, 2)]
    assert t["$DEVDBID"].dtype == float and np.isnan(t["$DEVDBID"][:2]).all() and t["$DEVDBID"][2] >= 1
    frame = t.to_pandas()
    assert frame["$DEVDBID"].dtype == "Int64" and frame["$DEVDBID"].isna().tolist() == [True, True, False]


def test_arrays_share_memory_and_outlive_everything(shipped):
    lab = dbapi.connect(shipped)
    t = lab.values("IND.VG", "OUTD.ID", query=ONE_SWEEP, order="stored")
    current = t["OUTD.ID"]
    assert current is t["OUTD.ID"] and not current.flags.owndata and not current.flags.writeable
    with pytest.raises(ValueError):
        current.flags.writeable = True
    expected = current.copy()
    lab.close()
    del t, lab
    gc.collect()
    np.testing.assert_array_equal(current, expected)


@pytest.mark.parametrize(
    "options, check",
    [
        ({}, lambda t: (np.diff(t["IND.VG"]) >= 0).all()),
        ({"order": "stored"}, lambda t: t["IND.VG"][:3].tolist() == [0, 0.05, 0.1]),
        ({"order": None}, lambda t: len(t) == 222),
        ({"limit": 5}, lambda t: len(t) == 5),
        ({"limit": np.int64(0)}, lambda t: len(t) == 0 and t["OUTD.ID"].shape == (0,) and not t),
        ({"ids": True}, lambda t: t.keys()[-1] == "id" and len(set(t["id"])) == 1),
        ({"query": "ALLDATA:" + ONE_SWEEP}, lambda t: len(t) == 222),
        ({"query": ONE_SWEEP, "all_data": True}, lambda t: len(t) == 222),
        ({"query": "W=99"}, lambda t: len(t) == 0 and "Empty" in repr(t)),
        ({"max_bytes": 10**7}, lambda t: len(t) == 222),
    ],
)
def test_options(lab, options, check):
    assert check(lab.values("IND.VG", "OUTD.ID", **{"query": ONE_SWEEP, **options}))


def test_distinct_and_progress(lab):
    assert lab.values("$DEVTYPE", distinct=True)["$DEVTYPE"].size == len(set(lab.values("$DEVTYPE")["$DEVTYPE"]))
    calls = []
    lab.values("OUTD.ID", progress=lambda rows, most: calls.append((rows, most)))
    assert calls[0][0] == 0 and calls[-1][0] == 65564 and all(most >= rows for rows, most in calls)


def test_a_table_is_a_mapping_of_columns(lab):
    t = lab.values("$DEVNAME", "W", "W", query=ONE_SWEEP)
    assert list(t) == ["$DEVNAME", "W", "W"] and "W" in t and "L" not in t
    assert t[1] is t["W"] and t[-1].tolist() == [7e-06]
    column = t.column("W")
    assert (column.name, column.table, column.category, column.datatype, column.unit) == (
        "W", "device", "PHYSICAL", "DOUBLE", "")
    for wrong, error in (("L", KeyError), (7, IndexError)):
        with pytest.raises(error, match="no column|was not read"):
            t[wrong]
    with pytest.raises(TypeError, match="no texts"):
        t.codes("W")


def test_frames(lab):
    t = lab.values("$DEVNAME", "$MEASTIME", "IND.VG", "IND.VG", query="W=7u", order="stored")
    frame = t.to_pandas()
    assert frame.columns.tolist() == ["$DEVNAME", "$MEASTIME", "IND.VG", "IND.VG (2)"]
    assert isinstance(frame["$DEVNAME"].dtype, pd.CategoricalDtype)
    assert pd.api.types.is_datetime64_any_dtype(frame["$MEASTIME"])
    assert frame["$DEVNAME"].astype(object).tolist() == t["$DEVNAME"].tolist()
    assert t.to_pandas(categories=False)["$DEVNAME"].dtype == object
    frame["IND.VG"] += 1
    assert t["IND.VG"][0] == 0, "a frame that is written to leaves the table alone"


def test_how_it_is_shown(empty):
    empty.write({"IND.x": np.arange(50.0), "OUTS.t": ["\x1b[31mred <b>"] * 50}, {"$DEVNAME": "d"})
    t = empty.values("IND.x", "OUTS.t", order="stored")
    lines = repr(t).splitlines()
    assert len(lines) == 13 and lines[-1] == "[50 rows x 2 columns]" and lines[6].split()[0] == "..."
    assert "\x1b" not in repr(t) and r"\x1b[31mred" in repr(t)
    assert "&lt;b&gt;" in t._repr_html_() and "<b>" not in t._repr_html_()


@pytest.mark.parametrize("use", [pickle.dumps, copy.copy, copy.deepcopy])
@pytest.mark.parametrize(
    "make",
    [
        lambda lab: lab,
        lambda lab: lab.values("W"),
        lambda lab: lab.batches("W"),
        lambda lab: lab.curves("W", "L"),
        lambda lab: lab.curves("W", "L")[0],
    ],
)
def test_pickling_is_refused_with_a_word(lab, make, use):
    with pytest.raises(TypeError, match="cannot be pickled"):
        use(make(lab))
