# SPDX-License-Identifier: LGPL-2.1-or-later
"""Compares the pages of the guide with the recipes: guide.py TREE"""

import pathlib
import re
import sys

CMAKE_FILES = re.compile(r'target_sources\(application PRIVATE([^)]*)\)')
QMAKE_FILES = re.compile(r'^(?:SOURCES|HEADERS) \+=(.*)$', re.M)


def without_indent(lines):
    """Returns the lines without the spaces that all of them begin with."""
    indents = [len(line) - len(line.lstrip()) for line in lines if line.strip()]
    return [line[min(indents, default=0):].rstrip() for line in lines]


def blocks_of(text, language):
    """Returns the code blocks of a page in this language."""
    return re.findall(rf'^```{language}\n(.*?)^```$', text, re.M | re.S)


def is_in(block, source):
    """Returns whether the source contains the lines of the block in this order, with the same indents."""
    return any(without_indent(source[first:first + len(block)]) == without_indent(block)
               for first in range(len(source) - len(block) + 1))


def files_in(pattern, blocks):
    """Returns the names of the files that the build lines name."""
    return sorted(' '.join(pattern.findall('\n'.join(blocks))).split())


def build_problems(text, recipe):
    """Returns what is wrong with the lines for CMake and qmake."""
    cmake = blocks_of(text, 'cmake')
    files = files_in(CMAKE_FILES, cmake)
    if not files:
        yield 'names no files for CMake'
    if files != files_in(QMAKE_FILES, blocks_of(text, 'qmake')):
        yield 'names other files for qmake than for CMake'
    paths = [recipe / name for name in files]
    sources = [path.read_text(encoding='utf-8') for path in paths if path.is_file()]
    if len(sources) < len(files):
        yield 'names a file for CMake that the recipe does not have'
    if any('Q_OBJECT' in source for source in sources) != ('AUTOMOC ON' in '\n'.join(cmake)):
        yield 'sets AUTOMOC without need, or does not set it'


def recipes_of(tree):
    """Returns the directory of each page's code, by the name of the page."""
    examples = tree / 'examples'
    recipes = {path.name: path for path in (examples / 'recipes').iterdir() if path.is_dir()}
    return {**recipes, 'putting-it-together': examples / 'notekeeper'}


def page_problems(page, recipe, tree):
    """Returns what is wrong with one page."""
    text = page.read_text(encoding='utf-8')
    if not text.startswith('# '):
        yield 'has no title'
    if f'(../../{recipe.relative_to(tree).as_posix()})' not in text:
        yield 'does not link its recipe'
    blocks = [block.splitlines() for block in blocks_of(text, 'cpp')]
    if not blocks:
        yield 'shows no C++'
    sources = [path.read_text(encoding='utf-8').splitlines() for path in sorted(recipe.glob('*.[ch]*'))]
    for block in blocks:
        if not any(is_in(block, source) for source in sources):
            yield f'shows code that is not in {recipe.name}:\n    ' + '\n    '.join(block)
    if '## Build' in text:
        yield from build_problems(text, recipe)


def problems(tree):
    """Returns what is wrong with the guide."""
    guide = tree / 'docs' / 'guide'
    pages = {path.stem: path for path in guide.glob('*.md') if path.name != 'README.md'}
    recipes = recipes_of(tree)
    links = set(re.findall(r'\(([^():/]+)\.md\)', (guide / 'README.md').read_text(encoding='utf-8')))
    for name in sorted(pages.keys() | recipes.keys() | links):
        if name not in pages:
            yield f'{name}: has no page'
        if name not in recipes:
            yield f'{name}: has no recipe'
        if name not in links:
            yield f'{name}: is not linked in README.md'
        if name in pages and name in recipes:
            yield from (f'{name}.md: {problem}' for problem in page_problems(pages[name], recipes[name], tree))


found = list(problems(pathlib.Path(sys.argv[1])))
print('\n'.join(found) or 'The guide and its recipes agree.')
sys.exit(1 if found else 0)
