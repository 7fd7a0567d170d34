"""Holds the numbered messages in the sources beside their texts."""

import collections
import json
import re
import unittest

from support.hubtest import TREE

TEXTS = "platform/data/messages.json"
DEFINITION = re.compile(r'namespace (\w+)|MsgId<(\d+)>\s+(\w+)\s*\{\s*"(.*?)"')
Constant = collections.namedtuple("Constant", "name arity key header")


def read_constants(header):
    """The constants that a header defines, by the namespaces in which they stand."""
    namespace = ""
    for opened, *constant in DEFINITION.findall(header.read_text("utf-8")):
        namespace = opened or namespace
        if not opened:
            yield Constant(f"{namespace}::{constant[1]}", int(constant[0]), constant[2], header)


def find_faults(tree):
    """@return what is wrong with the messages of a source tree, a line each"""
    files = [file for part in ("apps", "platform", "shared") for file in (tree / part).rglob("*.*")]
    code = {file: re.sub("//.*", "", file.read_text("utf-8")) for file in files if file.suffix in (".h", ".cpp")}
    constants = [constant for file in code if file.suffix == ".h" for constant in read_constants(file)]
    texts = collections.defaultdict(list)
    for entry in json.loads((tree / TEXTS).read_text("utf-8"))["messages"]:
        texts[entry["id"]].append(entry["text"])
    named = collections.defaultdict(list)
    for constant in constants:
        id, placeholders = re.fullmatch("@?([^@]*)(.*)", constant.key).groups()
        named[id].append(constant.name)
        if not re.fullmatch(r"@\d+-\d+@(%s)*", constant.key):
            yield f"{constant.name}: {constant.key} is no key"
        for what, text in (("its key", placeholders), *(("its text", text) for text in texts[id])):
            if len(re.findall("%[scrw]", text.replace("%%", ""))) != constant.arity:
                yield f"{constant.name}: {what} has other placeholders than {constant.arity}"
        use = re.compile(rf"\b{constant.name}\b(?!\.key)")  # a key is for those who listen
        if not any(use.search(text) for file, text in code.items() if file != constant.header):
            yield f"{constant.name}: nothing sends it"
    for id in sorted({*texts, *named}):
        if len(texts[id]) != 1:
            yield f"{id}: has {len(texts[id])} texts"
        if len(named[id]) != 1:
            yield f"{id}: has {len(named[id])} names {' '.join(named[id])}".strip()


class MessageIdsTest(unittest.TestCase):
    def test_sources(self):
        """Catches: a message without a text or a sender, a text without a message, placeholders that differ."""
        self.assertEqual(list(find_faults(TREE)), [])
