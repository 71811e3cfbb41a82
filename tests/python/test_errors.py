"""What bad input gets."""

import os
import shutil
import signal
import sys
import threading

import pytest

import dbapi


@pytest.mark.parametrize(
    "keywords, query, piece, suggestion, says",
    [
        (["Ws"], "", "Ws", "VS", "Did you mean VS, W or vs?"),
        (["W", "Ls"], "", "Ls", "L", "Did you mean"),
        (["W"], "Wx=5u;L=3", "Wx", "W=5u;L=3", "  Wx=5u;L=3\n  ^^"),
        (["W"], "L<=0.15u;W=[5u", "[5u", None, "  L<=0.15u;W=[5u\n             ^^^"),
        (["W"], "$DEVNAME=größe;Wx=1", "Wx", "$DEVNAME=größe;W=1", "^^"),
        (["W"], "{L=3", None, "{L=3}", "Each open brace"),
        ([""], "", "", None, ""),
    ],
)
def test_queries_and_keywords(lab, keywords, query, piece, suggestion, says):
    for read in (lab.values, lab.batches, lambda *k, query: lab.curves(*k, *k, query=query)):
        with pytest.raises(dbapi.QueryError) as caught:
            read(*keywords, query=query)
        error = caught.value
        assert error.text in (query, *keywords)
        assert piece is None or error.text[error.position : error.position + error.length] == piece
        assert suggestion is None or error.suggestions[0] == suggestion
        assert says in str(error) and not str(error).startswith("Error")


@pytest.mark.parametrize(
    "call, error",
    [
        (lambda lab: lab.values(), dbapi.ArgumentError),
        (lambda lab: lab.values("W", limit=-1), dbapi.ArgumentError),
        (lambda lab: lab.values("W", limit=2**70), dbapi.ArgumentError),
        (lambda lab: lab.values("W", limit="1"), TypeError),
        (lambda lab: lab.values("W", limit=1.5), TypeError),
        (lambda lab: lab.values("W", order="up"), dbapi.ArgumentError),
        (lambda lab: lab.values("W", order=3), TypeError),
        (lambda lab: lab.values("W", progress=3), TypeError),
        (lambda lab: lab.values("W", distinct=True, ids=True), dbapi.ArgumentError),
        (lambda lab: lab.values(5), TypeError),
        (lambda lab: lab.values("W", query=None), TypeError),
        (lambda lab: lab.values("\udc80"), dbapi.ArgumentError),
        (lambda lab: lab.values("OUTD.ID", max_bytes=1000), dbapi.OutOfMemory),
        (lambda lab: lab.batches("W", rows=0), dbapi.ArgumentError),
        (lambda lab: lab.batches("W", rows="many"), dbapi.ArgumentError),
        (lambda lab: next(lab.batches("OUTD.ID", order="sorted", max_bytes=1000)), dbapi.OutOfMemory),
        (lambda lab: lab.curves("W"), dbapi.Error),
        (lambda lab: lab.ids("devices"), dbapi.Error),
        (lambda lab: lab.keys("devices"), dbapi.Error),
        (lambda lab: lab.record("device", 10**6), dbapi.ArgumentError),
        (lambda lab: lab.record("devices", 1), dbapi.Error),
        (lambda lab: lab.setup(0), dbapi.ArgumentError),
        (lambda lab: lab.explain("W", query="W=["), dbapi.QueryError),
    ],
)
def test_arguments(lab, call, error):
    with pytest.raises(error) as caught:
        call(lab)
    assert str(caught.value) and "incompatible" not in str(caught.value)
    assert lab.values("W"), "the connection goes on"


def test_the_family():
    for name in ("QueryError", "ArgumentError", "OperationalError", "DataError", "OutOfMemory", "Cancelled"):
        assert issubclass(getattr(dbapi, name), dbapi.Error)
    assert issubclass(dbapi.ArgumentError, ValueError) and issubclass(dbapi.OutOfMemory, MemoryError)


def test_what_is_closed_or_gone(shipped, tmp_path):
    path = tmp_path / "lab.db"
    shutil.copy(shipped, path)
    lab = dbapi.connect(path)
    batches = lab.batches("OUTD.ID", rows=100)
    first = next(batches)
    lab.close()
    with pytest.raises(dbapi.OperationalError, match="closed"):
        next(batches)
    with pytest.raises(dbapi.OperationalError, match="closed"):
        lab.values("W")
    assert len(first["OUTD.ID"]) == 100 and "closed" in repr(lab)

    with dbapi.connect(path) as lab:
        replaced = lab.batches("OUTD.ID", rows=20_000)
        assert next(replaced)
        shutil.copy(path, tmp_path / "other.db")
        os.replace(tmp_path / "other.db", path)
        with pytest.raises(dbapi.OperationalError, match="replaced"):
            list(replaced)
        assert lab.values("W"), "the next read sees the new file"
        os.remove(path)
        with pytest.raises(dbapi.OperationalError):
            lab.values("W")

    path.write_bytes(b"no database at all" * 1000)
    with pytest.raises(dbapi.OperationalError):
        dbapi.connect(path)


def test_damaged_data(shipped, tmp_path):
    import sqlite3

    path = tmp_path / "damaged.db"
    shutil.copy(shipped, path)
    with sqlite3.connect(path) as raw:
        table = "setup_data"
        column = [row[1] for row in raw.execute(f"PRAGMA table_info({table})") if row[2] == "BLOB"][0]
        raw.execute(f"UPDATE {table} SET {column} = x'00'")
    with dbapi.connect(path) as lab:
        for read in (lab.values, lambda *k: list(lab.batches(*k))):
            with pytest.raises(dbapi.DataError):
                read("OUTD.ID")


def test_callbacks(lab):
    with pytest.raises(dbapi.Cancelled):
        lab.values("OUTD.ID", progress=lambda rows, most: False)

    def fail(rows, most):
        raise RuntimeError("out of the callback")

    def use_the_library(rows, most):
        lab.values("W")

    def interrupt(rows, most):
        signal.raise_signal(signal.SIGINT)

    for progress, error in (
        (fail, RuntimeError),
        (use_the_library, dbapi.OperationalError),
        (interrupt, KeyboardInterrupt),
    ):
        for read in (lab.values, lambda *k, progress: list(lab.batches(*k, progress=progress))):
            if progress is use_the_library and read is not lab.values:
                continue
            with pytest.raises(error):
                read("OUTD.ID", progress=progress)
    assert len(lab.values("OUTD.ID")) == 65564


def test_waiting_for_another_thread_ends_with_ctrl_c(lab):
    """One thread holds the library in a callback; the main thread waits for it and is interrupted."""
    has_library, may_go_on = threading.Event(), threading.Event()

    def hold(rows, most):
        has_library.set()
        may_go_on.wait()

    holder = threading.Thread(target=lambda: lab.values("W", progress=hold))
    holder.start()
    has_library.wait()
    main, waits = threading.get_ident(), threading.Event()

    def interrupt():
        waits.wait()
        signal.pthread_kill(main, signal.SIGINT)

    interrupter = threading.Thread(target=interrupt)
    interrupter.start()
    # No other thread runs before this one gives the interpreter away, in the call.
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1000)
    try:
        with pytest.raises(KeyboardInterrupt):
            waits.set()
            lab.values("W")
    finally:
        sys.setswitchinterval(interval)
        interrupter.join()
        may_go_on.set()
        holder.join()
    assert lab.values("W")
