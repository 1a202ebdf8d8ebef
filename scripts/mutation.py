#!/usr/bin/python3
"""Finds and applies the mutants of scripts/mutants.txt in a copy of the checkout (mutate.sh).

    mutation.py list  <tree> <mutants.txt> [id...]   prints "id<TAB>file<TAB>title" per mutant
    mutation.py apply <tree> <mutants.txt> id        writes the mutant into its file of <tree>

A snippet is found by its text in src/, platform/ or tools/ of the tree, not by a line number,
so that a mutant survives small edits around it; it must occur exactly once there. "\\n" in a
snippet or a replacement stands for a line break (in a snippet: and the next line's indentation).
"""
import os
import re
import sys


def parse(listing):
    mutants, current = [], None
    with open(listing, encoding="utf-8") as f:
        for number, line in enumerate(f, 1):
            line = line.rstrip("\n")
            if not line.strip() or line.startswith("#"):
                continue
            if line[:2] in ("- ", "+ ") or line in ("-", "+"):
                if current is None:
                    sys.exit("mutation: %s:%d: a snippet before any mutant" % (listing, number))
                current[line[0]] = line[2:]
            else:
                current = {"id": line.split(" ", 1)[0], "title": line.partition(" ")[2]}
                mutants.append(current)
    return mutants


def pattern(snippet):
    return re.compile(r"\n[ \t]*".join(re.escape(part) for part in snippet.split("\\n")))


def main():
    mode, tree, listing = sys.argv[1:4]
    wanted = sys.argv[4:]
    mutants = parse(listing)
    ids = [m["id"] for m in mutants]
    for dup in sorted({i for i in ids if ids.count(i) > 1}):
        sys.exit("mutation: %s is listed twice" % dup)
    for w in wanted:
        if w not in ids:
            sys.exit("mutation: no mutant %s" % w)

    texts = {}
    for top in ("src", "platform", "tools"):
        for folder, _, names in os.walk(os.path.join(tree, top)):
            for name in sorted(names):
                if name.endswith((".cpp", ".h")):
                    path = os.path.join(folder, name)
                    with open(path, encoding="latin-1") as f:
                        texts[path] = f.read()

    for m in mutants:
        if wanted and m["id"] not in wanted:
            continue
        if "-" not in m or "+" not in m:
            sys.exit("mutation: %s needs a '- ' and a '+ ' line" % m["id"])
        found = [(p, len(pattern(m["-"]).findall(t))) for p, t in sorted(texts.items())]
        found = [(p, n) for p, n in found if n]
        if len(found) != 1 or found[0][1] != 1:
            where = ", ".join("%s (%d)" % (os.path.relpath(p, tree), n) for p, n in found)
            sys.exit("mutation: %s: the snippet is not once in src/, platform/ and tools/ (%s): %s"
                     % (m["id"], where or "nowhere", m["-"]))
        path = found[0][0]
        if mode == "list":
            print("%s\t%s\t%s" % (m["id"], os.path.relpath(path, tree), m["title"]))
        elif mode == "apply":
            new = m["+"].replace("\\n", "\n")
            with open(path, "w", encoding="latin-1") as f:
                f.write(pattern(m["-"]).sub(lambda _: new, texts[path], count=1))
        else:
            sys.exit("mutation: mode list or apply")


main()
