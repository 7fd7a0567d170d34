"""Installs the package with pip in an environment of its own, uses it there and removes it again."""

import os
import pathlib
import shlex
import sys
import unittest

from support.hubtest import BUILD, SCRATCH, TREE, make_env, make_hub, read_cache, succeed

PACKAGE = TREE / "apps/python"
USE = """
import pathlib, plaz
done = plaz.install("aurora")
assert done[0].outcome == "installed", done
home = pathlib.Path(plaz.__file__).parent
loaded = {line.split()[-1] for line in open("/proc/self/maps") if "libplaz" in line}
assert loaded == {str(home / "lib/libplaz.so.1"), str(home / "lib/libplazhost.so.1")}, loaded
assert (home / "__init__.pyi").is_file() and (home / "py.typed").is_file()
"""


# What was compiled before, also for this build, is taken from the compiler's cache: the user's, where keys are the same
# for all builds that lie side by side in a checkout.
ALIKE = ("CMAKE_BUILD_TYPE", "CMAKE_CXX_FLAGS_RELWITHDEBINFO", "PLAZ_WERROR")
COMPILING = {
    "CCACHE_DIR": os.environ.get("CCACHE_DIR", str(pathlib.Path.home() / ".cache/ccache")),
    "CMAKE_ARGS": shlex.join(f"-D{name}={value}" for name, value in read_cache().items() if name in ALIKE),
    "TMPDIR": str(BUILD.parent),
}


def list_files(directory):
    return {str(file.relative_to(directory)) for file in directory.rglob("*") if "__pycache__" not in file.parts}


class WheelTest(unittest.TestCase):
    def test_installs_works_and_goes(self):
        """Catches: a library, data file or stub that is not packed, a link or a path of the build in what is, files in
        the source tree, something that is left after the removal."""
        scratch = pathlib.Path(SCRATCH.name)
        data, venv = make_hub(scratch / "sample") / "data", scratch / "venv"

        def run(*command, roots=()):
            succeed(*command, env=make_env(scratch / "home", *roots, **COMPILING), cwd=scratch, timeout=1100)

        run(sys.executable, "-m", "venv", "--system-site-packages", venv)
        before, sources = list_files(venv), list_files(PACKAGE)
        run(venv / "bin/pip", "install", "--no-build-isolation", "--no-index", PACKAGE)
        self.assertEqual(list_files(PACKAGE), sources)
        (package,) = venv.glob("lib/python3*/site-packages/plaz")
        self.assertEqual([file for file in package.rglob("*") if file.is_symlink()], [])
        libraries = package.rglob("*.so*")
        self.assertEqual([file for file in libraries if str(TREE).encode() in file.read_bytes()], [])
        run(venv / "bin/python", "-c", USE, roots=(data, package / "share/plaz/data"))
        run(venv / "bin/pip", "uninstall", "--yes", "plaz")
        self.assertEqual(list_files(venv), before)
