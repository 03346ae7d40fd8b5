# SPDX-License-Identifier: Apache-2.0
"""What the command says of itself, for the tests of the texts that say it again."""
import os
import re
import subprocess
from pathlib import Path

COMMAND = os.environ["TRELLANT_COMMAND"]
TREE = Path(__file__).resolve().parents[2]
COMMANDS = ("info", "list", "extract", "export", "render", "check", "page", "peaks", "scan", "catalogue", "dump", "validate")


def page(*command):
    return subprocess.run([COMMAND, *command, "-h"], check=True,
                          stdout=subprocess.PIPE).stdout.decode()


def subcommands():
    """The commands that the help names, in its order."""
    return tuple(re.findall(r"^  ([a-z]+) ", page().partition("Subcommands:\n")[2], re.MULTILINE))


def options(*command):
    """Every name of every option: {"-h", "--help", ...}."""
    lines = re.findall(r"^  (-\S+)", page(*command), re.MULTILINE)
    return {name for line in lines for name in line.split(",")}


def choices(command, option):
    """The words that the option takes: ["copy", "link", "embed"]."""
    return re.search(rf"^  {option} ([a-z|]+)", page(command), re.MULTILINE).group(1).split("|")
