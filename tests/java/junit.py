"""What the runners of JUnit tests share: a sample hub, its environment and the command that runs a class of tests."""

import os
import subprocess
import sys

JARS = [f"/usr/share/java/{jar}.jar" for jar in (
    "junit-jupiter-api", "junit-jupiter-engine", "junit-jupiter-params", "junit-platform-commons",
    "junit-platform-engine", "junit-platform-launcher", "junit-platform-console", "junit-platform-reporting",
    "opentest4j", "opentest4j-reporting-events", "opentest4j-reporting-schema", "apiguardian-api", "picocli",
    "univocity-parsers")]


def make_hub(make_sample_hub, sample, product_data):
    """Makes a sample hub. Returns the environment of the programs that use it."""
    subprocess.run([sys.executable, make_sample_hub, sample, "--product-data", product_data], check=True,
                   stdout=subprocess.DEVNULL)
    env = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_", "JAVA_"))}
    env.update(GDA_DATA_DIR=f"{sample / 'data'}{os.pathsep}{product_data}", GDA_APPDATA_DIR=str(sample / "home"),
               HOME=str(sample / "home"), LC_ALL="C.UTF-8")
    return env


def command(java, options, jars, libraries, *selection):
    return [java, "-ea", f"-Djava.library.path={libraries}", *options, "-cp", os.pathsep.join(map(str, [*jars, *JARS])),
            "org.junit.platform.console.ConsoleLauncher", "--disable-banner", "--disable-ansi-colors",
            "--details=tree", "--details-theme=ascii", "--fail-if-no-tests", *selection]
