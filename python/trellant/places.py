# SPDX-License-Identifier: Apache-2.0
"""Where this package lies, and what it is installed with."""

from __future__ import annotations

import os
from typing import Optional


def package_folder() -> str:
    """The folder of this package."""
    return os.path.dirname(os.path.abspath(__file__))


def prefix_of_package() -> Optional[str]:
    """The folder that holds the `lib` in which this package is installed; None when it lies elsewhere."""
    folder = package_folder()
    while os.path.dirname(folder) != folder:
        folder, name = os.path.split(folder)
        if name in ("lib", "lib64"):
            return folder
    return None
