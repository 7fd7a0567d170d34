"""scripts/check-layers on small trees: the argument is the script."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv.pop(1)

ORDER = """
layer apps/a | apps/b apps/b/native # a comment
layer lib
layer lib/inner lib/inner/posix
never apps -> lib/inner
search .
generated made_*.h
"""


class LayersTest(unittest.TestCase):
    def setUp(self):
        temp = tempfile.TemporaryDirectory()
        self.addCleanup(temp.cleanup)
        self.tree = pathlib.Path(temp.name)
        self.write("scripts/layers.txt", ORDER)
        for folder in ("apps/a", "apps/b/native", "lib/inner/posix"):
            (self.tree / folder).mkdir(parents=True)
        self.write("apps/b/B.h", '#include "lib/L.h"\n')
        self.write("lib/L.h", "")
        self.write("lib/inner/I.h", "")

    def write(self, name, text):
        file = self.tree / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def check(self):
        result = subprocess.run([SCRIPT, str(self.tree)], capture_output=True, encoding="utf-8")
        self.assertEqual(result.returncode, 1 if result.stderr else 0)
        return result.stderr

    def test_lets_pass_what_is_in_order(self):
        self.write("apps/a/A.cpp", '#include "A.h"\n#include <lib/L.h>\n#include <vector>\n#include "made_1.h"\n')
        self.write("apps/a/A.h", '// #include "gone.h"\n')
        self.write("apps/b/native/N.cpp", '#include "apps/b/B.h"\n')
        self.write("lib/L.cpp", '#include "L.h"\n#include "inner/I.h"\n')
        self.write("lib/inner/posix/I.cpp", '#include "lib/inner/I.h"\n')
        self.assertEqual(self.check(), "")

    # Each row: the file in which something is wrong at line 2, the line, and what is told of it.
    def test_names_each_wrong_arrow(self):
        for file, line, told in (
            ("lib/X.h", '#include "apps/b/B.h"', 'lib -> apps/b ("apps/b/B.h"): it runs up'),
            ("lib/inner/X.cpp", "#  include <lib/L.h>", 'lib/inner -> lib ("lib/L.h"): it runs up'),
            ("apps/a/X.cpp", '#include "../b/B.h"', 'apps/a -> apps/b ("../b/B.h"): they stand side by side'),
            ("apps/a/X.h", '#include "lib/inner/I.h"', "nothing in apps may include what lies in lib/inner"),
            ("apps/a/X.h", '#include "lib/Gone.h"', 'the tree has no "lib/Gone.h"'),
        ):
            with self.subTest(line):
                self.write(file, f"#include <string>\n{line}\n")
                output = self.check()
                self.assertIn(f"{file}:2: ", output)
                self.assertIn(told, output)
                self.assertIn("1 fault(s)", output)
                (self.tree / file).unlink()

    def test_names_what_the_order_and_the_tree_do_not_share(self):
        self.write("lib/new/N.h", "")
        self.write("scripts/layers.txt", ORDER + "layer lib/gone\nnever apps -> other\n")
        output = self.check()
        for told in ("lib/new: no layer", "there is no folder lib/gone", "no layer has a folder other"):
            self.assertIn(told, output)

    # Through sources as well as headers, and over a component whose source lies in the folder for a system.
    def test_shows_a_circle_whole(self):
        self.write("lib/inner/I.cpp", '#include "I.h"\n#include "J.h"\n')
        self.write("lib/inner/J.h", '#include "K.h"\n')
        self.write("lib/inner/K.h", "")
        self.assertEqual(self.check(), "")
        self.write("lib/inner/posix/K.cpp", '#include "lib/inner/I.h"\n')
        steps = (
            "lib/inner/I -> lib/inner/J (lib/inner/I.cpp:2)",
            "lib/inner/J -> lib/inner/K (lib/inner/J.h:1)",
            "lib/inner/K -> lib/inner/I (lib/inner/posix/K.cpp:1)",
        )
        self.assertIn("3 components include each other in a circle\n    " + "\n    ".join(steps), self.check())
        self.assertIn("1 fault(s)", self.check())


if __name__ == "__main__":
    unittest.main()
