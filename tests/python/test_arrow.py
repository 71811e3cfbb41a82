"""Arrow C streams out of Python, read by a consumer of the tests' own."""

import gc

import pytest

import dbapi
from arrow_reader import read_stream
from test_values import EVERY_KIND, kinds  # noqa: F401


def test_a_table_of_every_kind(kinds):  # noqa: F811
    t = kinds.values(*EVERY_KIND, "$DEVDBID", "$SETTIME", order="stored")
    for _ in range(2):  # a table may be handed out again and again
        formats, (batch,) = read_stream(t.__arrow_c_stream__())
    assert list(formats.values()) == ["g", "g", "i", "+w:2", "+L", "l", "tsu:UTC"]
    assert batch["IND.VG"] == [0, 0.5, None]
    assert batch["OUTS.note"] == ["low", "high", None]
    assert batch["OUTX.s11"] == [1 + 2j, 0.5j, None]
    assert batch["OUTM.y"] == [[[1, 2j]], [[3, 4]], None]
    assert batch["$DEVDBID"] == t["$DEVDBID"].tolist()
    assert batch["$SETTIME"] == t["$SETTIME"].astype("i8").tolist()
    stream, expected = t.__arrow_c_stream__(), t["OUTD.ID"].tolist()
    del t
    gc.collect()
    assert read_stream(stream)[1][0]["OUTD.ID"] == expected
    assert read_stream(kinds.values("OUTD.ID", query="OUTD.ID=9").__arrow_c_stream__())[1] == [{"OUTD.ID": []}]


def test_batches(lab):
    batches = lab.batches("IND.VG", "OUTD.ID", "$DEVNAME", rows=10_000)
    first = next(batches)
    _, rest = read_stream(batches.__arrow_c_stream__())
    names = [len(batch["$DEVNAME"]) for batch in rest]
    assert len(first) + sum(names) == len(lab.values("IND.VG", "OUTD.ID", "$DEVNAME")) and names[0] == 10_000
    with pytest.raises(dbapi.OperationalError, match="closed"):
        next(batches)
    unread = lab.batches("OUTD.ID").__arrow_c_stream__()
    del unread  # a stream that nobody takes is released
    stopped = lab.batches("OUTD.ID", progress=lambda rows, most: False).__arrow_c_stream__()
    with pytest.raises(OSError, match="cancelled"):
        read_stream(stopped)
