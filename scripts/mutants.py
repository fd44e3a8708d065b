# SPDX-License-Identifier: Apache-2.0
"""mutants.py LIST TREE BUILD SEED COUNT FOLDER...: prints COUNT faults, drawn by SEED.

LIST has a regular expression and its replacement a line, with a tab between them. A fault is a
match of one of them in a line of code in a FOLDER of TREE, where folders of other architectures,
of which BUILD compiles nothing, are left out. Printed are its file, the number of its
line, counted from 1, and the line with the fault, with tabs between them.
"""
import json
import pathlib
import random
import re
import sys


def code_only(text):
    """The text with comments and the insides of strings as underscores, in the same places."""
    hidden = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<!\w)\'(?:\\.|[^\'\\\n])+\'|^#[^\n]*'
    blank = lambda found: re.sub(r"[^\n]", "_", found.group())
    return re.sub(hidden, blank, text, flags=re.S | re.M).splitlines()


def faults_of(path, rules):
    text = path.read_text()
    for number, (line, code) in enumerate(zip(text.splitlines(), code_only(text)), 1):
        for pattern, replacement in rules:
            for match in re.finditer(pattern, code):
                yield number, line[:match.start()] + match.expand(replacement) + line[match.end():]


def foreign_folders(tree, build):
    """Folders with code of which nothing is compiled."""
    commands = json.loads(pathlib.Path(build, "compile_commands.json").read_text())
    compiled = {pathlib.Path(command["file"]).resolve().parent for command in commands}
    return {path.parent.resolve() for path in pathlib.Path(tree).rglob("*.cpp")} - compiled


def main(rule_file, tree, build, seed, count, *folders):
    rules = [line.split("\t") for line in pathlib.Path(rule_file).read_text().splitlines()
             if not line.startswith("#")]
    foreign = foreign_folders(tree, build)
    faults = []
    for folder in folders:
        for path in sorted(pathlib.Path(tree, folder).rglob("*.*")):
            if path.suffix in (".cpp", ".h") and path.parent.resolve() not in foreign:
                name = path.relative_to(tree)
                faults += [f"{name}\t{number}\t{line}" for number, line in faults_of(path, rules)]
    print(f"{len(faults)} possible faults", file=sys.stderr)
    for fault in random.Random(int(seed)).sample(faults, min(int(count), len(faults))):
        print(fault)


main(*sys.argv[1:])
