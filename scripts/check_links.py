#!/usr/bin/env python3
"""Follows the links of Markdown documents to files and headings.

  check_links.py FILE-OR-FOLDER...

Folders are searched for .md files, links in code are left out. Prints each dead link with file and line; the last line
is the number of links that were followed. Fails when one is dead, and when there are none at all.
"""
import os
import re
import sys


def without_code(text):
    """The text with code blanked out, so that line numbers stay."""
    blank = lambda found: re.sub(r'[^\n]', ' ', found.group())
    text = re.sub(r'^(```|~~~).*?^\1', blank, text, flags=re.S | re.M)
    return re.sub(r'(`+)(?!`).+?(?<!`)\1(?!`)', blank, text, flags=re.S)


def headings(path):
    """The names that links give to the headings of a document."""
    text = re.sub(r'^(```|~~~).*?^\1', '', open(path, encoding='utf-8').read(), flags=re.S | re.M)
    names = set()
    for title in re.findall(r'^#+ +(.*?) *$', text, flags=re.M):
        title = re.sub(r'\[([^\]]*)\]\([^)]*\)', r'\1', title)
        name = re.sub(r'[^\w\- ]', '', title.lower()).replace(' ', '-')
        number = 0
        while name + (f'-{number}' if number else '') in names:
            number += 1
        names.add(name + (f'-{number}' if number else ''))
    return names


def links(path):
    """(line, target) of every link and picture that leads to a file of this machine."""
    text = without_code(open(path, encoding='utf-8').read())
    for found in re.finditer(r'\]\(\s*<?([^)\s>]+)>?[^)]*\)|^\[[^\]]+\]:\s*(\S+)', text, flags=re.M):
        target = found.group(1) or found.group(2)
        if not re.match(r'[a-z][a-z0-9+.-]*:', target):
            yield text.count('\n', 0, found.start()) + 1, target


def problem(path, target):
    file, _, heading = target.partition('#')
    led_to = os.path.join(os.path.dirname(path), file) if file else path
    if os.path.isabs(file):
        return 'is absolute'
    if not os.path.exists(led_to):
        return 'leads to no file'
    if heading and led_to.endswith('.md') and heading not in headings(led_to):
        return 'leads to no heading'
    return None


def main():
    documents = []
    for argument in sys.argv[1:]:
        if os.path.isfile(argument):
            documents.append(argument)
        for folder, _, names in os.walk(argument):
            documents += [os.path.join(folder, name) for name in sorted(names) if name.endswith('.md')]
    followed = dead = 0
    for document in documents:
        for line, target in links(document):
            followed += 1
            why = problem(document, target)
            if why:
                dead += 1
                print(f'{document}:{line}: {target} {why}')
    print(f'{followed} links in {len(documents)} documents, {dead} dead')
    sys.exit(1 if dead or not followed else 0)


main()
