"""Builds the module by the project's own CMake files."""

import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext


project = pathlib.Path(__file__).resolve().parents[2]


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        build = pathlib.Path(self.build_temp).resolve()
        target = pathlib.Path(self.get_ext_fullpath(extension.name)).resolve().parent
        build.mkdir(parents=True, exist_ok=True)
        subprocess.run(
            ["cmake", "-S", str(project), "-B", str(build), "-DCMAKE_BUILD_TYPE=Release",
             "-DORVAN_BUILD_PYTHON=ON", "-DORVAN_BUILD_TESTS=OFF", "-DORVAN_BUILD_BENCH=OFF",
             "-DORVAN_BUILD_PROGRAM=ON", "-DORVAN_BUILD_PLUGINS=OFF", "-DORVAN_BUILD_SHARED=OFF",
             f"-DPython3_EXECUTABLE={sys.executable}"],
            check=True)
        subprocess.run(["cmake", "--build", str(build), "--target", "orvan_python", "-j", str(os.cpu_count() or 2)],
                       check=True)
        target.mkdir(parents=True, exist_ok=True)
        for module in (build / "python" / "orvanverb").glob("_orvanverb*"):
            self.copy_file(str(module), str(target))


version = re.search(r"^project\(\w+ VERSION ([\d.]+)", (project / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
setup(version=version, ext_modules=[Extension("orvanverb._orvanverb", [])], cmdclass={"build_ext": CMakeBuild})
