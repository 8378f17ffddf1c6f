"""Where the tests find what they judge."""

import os
import pathlib
import subprocess

SOURCE = pathlib.Path(os.environ["MURKWELL_SOURCE"])
BUILT = pathlib.Path(os.environ["MURKWELL_BUILT"])
CLI = os.environ["MURKWELL_CLI"]
ID = "com.tallowick.Murkwell"


def run(*command, **options):
    return subprocess.run(list(map(str, command)), capture_output=True, text=True, **options)


def options_of(subcommand):
    """The long options that the program's own help lists."""
    words = run(CLI, subcommand, "--help").stdout.replace(",", " ").split()
    return {word for word in words if word.startswith("--") and word.isascii()} - {"--"}
