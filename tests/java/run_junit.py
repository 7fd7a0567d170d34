"""Runs a class of JUnit tests in a virtual machine of its own, on a sample hub of its own.

    run_junit.py JAVA PLAZ_JAR TESTS_JAR LIBRARY_DIR MAKE_SAMPLE_HUB PRODUCT_DATA CLASS

Fails as well when the virtual machine finds that native code uses it wrongly.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

JAVA, PLAZ_JAR, TESTS_JAR, LIBRARIES, MAKE_SAMPLE_HUB, PRODUCT_DATA = (
    pathlib.Path(arg).absolute() for arg in sys.argv[1:7])
JUNIT = [f"/usr/share/java/{jar}.jar" for jar in (
    "junit-jupiter-api", "junit-jupiter-engine", "junit-jupiter-params", "junit-platform-commons",
    "junit-platform-engine", "junit-platform-launcher", "junit-platform-console", "junit-platform-reporting",
    "opentest4j", "opentest4j-reporting-events", "opentest4j-reporting-schema", "apiguardian-api", "picocli",
    "univocity-parsers")]


def main():
    with tempfile.TemporaryDirectory(prefix="plaz-java-") as scratch:
        sample = pathlib.Path(scratch) / "sample"
        subprocess.run([sys.executable, MAKE_SAMPLE_HUB, sample, "--product-data", PRODUCT_DATA], check=True,
                       stdout=subprocess.DEVNULL)
        env = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_", "JAVA_"))}
        env.update(GDA_DATA_DIR=f"{sample / 'data'}{os.pathsep}{PRODUCT_DATA}", GDA_APPDATA_DIR=str(sample / "home"),
                   HOME=str(sample / "home"), LC_ALL="C.UTF-8")
        command = [JAVA, "-Xcheck:jni", "-Xmx128m", "-ea", f"-Djava.library.path={LIBRARIES}", f"-Dsample={sample}",
                   "-cp", os.pathsep.join([str(TESTS_JAR), str(PLAZ_JAR), *JUNIT]),
                   "org.junit.platform.console.ConsoleLauncher", "--disable-banner", "--disable-ansi-colors",
                   "--details=tree", "--details-theme=ascii", "--fail-if-no-tests", "--select-class", sys.argv[7]]
        result = subprocess.run(command, env=env, cwd=scratch, encoding="utf-8", stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT)
    print(result.stdout)
    complaints = re.findall(r".*in native method.*|WARNING: JNI .*|.*Handler was modified.*", result.stdout)
    if complaints:
        sys.exit(f"native code uses the virtual machine wrongly: {complaints[0]}")
    sys.exit(result.returncode)


main()
