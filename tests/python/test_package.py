"""The package as a whole: its documentation, its types, what it costs and what it leaves behind."""

import doctest
import gc
import importlib
import inspect
import os
import pathlib
import pkgutil
import re
import subprocess
import sys

import numpy as np
import pytest

import dbapi
from conftest import ROOT

MODULES = [dbapi, *(importlib.import_module(f"dbapi.{m.name}") for m in pkgutil.iter_modules(dbapi.__path__))]


@pytest.fixture
def shop_window(shipped, tmp_path, monkeypatch):
    """The folder and the connection that examples speak of."""
    (tmp_path / "lab.db").symlink_to(shipped)
    (tmp_path / "examples").symlink_to(ROOT / "examples")
    monkeypatch.chdir(tmp_path)
    np.set_printoptions(legacy=False)
    with dbapi.connect("lab.db") as lab:
        yield {"dbapi": dbapi, "np": np, "lab": lab}


@pytest.mark.parametrize("module", MODULES, ids=lambda module: module.__name__)
def test_examples(module, shop_window):
    result = doctest.testmod(
        module, extraglobs=shop_window, optionflags=doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE
    )
    assert result.failed == 0


def test_the_page(shop_window):
    """The examples of docs/python.md that show their results."""
    result = doctest.testfile(
        str(ROOT / "docs" / "python.md"), module_relative=False, globs=shop_window,
        optionflags=doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE,
    )
    assert result.failed == 0 and result.attempted > 10


def test_the_notebook(tmp_path, monkeypatch):
    """It runs, and the page and its pictures are what it shows."""
    pytest.importorskip("nbclient")
    monkeypatch.setenv("MPLBACKEND", "Agg")  # what the page sets is taken back
    monkeypatch.syspath_prepend(str(ROOT / "examples"))
    notebook_page = importlib.import_module("notebook_page")
    made = notebook_page.page(notebook_page.run(), tmp_path)
    assert made == (ROOT / "docs" / "first-steps.md").read_text(encoding="utf8")
    assert [picture.name for picture in sorted(tmp_path.glob("*.png"))] == ["first-steps-1.png", "first-steps-2.png"]
    assert all(picture.stat().st_size > 10_000 for picture in tmp_path.glob("*.png"))


def test_everything_public_is_documented():
    for name in dbapi.__all__:
        thing = getattr(dbapi, name)
        assert inspect.getdoc(thing), name
        if inspect.isclass(thing) and thing.__module__.startswith("dbapi."):
            for member, value in vars(thing).items():
                if callable(value) and not member.startswith("_"):
                    assert inspect.getdoc(value), f"{name}.{member}"
    for word in ("connect", "batches", "import_files", "QueryError"):
        assert word in dbapi.__doc__


def _run(*arguments, **environment):
    done = subprocess.run(
        [sys.executable, "-m", *arguments], cwd=ROOT, capture_output=True, text=True,
        env={**os.environ, **environment},
    )
    assert done.returncode == 0, done.stdout + done.stderr


def test_types(tmp_path):
    pytest.importorskip("mypy")
    use = tmp_path / "use.py"
    use.write_text(
        "import dbapi\n"
        "import numpy as np\n"
        "with dbapi.connect('lab') as lab:\n"
        "    table: dbapi.Table = lab.values('W', order='stored', limit=3)\n"
        "    rows: int = sum(len(batch) for batch in lab.batches('W', rows=10))\n"
        "    x: np.ndarray[tuple[int], np.dtype[np.float64]] | object = lab.curves('a', 'b')[0].x\n"
        "    ids: list[int] = lab.ids('device').tolist()\n"
        "    lab.values('W', order='up')  # type: ignore[arg-type]\n"
    )
    cache = f"--cache-dir={tmp_path / 'cache'}"
    _run("mypy", "--strict", cache, "python/dbapi", str(use), MYPYPATH=str(ROOT / "python"))
    _run("mypy.stubtest", "dbapi._core", "--mypy-config-file", str(ROOT / "pyproject.toml"))


def _resident():
    return int(re.search(r"VmRSS:\s+(\d+)", pathlib.Path("/proc/self/status").read_text())[1]) * 1024


def test_ten_thousand_calls_leave_nothing_behind(shipped):
    """The resident memory after 10,000 rounds of calls is that after the first thousand."""

    def round_of_calls(lab, place):
        table = lab.values("W", "$DEVNAME", query="L<=0.15u")
        assert table["W"].size and table["$DEVNAME"].size and table.codes("$DEVNAME").size
        capsule = table.__arrow_c_stream__()
        del capsule
        with pytest.raises(dbapi.QueryError):
            lab.values(f"W{place % 10}x")
        if place % 10 == 0:
            with lab.batches("OUTD.ID", rows=100, query="W=7u;L<=0.15u") as batches:
                next(batches)
            lab.curves("W", "L", query="L<=0.15u")
            lab.record("device", 17)

    def fail(rows, most):
        raise RuntimeError

    with dbapi.connect(shipped) as lab:
        for place in range(1000):
            round_of_calls(lab, place)
        gc.collect()
        before = _resident()
        for place in range(10_000):
            round_of_calls(lab, place)
            if place % 100 == 0:
                with pytest.raises(RuntimeError):
                    lab.values("OUTD.ID", progress=fail)
        gc.collect()
        assert _resident() - before < 4 << 20
