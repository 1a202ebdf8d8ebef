#!/usr/bin/python3
"""Prints the tables of an HTML file as a browser's parser builds them: one line per row, the
cells' texts joined by '|', a blank line between tables."""
import sys

import html5lib

with open(sys.argv[1], "rb") as f:
    document = html5lib.parse(f, namespaceHTMLElements=False)
tables = []
for table in document.iter("table"):
    rows = []
    for row in table.iter("tr"):
        cells = [c for c in row if c.tag in ("td", "th")]
        rows.append("|".join("".join(c.itertext()).strip() for c in cells))
    tables.append("\n".join(rows))
print("\n\n".join(tables))
