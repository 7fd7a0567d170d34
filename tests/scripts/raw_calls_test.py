"""scripts/check-raw-calls on single lines: the argument is the script."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv.pop(1)


class RawCallsTest(unittest.TestCase):
    def check(self, lines):
        with tempfile.TemporaryDirectory() as temp:
            file = pathlib.Path(temp, "X.cpp")
            file.write_text("\n".join(lines), encoding="utf-8")
            result = subprocess.run([SCRIPT, str(file)], capture_output=True, encoding="utf-8")
        self.assertEqual(result.returncode, 1 if result.stderr else 0)
        return result.stderr.replace(str(file), "X").splitlines()

    def test_finds_each_raw_call(self):
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
            self.assertTrue(any(f"X:{number}: " in line and instead in line for line in found), (number, found))

    def test_lets_pass_what_only_looks_like_one(self):
        lines = (
            "std::ofstream file = HIOStream::openForWriting(name, std::ios::app);",
            "void write(std::ofstream& file);",
            "fs::path path = fs::absolute(name, dir);",
            "HUTFile::rename(from, to);",
            "list.remove(item); fork.launch(); process->system();",
            'say("getenv(x)"); // fork() is not for us',
        )
        self.assertEqual(self.check(lines), [])

    def test_wants_a_reason_where_one_is_needed_and_nowhere_else(self):
        found = self.check(("fork(); // raw: no other way", "fork(); // raw: ", "x(); // raw: left over"))
        self.assertEqual(found, ["X:2: // raw: gives no reason", "X:3: // raw: stands where nothing needs it"])


if __name__ == "__main__":
    unittest.main()
