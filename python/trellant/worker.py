# SPDX-License-Identifier: Apache-2.0
"""Where the worker lies: named by the environment, beside this package, beside the running interpreter, in PATH."""

from __future__ import annotations

import os
import sys

from .errors import HelperMissing
from .places import package_folder, prefix_of_package

#: The worker that reads OMF 2.x files.
WORKER_NAME = "trellant-omf"
#: The environment variable that names the worker's file and goes before every search.
WORKER_VARIABLE = "TRELLANT_WORKER"

#: Seen from the folder of a program, in the order of the search.
_BESIDE_A_PROGRAM = ("AAFTools", "../libexec/trellant/AAFTools", "../bin")


def worker_places() -> tuple[str, ...]:
    """The places where a worker is looked for, in that order: in `AAFTools` within this package, beside this package
    as far as it is installed in `PREFIX/lib/...` (`PREFIX/libexec/trellant/AAFTools`, `PREFIX/bin`), seen from the
    interpreter's folder (`AAFTools`, `../libexec/trellant/AAFTools`, `../bin`), and in the absolute folders of PATH."""
    folders = [os.path.join(package_folder(), "AAFTools")]
    prefix = prefix_of_package()
    if prefix is not None:
        folders += [os.path.join(prefix, "libexec", "trellant", "AAFTools"), os.path.join(prefix, "bin")]
    if sys.executable:
        # Links are left alone: the interpreter of a virtual environment is one, and its neighbours are meant.
        interpreter = os.path.dirname(sys.executable)
        folders += [os.path.join(interpreter, folder) for folder in _BESIDE_A_PROGRAM]
    # A relative folder would be another one in every directory.
    folders += [folder for folder in os.get_exec_path() if os.path.isabs(folder)]
    places = [os.path.join(os.path.normpath(folder), WORKER_NAME) for folder in folders]
    return tuple(dict.fromkeys(places))


def find_worker() -> str:
    """The worker's file: what TRELLANT_WORKER names, there or not, else the first of `worker_places` that holds a file.

    Raises HelperMissing with the places searched.
    """
    named = os.environ.get(WORKER_VARIABLE)
    if named:
        return named
    places = worker_places()
    for place in places:
        if os.path.exists(place) and not os.path.isdir(place):
            return place
    raise HelperMissing(WORKER_NAME, places)
