"""scripts/check-layers on small trees."""

import unittest

from support.hubtest import TREE, lay_tree, run

ORDER = """
layer apps/a | apps/b apps/b/native # a comment
layer lib
layer lib/inner lib/inner/posix
never apps -> lib/inner
search .
generated made_*.h
"""
SOUND = {
    "scripts/layers.txt": ORDER,
    "apps/a/A.cpp": '#include "A.h"\n#include <lib/L.h>\n#include <vector>\n#include "made_1.h"\n',
    "apps/a/A.h": '// #include "gone.h"\n',
    "apps/b/B.h": '#include "lib/L.h"\n',
    "apps/b/native/N.cpp": '#include "apps/b/B.h"\n',
    "lib/L.h": "",
    "lib/L.cpp": '#include "L.h"\n#include "inner/I.h"\n',
    "lib/inner/I.h": "",
    "lib/inner/I.cpp": '#include "I.h"\n#include "J.h"\n',
    "lib/inner/J.h": '#include "K.h"\n',
    "lib/inner/K.h": "",
    "lib/inner/posix/I.cpp": '#include "lib/inner/I.h"\n',
}


class LayersTest(unittest.TestCase):
    def check(self, files, *told):
        """What the script tells of the sound tree with these files in it, or instead of its own."""
        result = run(TREE / "scripts/check-layers", lay_tree({**SOUND, **files}))
        self.assertEqual((result.returncode, result.stderr.splitlines()[:-1]), (1 if told else 0, [*told]))

    def test_includes(self):
        """Catches: an include against the order or of nothing that is passed over, a sound one that is told."""
        self.check({})
        never = 'apps/a -> lib/inner ("lib/inner/I.h"): nothing in apps may include what lies in lib/inner'
        for file, line, told in (
            ("lib/X.h", '#include "apps/b/B.h"', 'lib -> apps/b ("apps/b/B.h"): it runs up the order'),
            ("lib/inner/X.cpp", "#  include <lib/L.h>", 'lib/inner -> lib ("lib/L.h"): it runs up the order'),
            ("apps/a/X.cpp", '#include "../b/B.h"', 'apps/a -> apps/b ("../b/B.h"): they stand side by side'),
            ("apps/a/X.h", '#include "lib/inner/I.h"', never),
            ("apps/a/X.h", '#include "lib/Gone.h"', 'the tree has no "lib/Gone.h"'),
        ):
            with self.subTest(line):
                self.check({file: f"#include <string>\n{line}\n"}, f"{file}:2: {told}")

    def test_stale_order(self):
        """Catches: a folder that the order or the tree alone has."""
        self.check(
            {"scripts/layers.txt": ORDER + "layer lib/gone\nnever apps -> other\n", "lib/new/N.h": ""},
            "scripts/layers.txt: there is no folder lib/gone",
            "scripts/layers.txt: no layer has a folder other",
            "lib/new: no layer has this folder",
        )

    def test_circle(self):
        """Catches: a circle through sources, or over one that lies in the folder for a system."""
        self.check(
            {"lib/inner/posix/K.cpp": '#include "lib/inner/I.h"\n'},
            "lib/inner/I: 3 components include each other in a circle",
            "    lib/inner/I -> lib/inner/J (lib/inner/I.cpp:2)",
            "    lib/inner/J -> lib/inner/K (lib/inner/J.h:1)",
            "    lib/inner/K -> lib/inner/I (lib/inner/posix/K.cpp:1)",
        )
