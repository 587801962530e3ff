# SPDX-License-Identifier: LGPL-2.1-or-later
"""What the programs beside this one know of a page's Markdown."""

import re

FENCED = re.compile(r"^( *)```.*?^\1```$", re.MULTILINE | re.DOTALL)
HEADING = re.compile(r"^(#{1,6}) (.+)$", re.MULTILINE)
LINK = re.compile(r"\[([^\]]+)\]\(([^)\s]+)\)")
REMOTE = re.compile(r"[a-z]+:")


def slug(heading):
    """The anchor that code hosts give a heading."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()
