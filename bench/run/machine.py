# SPDX-License-Identifier: Apache-2.0
"""What the figures were taken on."""
import datetime
import os
import pathlib
import platform
import re
import subprocess


def _first(pattern, text):
    match = re.search(pattern, text, re.MULTILINE)
    return match.group(1).strip() if match else "unknown"


def _output(*words, folder=None):
    try:
        return subprocess.run(words, cwd=folder, check=True, capture_output=True, text=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return ""


def description(source, build, folder, quick):
    cache = (build / "CMakeCache.txt").read_text()
    compiler = _first(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache)
    memory = int(_first(r"^MemTotal:\s*(\d+)", pathlib.Path("/proc/meminfo").read_text())) * 1024
    return {
        "cpu": _first(r"^model name\s*:\s*(.*)$", pathlib.Path("/proc/cpuinfo").read_text()),
        "cores": len(os.sched_getaffinity(0)),
        "memoryBytes": memory,
        "kernel": platform.release(),
        "system": _first(r'^PRETTY_NAME="(.*)"$', pathlib.Path("/etc/os-release").read_text()),
        "fileSystem": _output("stat", "-f", "-c", "%T", str(folder)),
        "compiler": _output(compiler, "--version").split("\n")[0],
        "buildType": _first(r"^CMAKE_BUILD_TYPE:\w+=(.*)$", cache),
        "commit": _output("git", "rev-parse", "--short", "HEAD", folder=source),
        "changedSinceCommit": bool(_output("git", "status", "--porcelain", "--", "src", "bench",
                                           "cmake", folder=source)),
        "date": datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC"),
        "loadAtStart": os.getloadavg()[0],
        "quick": quick,
    }
