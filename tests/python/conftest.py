"""A database with the shipped measurements, made once, and a connection to it for each test."""

import os
import pathlib

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
MEASUREMENTS = ROOT / "examples" / "measurements"


@pytest.fixture(scope="session", autouse=True)
def connections_folder(tmp_path_factory):
    """No test sees the connections of whoever runs it."""
    folder = tmp_path_factory.mktemp("connections")
    os.environ["VANTO_DB_CONNECTIONS_DIRECTORY"] = str(folder)
    return folder


@pytest.fixture(scope="session")
def shipped(tmp_path_factory, connections_folder):
    """The path of a database with the shipped measurements, which no test changes."""
    import dbapi

    path = tmp_path_factory.mktemp("shipped") / "lab.db"
    with dbapi.connect(sqlite=path, create=True) as lab:
        result = lab.import_files([MEASUREMENTS])
    assert (result.files, result.setups, result.points, result.devices) == (243, 243, 84154, 137)
    return path


@pytest.fixture
def lab(shipped):
    import dbapi

    with dbapi.connect(shipped) as connection:
        yield connection


@pytest.fixture
def empty(tmp_path):
    """A connection to an empty database of the test's own."""
    import dbapi

    with dbapi.connect(sqlite=tmp_path / "new.db", create=True) as connection:
        yield connection
