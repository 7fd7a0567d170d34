"""Runs a class of JUnit tests in a virtual machine of its own, on a sample hub of its own.

    run_junit.py JAVA PLAZ_JAR TESTS_JAR LIBRARY_DIR MAKE_SAMPLE_HUB PRODUCT_DATA CLASS

Fails as well when the virtual machine finds that native code uses it wrongly.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

import junit

JAVA, PLAZ_JAR, TESTS_JAR, LIBRARIES, MAKE_SAMPLE_HUB, PRODUCT_DATA = (
    pathlib.Path(arg).absolute() for arg in sys.argv[1:7])


def main():
    with tempfile.TemporaryDirectory(prefix="plaz-java-") as scratch:
        sample = pathlib.Path(scratch) / "sample"
        env = junit.make_hub(MAKE_SAMPLE_HUB, sample, PRODUCT_DATA)
        # The heap takes all its memory at the start: what the process grows by later is native memory.
        options = ["-Xcheck:jni", "-Xms128m", "-Xmx128m", "-XX:+AlwaysPreTouch", f"-Dsample={sample}"]
        command = junit.command(JAVA, options, [TESTS_JAR, PLAZ_JAR], LIBRARIES, "--select-class", sys.argv[7])
        result = subprocess.run(command, env=env, cwd=scratch, encoding="utf-8", stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT)
    print(result.stdout)
    complaints = re.findall(r".*in native method.*|WARNING: JNI .*|.*Handler was modified.*", result.stdout)
    if complaints:
        sys.exit(f"native code uses the virtual machine wrongly: {complaints[0]}")
    sys.exit(result.returncode)


main()
