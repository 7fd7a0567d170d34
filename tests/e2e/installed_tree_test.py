"""Installs the build, moves the result and uses it from there."""

import pathlib
import re
import shlex
import sys
import unittest

from support.hubtest import BUILD, SCRATCH, TREE, make_env, make_hub, read_cache, succeed

CACHE = read_cache()
CMAKE, COMPILER, SANITIZE = CACHE["CMAKE_COMMAND"], CACHE["CMAKE_CXX_COMPILER"], CACHE.get("PLAZ_SANITIZE")

# Classes that embedding tools need, and what comes with them.
EXPORTED = """HSCPlaz HSCPlazBaseModel HSCPlazCatalogChanges HSCPlazCategory HSCPlazCommand HSCPlazConfigMgr
    HSCPlazFileCheck
    HSCPlazFilesResult HSCPlazGit HSCPlazHostCommands HSCPlazInspection HSCPlazItemResult
    HSCPlazJsonReadWriteUtils HSCPlazLocalDBMgr HSCPlazLogger HSCPlazMgr HSCPlazModel HSCPlazPathMgr
    HSCPlazPathsInForce HSCPlazPlan HSCPlazPlannedStep HSCPlazProduct HSCPlazQItem HSCPlazQItemModel
    HSCPlazQStore HSCPlazQStoreModel HSCPlazRecordedChange HSCPlazRepoFactory HSCPlazRepoInfoMgr HSCPlazReport
    HSCPlazStoreLayout HSCPlazStoreResult HSCPlazSwigIntf HSCPlazTaskMgr HSCPlazTrust HSCPlazUpdateDecision
    HSCPlazUserPref HSCPlazUtils HSCPlazWorkLayout plaz_startup operator<< hdi::pyinfra::py_native_cache
    hdi::tcltasks::native_cache""".split()


class InstalledTreeTest(unittest.TestCase):
    """Also catches: a path of the build or of the first prefix that was compiled in."""

    @classmethod
    def setUpClass(cls):
        cls.dir = pathlib.Path(SCRATCH.name)
        succeed(CMAKE, "--install", BUILD, "--prefix", cls.dir / "first")
        cls.prefix = (cls.dir / "first").rename(cls.dir / "moved here")
        cls.data = [make_hub(cls.dir / "sample hub") / "data", cls.prefix / "share/plaz/data"]

    def succeed(self, *command, **more):
        return succeed(*command, cwd=self.dir, env=make_env(self.dir / "home", *self.data, **more), timeout=280)

    def test_embedding(self):
        """Catches: a package file that leads nowhere, a library or a data file that is not installed."""
        flags = [f"-DCMAKE_CXX_COMPILER={COMPILER}", f"-DCMAKE_CXX_FLAGS={SANITIZE and f'-fsanitize={SANITIZE}' or ''}"]
        example = ["-S", TREE / "examples" / "embed", "-B", "example", "-G", "Ninja"]
        self.succeed(CMAKE, *example, f"-DCMAKE_PREFIX_PATH={self.prefix}", *flags)
        self.succeed(CMAKE, "--build", "example")
        listing = self.succeed(self.dir / "example/list_hub", "install", "pin-report").splitlines()
        for line in ("boards: Sample boards", "  aurora 2.0  Aurora Entwicklungsplatine", "  計測 1.0  計測ツール"):
            self.assertIn(line, listing)
        self.assertIn("  string-kit 1.0  Boîte à chaînes  (installed)", listing)

    def test_headers(self):
        """Catches: a header that is not installed or does not stand alone by the flags that pkg-config names."""
        config = f"{self.prefix}/lib/pkgconfig"
        flags = self.succeed("pkg-config", "--cflags", "--libs", "plaz", PKG_CONFIG_PATH=config)
        headers = [file.relative_to(self.prefix / "include/plaz") for file in self.prefix.glob("include/plaz/**/*.h")]
        self.assertGreater(len(headers), 20)
        for number, header in enumerate(headers):
            (self.dir / f"header_{number}.cpp").write_text(f'#include "{header}"\n')
        self.succeed(COMPILER, "-std=c++17", "-fsyntax-only", *shlex.split(flags), *self.dir.glob("header_*.cpp"))

    if not SANITIZE:

        def test_exports(self):
            """Catches: a class that became visible, one that is needed and vanished, templates of other libraries."""
            symbols = self.succeed("nm", "-DC", "--defined-only", self.prefix / "lib/libplaz.so")
            name = r"^\S+ \S (?:(?:vtable|typeinfo(?: name)?) for )?(hdi::\w+::\w+|operator<<|\w+|.*)"
            self.assertEqual(set(re.findall(name, symbols, re.M)), set(EXPORTED))

    if CACHE["PLAZ_PYTHON"] == "ON":

        def test_module(self):
            """Catches: a module that is not installed or does not find the hub."""
            env = {"PYTHONPATH": f"{self.prefix}/lib/python3/dist-packages"}
            if SANITIZE:  # the interpreter is not built with it: its runtime has to be there before the module is
                names = ("libasan.so", "libstdc++.so")
                runtime = [self.succeed(COMPILER, f"-print-file-name={name}").strip() for name in names]
                env.update(LD_PRELOAD=":".join(runtime), ASAN_OPTIONS="detect_leaks=0")
            shown = self.succeed(sys.executable, "-B", "-c", "import plaz; print(plaz.stores())", **env)
            self.assertIn("plaz.Store tclscripts", shown)

    def test_links(self):
        """Catches: a guide that leads to what is not installed."""
        guides = [*self.prefix.glob("share/doc/plaz/**/*.md")]
        self.assertGreater(len(guides), 7)
        succeed(TREE / "scripts/check-links", *guides)

    def test_libraries(self):
        """Catches: a library in the current directory that is loaded."""
        (self.dir / "elsewhere").mkdir()
        (self.dir / "elsewhere/libstdc++.so.6").touch()
        for tree in (BUILD, self.prefix):
            libraries = (*tree.glob("lib/**/*.so"), *tree.glob("python/**/*.so"))
            succeed("ldd", tree / "bin/plaz", *libraries, cwd=self.dir / "elsewhere")

    def test_program(self):
        """Catches: a program that does not find the hub; a file of the sample or of the product that is not valid,
        a sample hub that only the build tree has."""
        self.assertIn("tclscripts", self.succeed(self.prefix / "bin/plaz", "stores"))
        files = [file for root in self.data for file in root.rglob("*.json")]
        files = [file for file in files if "schemas" not in file.parts and file.name != "messages.json"]
        self.assertGreater(len(files), 20)
        self.succeed(self.prefix / "bin/plaz", "validate", *files)
        bare = {"GDA_DATA_DIR": "", "GDA_APPDATA_DIR": self.dir / "bare 100%"}
        self.succeed(self.prefix / "bin/plaz", "hub", "set", "sample", **bare)
        self.succeed(self.prefix / "bin/plaz", "install", "aurora", **bare)
