"""What C++ sources include of the tree."""

import pathlib
import re
from typing import NamedTuple, Optional

PATTERN = re.compile(r'\s*#\s*include\s*(?:"(?P<quoted>[^"]+)"|<(?P<angled>[^>]+)>)')


class Include(NamedTuple):
    line: int
    name: str
    is_quoted: bool
    target: Optional[pathlib.Path]  # None: nothing in the tree


def find(name, folders):
    for folder in folders:
        file = pathlib.Path(folder, name)
        if file.is_file():
            return file.resolve()
    return None


def read_includes(file, search):
    """What a file includes, looked for in its own folder where the name is quoted, then in the folders of search."""
    lines = pathlib.Path(file).read_text(encoding="utf-8").splitlines()
    for number, line in enumerate(lines, 1):
        match = PATTERN.match(line)
        if match:
            quoted, angled = match.group("quoted", "angled")
            folders = [pathlib.Path(file).parent, *search] if quoted else search
            yield Include(number, quoted or angled, bool(quoted), find(quoted or angled, folders))
