#!/usr/bin/env python3
"""Puts the rooms of a folder into one JSON file, for a page: name, title and text of each.

    web/make_presets.py examples/rooms presets.json
"""

import json
import pathlib
import re
import sys


def title(text: str) -> str:
    """The first sentence of the first comment."""
    comment = " ".join(line[1:].strip() for line in re.match(r"(#.*\n)*", text)[0].splitlines())
    return comment.split(". ")[0].rstrip(".")


folder, out = sys.argv[1:]
rooms = [{"name": path.stem, "title": title(path.read_text()), "text": "".join(
    line for line in path.read_text().splitlines(keepends=True) if not line.startswith("#"))}
    for path in sorted(pathlib.Path(folder).glob("*.room"))]
pathlib.Path(out).write_text(json.dumps(rooms, separators=(",", ":")))
