"""Results in batches, and several threads."""

import gc
import threading
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import dbapi


def test_batches_are_the_values(lab):
    whole = lab.values("IND.VG", "OUTD.ID", order="stored")
    batches = list(lab.batches("IND.VG", "OUTD.ID", rows=7000))
    assert [len(batch) for batch in batches] == [7000] * 9 + [len(whole) - 63_000]
    np.testing.assert_array_equal(np.concatenate([b["OUTD.ID"] for b in batches]), whole["OUTD.ID"])
    assert list(lab.batches("OUTD.ID", query="W=99")) == []


def test_a_batch_outlives_its_read(shipped):
    with dbapi.connect(shipped) as lab, lab.batches("OUTD.ID", rows=1000) as batches:
        current = next(batches)["OUTD.ID"]
    expected = current.tolist()
    with pytest.raises(dbapi.OperationalError):
        next(batches)
    del lab, batches
    gc.collect()
    assert current.tolist() == expected


def test_readers_stand_beside_each_other(lab):
    """While one thread is held within a batch, others read batches of their own to the end."""
    within, go_on = threading.Event(), threading.Event()
    expected = len(lab.values("OUTD.ID"))

    def hold(rows, most):
        within.set()
        go_on.wait()

    held = lab.batches("OUTD.ID", rows=50_000, progress=hold)
    others = [lab.batches("OUTD.ID", rows=500) for _ in range(3)]
    with ThreadPoolExecutor(4) as pool:
        first = pool.submit(next, held)
        within.wait()
        try:
            counts = list(pool.map(lambda batches: sum(map(len, batches)), others))
            assert len(lab.values("OUTD.ID")) == expected, "the library itself is free meanwhile"
        finally:
            go_on.set()
        assert len(first.result()) == 50_000
    assert counts == [expected] * 3


def test_threads_share_a_read(lab):
    batches = lab.batches("OUTD.ID", rows=500)
    with ThreadPoolExecutor(4) as pool:
        parts = pool.map(lambda _: [batch["OUTD.ID"] for batch in batches], range(4))
        found = np.concatenate([array for part in parts for array in part])
    np.testing.assert_array_equal(np.sort(found), lab.values("OUTD.ID")["OUTD.ID"])


def test_threads_call_at_once(shipped, tmp_path):
    """Different databases, queries and failures at once: every thread gets what it asked for."""
    other = dbapi.connect(sqlite=tmp_path / "other.db", create=True)
    other.write(None, {"$DEVNAME": "only", "Key(W,device,DOUBLE,PHYSICAL)": 3e-6})

    def work(place):
        for _ in range(30):
            if place % 3 == 0:
                assert other.values("W")["W"].tolist() == [3e-6]
            elif place % 3 == 1:
                with dbapi.connect(shipped) as lab:
                    assert len(lab.values("W")) == 118 and len(lab.keys("device")) == 4
            else:
                with dbapi.connect(shipped) as lab, pytest.raises(dbapi.QueryError, match=f"W{place}x"):
                    lab.values(f"W{place}x")

    with ThreadPoolExecutor(6) as pool:
        for done in [pool.submit(work, place) for place in range(6)]:
            done.result()


def test_closing_ends_a_read_in_another_thread(lab):
    within, go_on = threading.Event(), threading.Event()

    def hold(rows, most):
        within.set()
        go_on.wait()

    batches = lab.batches("OUTD.ID", progress=hold)
    with ThreadPoolExecutor(2) as pool:
        reading = pool.submit(next, batches)
        within.wait()
        closing = pool.submit(lab.close)
        while not batches.closed:
            pass
        go_on.set()
        with pytest.raises(dbapi.OperationalError, match="closed"):
            reading.result()
        closing.result()
