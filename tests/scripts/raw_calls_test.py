"""scripts/check-raw-calls on single lines."""

import unittest

from support.hubtest import TREE, lay_tree, run


class RawCallsTest(unittest.TestCase):
    def check(self, lines):
        tree = lay_tree({"X.cpp": "\n".join(lines)})
        result = run(TREE / "scripts/check-raw-calls", "X.cpp", cwd=tree)
        self.assertEqual(result.returncode, 1 if result.stderr else 0)
        return result.stderr.splitlines()

    def test_finds_each_raw_call(self):
        """Catches: a call that is passed over, or sent to the wrong class."""
        lines = {
            "std::ifstream in(file);": "HIOStream",
            "fs::ofstream out(file);": "HIOStream",
            "const auto file = std::tmpfile();": "HIOStream",
            "if (std::remove(name.c_str()) != 0) return;": "HUTFile",
            "fs::create_directories(dir);": "HUTFile",
            "return boost::filesystem::exists(dir);": "HUTFile",
            "namespace fs = std::filesystem;": "HUTFile",
            "fs::absolute(path)": "HUTFile",
            'getenv("HOME");': "HUTEnv",
            '::system("ls");': "HUTFork",
            "if (fork() == 0) execvp(name, args);": "HUTFork",
        }
        found = self.check(lines)
        for number, instead in enumerate(lines.values(), 1):
            self.assertTrue(any(f"X.cpp:{number}: " in line and instead in line for line in found), (number, found))

    def test_lets_pass_what_is_in_order(self):
        """Catches: a line that only looks like a raw call, or has its reason, that is told; a reason left over."""
        lines = (
            "std::ofstream file = HIOStream::openForWriting(name, std::ios::app);",
            "void write(std::ofstream& file);",
            "fs::path path = fs::absolute(name, dir);",
            "HUTFile::rename(from, to);",
            "list.remove(item); fork.launch(); process->system();",
            'say("getenv(x)"); // fork() is not for us',
            "fork(); // raw: no other way",
        )
        self.assertEqual(self.check(lines), [])
        found = self.check(("fork(); // raw: ", "x(); // raw: left over"))
        self.assertEqual(found, ["X.cpp:1: // raw: gives no reason", "X.cpp:2: // raw: stands where nothing needs it"])
