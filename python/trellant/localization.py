# SPDX-License-Identifier: Apache-2.0
"""Texts for people, from the message catalogues that come with the worker."""

from __future__ import annotations

import gettext
import os

from .places import prefix_of_package

DOMAIN = "trellant"


def localized_text(key: str, english: str) -> str:
    """The text in the language of the environment (LANGUAGE, LC_ALL, LC_MESSAGES, LANG) where there is a catalogue for
    it: in `PREFIX/share/locale` of the installation that this package is part of, else where the interpreter has its
    own. `english` where there is none."""
    prefix = prefix_of_package()
    folder = None if prefix is None else os.path.join(prefix, "share", "locale")
    if folder is None or gettext.find(DOMAIN, folder) is None:
        folder = None
    text = gettext.translation(DOMAIN, folder, fallback=True).gettext(key)
    # Without a translation the key itself comes back.
    return english if text == key else text
