"""Curves, pictures, records, keys, ids and explanations."""

import warnings

import matplotlib.pyplot as plt
import numpy as np
import pytest

import dbapi

FAMILY = "$DEVNAME=nfet_01v8_w0p36u_l0p15u_m1"


def test_curves(lab):
    curves = lab.curves("IN.VG", "OUTD.ID", query=FAMILY)
    assert len(curves) == 6 and curves.is_swept and curves.setups_left_out == 1
    assert [(c.parameters["VD"], c.parameters["VB"]) for c in curves][:2] == [(0.1, 0.0), (1.8, 0.0)]
    first = curves[0]
    assert first.x[:2].tolist() == [0, 0.05] and len(first) == len(first.x) == len(first.y) == 37
    assert lab.setup(first.setup).points["ID"][:37].tolist() == first.y.tolist()
    assert not first.x.flags.writeable and "VD=0.1" in repr(first)
    by_type = lab.curves("$DEVTYPE", "W")
    assert not by_type.is_swept and by_type[0].setup is None and "nfet_01v8" in by_type.x_labels
    assert len(lab.curves("IND.VG", "OUTD.ID", query="W=99")) == 0


@pytest.mark.parametrize(
    "keywords, options, lines, bars, labels",
    [
        (("IN.VG", "OUTD.ID"), {"query": FAMILY}, 6, 0, ("IN.VG", "OUTD.ID")),
        (("IN.VG", "OUTD.ID"), {"query": FAMILY, "logy": True}, 6, 0, ("IN.VG", "|OUTD.ID|")),
        (("W", "L"), {}, 1, 0, ("W", "L")),
        (("W",), {}, 0, 17, ("W", None)),
        (("$DEVTYPE",), {}, 0, None, (r"\$DEVTYPE", None)),
        (("W",), {"logx": True}, 0, None, ("W", None)),
    ],
)
def test_pictures(lab, keywords, options, lines, bars, labels):
    figure, axes = plt.subplots()
    with warnings.catch_warnings(record=True) as notes:
        warnings.simplefilter("always")
        assert lab.plot(*keywords, ax=axes, **options) is axes
    assert len(axes.lines) == lines and (bars is None or len(axes.patches) == bars)
    assert axes.get_xlabel() == labels[0] and (labels[1] is None or axes.get_ylabel() == labels[1])
    assert (lines == 6) == any("left out" in str(note.message) for note in notes)
    figure.canvas.draw()
    plt.close(figure)


def test_a_picture_of_nothing_says_so(lab):
    with pytest.warns(UserWarning, match="Nothing is found"):
        axes = lab.plot("IN.VG", "OUTD.ID", query="W=99")
    plt.close(axes.figure)


def test_records(lab):
    ids = lab.ids("device", "W=[5u,10u];L<=0.15u")
    assert ids.dtype == np.int64 and len(ids) > 0 and (np.diff(ids) > 0).all()
    record = lab.record("device", int(ids[0]))
    assert (record["W"], record["L"], record["$DEVDBID"]) == (7e-06, 1.5e-07, ids[0])
    assert record.table == "device" and "W" in repr(record) and "<table>" in record._repr_html_()
    for table in ("catalog_entry", "die", "routine", "measurement", "measurement_condition", "setup"):
        assert len(lab.record(table, int(lab.ids(table)[0]))) >= 3
    setup = lab.setup(int(lab.ids("setup", FAMILY + ";$SETNAME=IDVG")[0]))
    assert setup.points.keys() == ["VB", "VD", "VG", "IB", "ID", "IG"]
    assert setup.record["$SETNAME"] == "IDVG" and set(setup.headers) == set(setup.points)


def test_keys(lab):
    keys = lab.keys("device")
    assert [key.name for key in keys] == ["L", "M", "W", "process"]
    assert keys[2]._asdict() == {
        "name": "W", "category": "PHYSICAL", "datatype": "DOUBLE", "records": 118, "points": None,
        "minimum": 3.6e-07, "maximum": 40.0}
    assert lab.keys("die") == () and repr(lab.keys("die")) == "no keys"
    assert lab.keys("setup", FAMILY)[0].points > 0 and "<th" in keys._repr_html_()


def test_explanations(lab):
    explanation = lab.explain("$DEVNAME", query="W=5u;L<=0.15u")
    assert str(explanation).startswith("Nothing is found") and explanation.text == repr(explanation)
    found = explanation.as_dict()
    assert found["read"]["rows"] == 0 and found["keys"][1]["key"] == "L"
    assert lab.explain(query="W=7u").as_dict()["tree"]["keyword"] == "W"
    with pytest.raises(dbapi.ArgumentError, match="nothing to explain"):
        lab.explain()
