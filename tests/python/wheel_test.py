"""Installs the package with pip in an environment of its own, uses it there and removes it again.

    wheel_test.py SOURCE_TREE

Catches: a library, data file or stub that is not packed, a path of the build in what is, files in the source tree,
something that is left after the removal.
"""

import os
import pathlib
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(sys.argv[1]).resolve()
USE = """
import pathlib, plaz
done = plaz.install("aurora")
assert done[0].outcome == "installed", done
home = pathlib.Path(plaz.__file__).parent
loaded = {line.split()[-1] for line in open("/proc/self/maps") if "libplaz" in line}
assert loaded == {str(home / "lib/libplaz.so.1"), str(home / "lib/libplazhost.so.1")}, loaded
assert (home / "__init__.pyi").is_file() and (home / "py.typed").is_file()
"""


def run(*command, **env):
    subprocess.run(command, check=True, env={**clean, **env}, cwd=scratch, stdin=subprocess.DEVNULL)


def list_files(directory):
    return {str(path.relative_to(directory)) for path in directory.rglob("*") if "__pycache__" not in path.parts}


clean = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PYTHON", "PIP_"))}
with tempfile.TemporaryDirectory(prefix="plaz-wheel-test-") as scratch:
    scratch = pathlib.Path(scratch)
    venv = scratch / "venv"
    run(sys.executable, "-m", "venv", "--system-site-packages", venv)
    before = list_files(venv)
    sources = list_files(SOURCE / "apps/python")
    run(venv / "bin/pip", "install", "--no-build-isolation", "--no-index", SOURCE / "apps/python")
    assert list_files(SOURCE / "apps/python") == sources, list_files(SOURCE / "apps/python") - sources

    package = next(venv.glob("lib/python3*/site-packages/plaz"))
    assert not [path for path in package.rglob("*") if path.is_symlink()]
    build = [path for path in package.rglob("*.so*") if str(SOURCE).encode() in path.read_bytes()]
    assert not build, build
    run(sys.executable, SOURCE / "scripts/make-sample-hub", scratch / "sample", "--product-data", scratch / "none")
    run(venv / "bin/python", "-c", USE, HOME=str(scratch), GDA_APPDATA_DIR=str(scratch / "home"),
        GDA_DATA_DIR=f"{scratch / 'sample/data'}{os.pathsep}{package / 'share/plaz/data'}")

    run(venv / "bin/pip", "uninstall", "--yes", "plaz")
    assert list_files(venv) == before, list_files(venv) - before
