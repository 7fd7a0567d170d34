"""Builds the wheel: CMake builds and lays out the package, setuptools packs it. The environment's CMAKE_ARGS are more
arguments of the configuration."""

import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
# What is made on the way stays out of the source tree.
SCRATCH = tempfile.TemporaryDirectory(prefix="plaz-wheel-")


class BuildWithCMake(build_ext):
    def run(self):
        tree = pathlib.Path(SCRATCH.name)
        target = pathlib.Path(self.build_lib).resolve()
        options = ["-DCMAKE_BUILD_TYPE=Release", "-DPLAZ_TESTS=OFF", f"-DPython3_EXECUTABLE={sys.executable}"]
        options += shlex.split(os.environ.get("CMAKE_ARGS", ""))
        self.call("-S", ROOT, "-B", tree, "-G", "Ninja", *options)
        self.call("--build", tree, "--target", "_plaz")
        self.call("--install", tree, "--component", "wheel", "--prefix", target, "--strip")
        # A wheel holds no links. Each library is there once, by the name under which it is loaded.
        for link in (target / "plaz/lib").iterdir():
            if link.is_symlink():
                link.resolve().rename(link)

    @staticmethod
    def call(*arguments):
        subprocess.run(["cmake", *arguments], check=True)

    def get_outputs(self):
        return []


def read_version():
    return re.search(r"project\(plaz VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)


setup(
    version=read_version(),
    packages=[],
    ext_modules=[Extension("plaz._plaz", [])],
    cmdclass={"build_ext": BuildWithCMake},
    options={"egg_info": {"egg_base": SCRATCH.name}, "build": {"build_base": SCRATCH.name}},
)
