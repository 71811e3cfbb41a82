"""Stored connections, and files by their paths."""

import os
import pathlib

import pytest

import dbapi


@pytest.fixture
def stored(tmp_path):
    dbapi.connections.add("bench", sqlite=tmp_path / "bench.db")
    yield "bench"
    if "bench" in [c.name for c in dbapi.connections.list()]:
        dbapi.connections.remove("bench")


def test_stored(stored, tmp_path):
    (found,) = dbapi.connections.list()
    assert (found.name, found.driver, found.database) == ("bench", "QSQLITE", str(tmp_path / "bench.db"))
    diagnosis = dbapi.connections.test("bench")
    assert diagnosis.ok and diagnosis[-1].layer == "writing" and "writing" in repr(diagnosis)
    with dbapi.connect("bench") as lab:
        lab.write({"IND.x": [1.0]}, {"$DEVNAME": "a"})
        assert len(lab.values("IND.x")) == 1
    os.remove(tmp_path / "bench.db")
    assert not dbapi.connections.test("bench").ok
    with pytest.raises(dbapi.OperationalError, match="does not exist"):
        dbapi.connect("bench")
    dbapi.connections.remove("bench")
    assert dbapi.connections.list() == []


@pytest.mark.parametrize(
    "call, error, says",
    [
        (lambda: dbapi.connect("benhc"), dbapi.OperationalError, "Did you mean bench?"),
        (lambda: dbapi.connect(), dbapi.ArgumentError, "either"),
        (lambda: dbapi.connect("bench", sqlite="x.db"), dbapi.ArgumentError, "either"),
        (lambda: dbapi.connect("benhc", create=True), dbapi.ArgumentError, "Only a file"),
        (lambda: dbapi.connect("missing.db"), dbapi.OperationalError, "no file"),
        (lambda: dbapi.connect(sqlite="no/such/folder/x.db", create=True), dbapi.OperationalError, ""),
        (lambda: dbapi.connect("/"), dbapi.OperationalError, ""),
        (lambda: dbapi.connect(3), TypeError, ""),
        (lambda: dbapi.connections.add("bench", sqlite="other.db"), dbapi.OperationalError, "bench"),
        (lambda: dbapi.connections.add("x"), dbapi.ArgumentError, "either"),
        (lambda: dbapi.connections.add("x", sqlite="x.db", host="h"), dbapi.ArgumentError, "mysql"),
        (lambda: dbapi.connections.remove("benhc"), dbapi.OperationalError, "Did you mean bench?"),
        (lambda: dbapi.connections.test("benhc"), dbapi.OperationalError, "Did you mean bench?"),
    ],
)
def test_what_does_not_open(stored, tmp_path, monkeypatch, call, error, says):
    monkeypatch.chdir(tmp_path)
    with pytest.raises(error) as caught:
        call()
    assert says in str(caught.value)


def test_paths(shipped, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "lab.db").symlink_to(shipped)
    (tmp_path / "measurements").symlink_to(shipped)
    for name in ("lab.db", "./lab.db", str(shipped), pathlib.Path("measurements")):
        with dbapi.connect(name) as lab:
            os.chdir("/")  # a connection stays with its file
            assert len(lab.values("W")) == 118 and str(name) in repr(lab)
        os.chdir(tmp_path)
    with dbapi.connect(sqlite="measurements") as lab:
        assert len(lab.values("W")) == 118
    with dbapi.connect("made.sqlite", create=True) as lab:
        assert len(lab.ids("device")) == 0 and lab.keys("device") == ()
    (tmp_path / "other.db").write_bytes(b"text")
    with pytest.raises(dbapi.OperationalError):
        dbapi.connect("other.db")
