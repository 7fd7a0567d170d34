"""Catches: a function of the Java binding that is missing, misnamed, or exported besides the native methods.

    symbols_test.py LIBPLAZI HEADER [OBJDUMP]

HEADER declares the native methods. With OBJDUMP the library is one for Windows.
"""

import pathlib
import re
import subprocess
import sys

library, header, *objdump = sys.argv[1:]
lister, entry = ([*objdump, "--private-headers"], r"\n\t\[ *\d+\] (?!\+base)(\S+)")
if not objdump:
    lister, entry = (["nm", "--dynamic", "--defined-only"], r" [A-Za-z] (\S+)")
listed = subprocess.run([*lister, library], check=True, stdout=subprocess.PIPE, encoding="utf-8").stdout
exported, native = set(re.findall(entry, listed)), set(re.findall(r"Java_\w+", pathlib.Path(header).read_text()))
for name in sorted(native ^ exported):
    print(name, "is missing" if name in native else "is no native method")
sys.exit(exported != native or not native)
