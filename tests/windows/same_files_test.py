"""Catches: files that the hub writes otherwise on Windows, or a catalog that it reads otherwise.

    same_files_test.py MAKE_SAMPLE_HUB PRODUCT_DATA NATIVE_PLAZ WINDOWS_PLAZ...

Does the same on both systems, in the same place, and compares what lies on the disk; the catalogs have CRLF on Windows.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

MAKE_SAMPLE_HUB, PRODUCT_DATA, NATIVE, *WINDOWS = sys.argv[1:]
RECORDS = ("plaz_local_db.json", "plaz_stores.json", "preferences.json")


def run(scratch, program, is_windows):
    """What the program prints and leaves: the names below the application data, and the bytes of what it records."""
    sample = scratch / "sample"
    if not is_windows:
        subprocess.run([sys.executable, MAKE_SAMPLE_HUB, sample, "--product-data", PRODUCT_DATA], check=True,
                       stdout=subprocess.DEVNULL)
    else:
        for file in (sample / "data").rglob("*.json"):
            file.write_bytes(re.sub(rb"\r?\n", b"\r\n", file.read_bytes()))
    drive, separator = ("Z:", ";") if is_windows else ("", ":")
    home = scratch / "home"
    env = dict(os.environ, GDA_DATA_DIR=f"{drive}{sample}/data{separator}{drive}{PRODUCT_DATA}",
               GDA_APPDATA_DIR=f"{drive}{home}")
    outputs = []
    for words in (["items", "--all-revisions"], ["refresh"], ["install", "aurora", "prüfadapter"],
                  ["relocate", "tclscripts", f"{drive}{home}/moved ü"], ["uninstall", "prüfadapter"],
                  ["items", "--json"], ["check"]):
        result = subprocess.run([*program, *words], env=env, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        texts = (text.decode().replace("Z:/", "/") for text in (result.stdout, result.stderr))
        outputs.append((words[0], result.returncode, *texts))
    names = sorted(str(path.relative_to(home)) for path in home.rglob("*") if "objects" not in path.parts)
    records = {str(path.relative_to(home)): path.read_bytes().replace(b"Z:/", b"/")
               for path in home.rglob("*.json") if path.name in RECORDS}
    home.rename(scratch / ("windows" if is_windows else "native"))
    return outputs, names, records


def main():
    with tempfile.TemporaryDirectory(prefix="plaz-same-") as directory:
        scratch = pathlib.Path(directory)
        native = run(scratch, [NATIVE], False)
        windows = run(scratch, WINDOWS, True)
        assert len(native[2]) >= 3, native[2].keys()
        failed = False
        for what, ours, theirs in zip(("printed", "names", "records"), native, windows):
            if ours != theirs:
                failed = True
                pairs = zip(ours, theirs) if what == "printed" else [(ours, theirs)]
                print(what, *(f"\n- {a}\n+ {b}" for a, b in pairs if a != b))
        sys.exit(1 if failed else 0)


main()
