#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs tests in Chromium: copies them into the build folder, where their packages are installed as
the lock file says, has the pages written, and starts node. Without tests it only installs.

Status 77 says that something is missing here, and on standard output what."""
import argparse
import os
import shutil
import subprocess
import sys
from pathlib import Path

SKIPPED = 77
OLDEST_NODE = 20
HERE = Path(__file__).resolve().parent


def missing():
    """Why the tests cannot run here; empty when they can."""
    for program in ("node", "npm", "chromium"):
        if shutil.which(program) is None:
            return f"{program} is not installed: see the group browser of scripts/packages"
    version = subprocess.run(["node", "--version"], stdout=subprocess.PIPE, check=True).stdout.decode()
    if int(version.lstrip("v").split(".")[0]) < OLDEST_NODE:
        return f"node {version.strip()} is older than {OLDEST_NODE}, which the tests' packages need"
    return ""


def copy_tests(build):
    build.mkdir(parents=True, exist_ok=True)
    for pattern in ("*.mjs", "*.json"):
        for file in HERE.glob(pattern):
            shutil.copy2(file, build)


def installed_packages(build):
    """Installs what the lock file names, where that has changed."""
    lock = (build / "package-lock.json").read_bytes()
    mark = build / "node_modules" / ".lock-of-the-tests"
    if mark.is_file() and mark.read_bytes() == lock:
        return True
    done = subprocess.run(["npm", "ci", "--no-audit", "--no-fund", "--ignore-scripts"],
                          cwd=build, check=False)
    if done.returncode == 0:
        mark.write_bytes(lock)
    return done.returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--source", type=Path, required=True)
    parser.add_argument("tests", nargs="*")
    call = parser.parse_args()
    reason = missing()
    if reason:
        print("skipped:", reason)
        return SKIPPED
    if not call.tests:
        copy_tests(call.build)
        return 0 if installed_packages(call.build) else 1
    environment = dict(os.environ, TRELLANT_SOURCE=str(call.source))
    return subprocess.run(["node", "--test", *call.tests], cwd=call.build, env=environment,
                          check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
