"""Builds the module of the Python package with CMake; pyproject.toml has the rest."""

import pathlib
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext


class CMakeBuild(build_ext):
    """Configures the tree for this interpreter, and builds the one target that the wheel needs."""

    def build_extension(self, ext):
        root = pathlib.Path(__file__).resolve().parent
        target = pathlib.Path(self.get_ext_fullpath(ext.name)).resolve()
        work = pathlib.Path(self.build_temp).resolve()
        work.mkdir(parents=True, exist_ok=True)
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "DBAPI_BUILD_PYTHON": "ON",
            "DBAPI_BUILD_TOOLS": "OFF",
            "DBAPI_BUILD_MANAGER": "OFF",
            "DBAPI_BUILD_TESTS": "OFF",
            "DBAPI_BUILD_DIALOGS": "OFF",
            "DBAPI_PYTHON_OUTPUT": str(target.parent),
            "Python3_EXECUTABLE": sys.executable,
        }
        defines = [f"-D{name}={value}" for name, value in options.items()]
        subprocess.run(["cmake", "-S", str(root), "-B", str(work), "-G", "Ninja", *defines], check=True)
        subprocess.run(["cmake", "--build", str(work), "--target", "dbapi_python"], check=True)


setup(ext_modules=[Extension("dbapi._core", [])], cmdclass={"build_ext": CMakeBuild})
