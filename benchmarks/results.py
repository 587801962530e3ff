# SPDX-License-Identifier: LGPL-2.1-or-later
"""The results of benchmark programs, as tables in Markdown."""

import json

BUSY_SHARE = 0.1  # of one processor
SLOWER = 1.1


def read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def duration(seconds):
    for limit, unit in ((1e-6, "ns"), (1e-3, "µs"), (1, "ms")):
        if seconds < limit:
            return f"{seconds / limit * 1000:.3g} {unit}"
    return f"{seconds:.3g} s"


def is_busy(row):
    return row["others"] > BUSY_SHARE


def title(group):
    name = group[0]["operation"]
    return name[0].upper() + name[1:]


def operations(rows):
    """Returns lists of the rows that compare one operation: first with direct calls, then with others."""
    groups = {}
    for row in rows:
        if "ratio" in row:
            groups.setdefault(row["operation"], []).append(row)
    return list(groups.values())


def table(head, lines):
    columns = list(zip(head, *lines))
    widths = [max(len(cell) for cell in column) for column in columns]
    rule = ["-" * width for width in widths]
    return "\n".join("| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |"
                     for line in [head, rule, *lines])


def comparison_line(rows):
    direct, *peers = rows
    mark = " *" if is_busy(direct) else ""
    return [title(rows) + mark, duration(direct["oursSeconds"]),
            f"{duration(direct['baselineSeconds'])} ({direct['baseline']})",
            f"{direct['ratio']:.2f} ({direct['lowQuartile']:.2f} to {direct['highQuartile']:.2f})",
            ", ".join(f"{peer['ratio']:.2f} of {peer['baseline']}" for peer in peers)]


def comparison_table(rows):
    lines = [comparison_line(group) for group in operations(rows)]
    text = table(["Operation", "Library", "Direct calls", "Ratio", "Other libraries and programs"], lines)
    if any(is_busy(row) for row in rows):
        share = max(row["others"] for row in rows)
        text += f"\n\n\\* Other processes used up to {share:.0%} of a processor meanwhile. Repeat these rows."
    return text


def growth_table(rows):
    lines = [[row["growth"][0].upper() + row["growth"][1:], f"{row['unit']}: {row['size']:,}", duration(row["seconds"]),
              f"{row['mebibytes']:.1f} MiB"] for row in rows if "growth" in row]
    return table(["Operation", "Size", "Time", "More memory"], lines)


def slower_rows(rows, earlier):
    """Names the operations whose ratio to direct calls is more than 10 % larger than in an earlier run."""
    before = {group[0]["operation"]: group[0]["ratio"] for group in operations(earlier)}
    slower = [f"{group[0]['operation']}: {group[0]['ratio']:.2f}, earlier {before[group[0]['operation']]:.2f}"
              for group in operations(rows)
              if group[0]["ratio"] > SLOWER * before.get(group[0]["operation"], float("inf"))]
    return "\n".join(["Slower by more than 10 %:", *slower]) if slower else "Nothing is slower by more than 10 %."
