# SPDX-License-Identifier: LGPL-2.1-or-later
"""Tells where the guide and its recipes differ: guide.py TREE"""

import pathlib
import re
import sys


def without_indent(lines):
    """The lines without the blanks that all of them begin with."""
    indents = [len(line) - len(line.lstrip()) for line in lines if line.strip()]
    return [line[min(indents, default=0):].rstrip() for line in lines]


def blocks_of(text):
    """The C++ blocks of a page, each as its lines."""
    return [block.splitlines() for block in re.findall(r'^```cpp\n(.*?)^```$', text, re.M | re.S)]


def stands_in(block, source):
    """Whether the source has these lines one behind the other, all as much indented."""
    return any(without_indent(source[first:first + len(block)]) == without_indent(block)
               for first in range(len(source) - len(block) + 1))


def problems_of(page, recipe):
    """What is wrong with one page."""
    text = page.read_text(encoding='utf-8')
    if not text.startswith('# '):
        yield 'has no title'
    if f'(../../examples/recipes/{recipe.name})' not in text:
        yield 'does not link its recipe'
    blocks = blocks_of(text)
    if not blocks:
        yield 'shows no C++'
    sources = [path.read_text(encoding='utf-8').splitlines() for path in sorted(recipe.glob('*'))]
    for block in blocks:
        if not any(stands_in(block, source) for source in sources):
            yield f'shows what stands in no source of {recipe.name}:\n    ' + '\n    '.join(block)


def problems(tree):
    """What is wrong with the guide."""
    guide = tree / 'docs' / 'guide'
    pages = {path.stem: path for path in guide.glob('*.md') if path.name != 'README.md'}
    recipes = {path.name: path for path in (tree / 'examples' / 'recipes').iterdir() if path.is_dir()}
    links = set(re.findall(r'\(([^():/]+)\.md\)', (guide / 'README.md').read_text(encoding='utf-8')))
    for name in sorted(pages.keys() | recipes.keys() | links):
        if name not in pages:
            yield f'{name}: has no page'
        if name not in recipes:
            yield f'{name}: has no recipe'
        if name not in links:
            yield f'{name}: is not linked in README.md'
        if name in pages and name in recipes:
            yield from (f'{name}.md: {problem}' for problem in problems_of(pages[name], recipes[name]))


found = list(problems(pathlib.Path(sys.argv[1])))
print('\n'.join(found) or 'the guide shows what its recipes do')
sys.exit(1 if found else 0)
