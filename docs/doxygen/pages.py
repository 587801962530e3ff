# SPDX-License-Identifier: LGPL-2.1-or-later
"""The parts of Markdown that the programs in this directory recognise."""

import re

FENCED = re.compile(r"^( *)```.*?^\1```$", re.MULTILINE | re.DOTALL)
HEADING = re.compile(r"^(#{1,6}) (.+)$", re.MULTILINE)
LINK = re.compile(r"\[([^\]]+)\]\(([^)\s]+)\)")
REMOTE = re.compile(r"[a-z]+:")


def slug(heading):
    """Returns the anchor of a heading, as on the usual web sites for source code."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()
