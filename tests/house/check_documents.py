#!/usr/bin/env python3
"""Holds the Markdown pages to the files that they speak of.

    check_documents.py FOLDER

- Code below `<!-- all of PATH -->` is the whole file; below `<!-- from PATH -->` it is lines of it that stand
  together.
- Every relative link leads to a file.
- Pictures under docs/pictures are small, and a page shows each.
"""

import pathlib
import re
import sys

MOST_PICTURE_BYTES = 60 * 1024

QUOTE = re.compile(r"^<!-- (all of|from) (\S+) -->\n\n?```[a-z]*\n(.*?)^```$", re.MULTILINE | re.DOTALL)
MARK = re.compile(r"^<!-- (?:all of|from) ", re.MULTILINE)
LINK = re.compile(r"!?\[[^\]\n]*\]\(([^)\s]+)\)")
CODE = re.compile(r"^```.*?^```$|`[^`\n]*`", re.MULTILINE | re.DOTALL)


def pages(root):
    for page in sorted(root.rglob("*.md")):
        inside = page.relative_to(root).parts
        if inside[0] not in ("build", ".git") and "node_modules" not in inside:
            yield page


def is_run(lines, of):
    return bool(lines) and any(of[i : i + len(lines)] == lines for i in range(len(of) - len(lines) + 1))


def wrong_quotes(root, text):
    quotes = QUOTE.findall(text)
    if len(quotes) != len(MARK.findall(text)):
        yield "a quotation has no code below it"
    for how, name, code in quotes:
        source = root / name
        if not source.is_file():
            yield f"quotes {name}, which is not there"
            continue
        whole = source.read_text(encoding="utf-8")
        same = code == whole if how == "all of" else is_run(code.splitlines(), whole.splitlines())
        if not same:
            yield f"quotes {name} other than it is"


def links(text):
    """Targets of links to files, without the place within them."""
    for target in LINK.findall(CODE.sub("", text)):
        if not re.match(r"[a-z]+:|#", target):
            yield target.split("#")[0]


def wrong_links(page, text):
    for target in links(text):
        if not (page.parent / target).exists():
            yield f"links to {target}, which is not there"


def wrong_pictures(root, shown):
    for picture in sorted((root / "docs" / "pictures").glob("*.png")):
        name = picture.relative_to(root)
        if picture.stat().st_size > MOST_PICTURE_BYTES:
            yield f"{name}: has more than {MOST_PICTURE_BYTES} bytes"
        if picture.resolve() not in shown:
            yield f"{name}: no page shows it"


def check(root):
    wrong, shown, count = [], set(), 0
    for page in pages(root):
        count += 1
        text = page.read_text(encoding="utf-8")
        shown |= {(page.parent / target).resolve() for target in links(text)}
        wrong += [f"{page.relative_to(root)}: {line}" for line in (*wrong_quotes(root, text), *wrong_links(page, text))]
    if count == 0:
        wrong.append("no pages")
    return wrong + list(wrong_pictures(root, shown))


if __name__ == "__main__":
    found = check(pathlib.Path(sys.argv[1]).resolve())
    for line in found:
        print(line, file=sys.stderr)
    sys.exit(1 if found else 0)
