# SPDX-License-Identifier: Apache-2.0
"""arm-cycles.py LLVM_MCA ASSEMBLY...: the cycles of every loop of the row operations.

A loop is a way round in the flow of a function that stores through a vector register. Its pixels
follow from the bytes that it stores, so that the compiler may unroll as it likes.
"""
import pathlib
import re
import subprocess
import sys

# For each operation the bytes stored for a number of pixels, overlaps included; three channels but
# for the mask row.
OPERATIONS = {
    "reduce_row_c3": (48, 14), "reduce_row_c1": (16, 14), "expand_row_c3": (32, 10),
    "reduce_column": (48, 16), "merge_even": (48, 16), "merge_odd": (48, 16), "mix_rows": (48, 16),
    "resample_row_c3": (12, 4), "pack_rgb": (48, 16), "unpack_rgb": (64, 16),
    "turn_rgb": (24, 8),
}
CORES = ["cortex-a55", "neoverse-n1"]
NOTED = ["ld3", "ld4", "st3", "st4", "tbl", "uhadd", "urhadd", "umull", "umlal", "rshrn"]
ITERATIONS = 400
REGISTER_BYTES = {"q": 16, "d": 8, "s": 4, "x": 8, "w": 4}
LANE_BYTES = {"b": 1, "h": 2, "s": 4, "d": 8}


def function_lines(assembly, name):
    """Labels and instructions of the function."""
    mangled = rf"_Z{len(name) + 5}neon_{name}P\w*"
    body = re.search(rf"^{mangled}:.*?^\s+\.size", assembly, re.M | re.S)
    if not body:
        sys.exit(f"arm-cycles.py: {name} is not in the assembly")
    lines = [re.sub(r"\s*//.*", "", line) for line in body.group(0).split("\n")[1:]]
    return [line for line in lines if re.match(r"\.L\w+:|\s+[a-z]", line)]


def basic_blocks(lines):
    """Blocks in order, each with its label, its instructions and the labels that follow it."""
    blocks = [{"label": None, "code": [], "next": []}]
    falls_in = True
    for line in lines:
        if line.startswith("."):
            label = line.split(":")[0]
            if falls_in:
                blocks[-1]["next"].append(label)
            blocks.append({"label": label, "code": [], "next": []})
            falls_in = True
            continue
        instruction = line.strip()
        blocks[-1]["code"].append(instruction)
        target = re.search(r"\.L\w+$", instruction)
        if re.match(r"(b|b\.?\w\w|cbn?z|tbn?z)\s", instruction) and target:
            blocks[-1]["next"].append(target.group(0))
            falls_in = not instruction.startswith("b\t") and not instruction.startswith("b ")
            if falls_in:
                label = f"{target.group(0)}_after_{len(blocks)}"
                blocks[-1]["next"].append(label)
                blocks.append({"label": label, "code": [], "next": []})
        elif re.match(r"(ret|br)\b", instruction):
            falls_in = False
    return {block["label"]: block for block in blocks}


def ways_round(blocks):
    """The simple cycles, each found at the first of its blocks."""
    order = {label: position for position, label in enumerate(blocks)}
    found = []

    def walk(start, label, path):
        for following in blocks[label]["next"]:
            if following == start:
                found.append(path)
            elif following in order and order[following] > order[start] and following not in path:
                walk(start, following, path + [following])

    for label in blocks:
        walk(label, label, [label])
    return [[line for label in path for line in blocks[label]["code"]] for path in found]


def stored_bytes(instruction):
    single = re.match(r"st(u?r|p)\s+([qdsxw])\d+.*\[(\w+)", instruction)
    if single:
        if single.group(3) == "sp":
            return 0
        return REGISTER_BYTES[single.group(2)] * (2 if single.group(1) == "p" else 1)
    if re.match(r"st1\s.*\}\[", instruction):
        return LANE_BYTES[re.search(r"\.(\w)", instruction).group(1)]
    several = re.match(r"st([1-4])\s+\{\s*v(\d+)[^}]*?(?:[-,]\s*v(\d+)\.\w+)?\s*\}", instruction)
    if several:
        first, last = int(several.group(2)), int(several.group(3) or several.group(2))
        return 16 * ((last - first) % 32 + 1)
    return 0


def cycles(mca, core, code):
    command = [mca, "-mtriple=aarch64", f"-mcpu={core}", f"-iterations={ITERATIONS}"]
    report = subprocess.run(command, input="\n".join(code) + "\n", check=True, capture_output=True,
                            text=True)
    return int(re.search(r"Total Cycles: +(\d+)", report.stdout).group(1)) / ITERATIONS


def row(mca, title, unit, code):
    stored, pixels = unit
    pixels *= sum(map(stored_bytes, code)) / stored
    memory = [line for line in code if re.match(r"(ld|st)", line)]
    cells = [title, f"{pixels:.3g}", f"{len(code) / pixels:.2f}"]
    for core in CORES:
        cells += [f"{cycles(mca, core, code) / pixels:.2f}",
                  f"{cycles(mca, core, memory) / pixels:.2f}"]
    names = {re.sub("2$", "", line.split()[0]) for line in code}
    cells.append(", ".join(name for name in NOTED if name in names))
    return "| " + " | ".join(cells) + " |"


def main():
    mca, *paths = sys.argv[1:]
    assembly = "\n".join(pathlib.Path(path).read_text(encoding="utf-8") for path in paths)
    print("| operation | pixels a step | instructions | A55 | loads and stores | A76 "
          "| loads and stores | with |")
    print("|---|--:|--:|--:|--:|--:|--:|---|")
    for name, unit in OPERATIONS.items():
        ways = [code for code in ways_round(basic_blocks(function_lines(assembly, name)))
                if sum(map(stored_bytes, code)) >= unit[0] // 3]
        if not ways:
            sys.exit(f"arm-cycles.py: {name} has no loop that stores vectors")
        # Of alike ways the longest stands for all.
        kinds = {any(line.startswith("umull") for line in code): code
                 for code in sorted(ways, key=len)}
        for weighted, code in sorted(kinds.items()):
            title = f"`{name}`"
            if len(kinds) > 1:
                title += ", both pictures" if weighted else ", one picture"
            print(row(mca, title, unit, code))


main()
