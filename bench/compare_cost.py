#!/usr/bin/env python3
"""What a comparison costs beside the check of one of its files: processor time as a ratio, peak memory per byte read.

usage: compare_cost.py VERIMARK FILE...
Files of kestrel_generate, for example. Each is compared with itself under another name, with a copy in which one number
of every record is another, each by its own factor so that no two changes are told as one, and, where there are tables,
with a copy in which all tables are. Best of five turns of each, by turns.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

TURNS = 5
NUMBER = re.compile(r"[-+]?\d+\.?\d*(?:e[-+]?\d+)?", re.IGNORECASE)
TABLES = ("[Pulldown]", "[Pullup]", "[GND Clamp]", "[POWER Clamp]", "[Rising Waveform]", "[Falling Waveform]")
# The item that is changed in every row of a section, and of lines that begin with a word.
ROWS = {"[Pin]": -1, "[Driver Schedule]": 1, "[Model Selector]": -1, "[Row]": -1}
WORDS = {"C_comp": 1, "V_trigger_f": 1, "C_pkg": 1}


def scaled(item, factor):
    """The item with its number multiplied; without one, with another word."""
    found = NUMBER.match(item)
    if not found:
        return f"{item}_{factor:.7g}"
    return f"{float(found[0]) * factor:.7g}{item[found.end():]}"


def is_row(items):
    return len(items) == 4 and all(NUMBER.match(item) for item in items)


def write_copy(source, target, of_tables):
    """Writes the changed copy; true when something was changed."""
    keyword, count, factor = "", 0, 1.0
    with open(source, encoding="ascii") as lines, open(target, "w", encoding="ascii") as out:
        for line in lines:
            if line.startswith("["):
                keyword = line[: line.index("]") + 1]
                if of_tables and keyword in TABLES:
                    count += 1
                    factor = 1.1 + 1e-6 * count
            elif not line.startswith("|"):
                items = line.split()
                if of_tables:
                    if keyword in TABLES and is_row(items):
                        line = " ".join([items[0], *(scaled(item, factor) for item in items[1:])]) + "\n"
                elif items and items != ["NA"] and (keyword in ROWS or items[0] in WORDS):
                    place = WORDS.get(items[0], ROWS.get(keyword))
                    count += 1
                    items[place] = scaled(items[place], 1.1 + 1e-6 * count)
                    line = " ".join(items) + "\n"
            out.write(line)
    return count > 0


def run(command):
    """Processor time in seconds and peak memory in bytes of a program that ends well, findings or not."""
    with open(os.devnull, "w", encoding="ascii") as nowhere:
        child = subprocess.Popen(command, stdout=nowhere)
        _, status, used = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode not in (0, 1):
        sys.exit(f"{command[0]} ended with status {child.returncode}")
    return used.ru_utime + used.ru_stime, used.ru_maxrss * 1024


def measure(program, file, copies):
    """Prints the line of a file; `copies` are the equal one and the changed ones, None for what there is not."""
    check = [program, "--quiet", "--jobs=1", file]
    commands = [[program, "--jobs=1", "--compare", file, copy] for copy in copies if copy]
    rounds = [[run(command) for command in [check, *commands]] for _ in range(TURNS)]
    (checked, _), *results = (tuple(map(min, zip(*column))) for column in zip(*rounds))
    results = iter(results)
    cells = ""
    for copy in copies:
        time, memory = next(results) if copy else (0.0, 0)
        both = os.path.getsize(file) + (os.path.getsize(copy) if copy else 0)
        cells += f"{time / max(checked, 1e-9):8.2f} {memory / both:6.2f}" if copy else " " * 15
    print(f"{os.path.basename(file):22} {os.path.getsize(file) * 1e-6:6.1f} {checked:7.3f} {cells}", flush=True)


def main():
    program, files = sys.argv[1], sys.argv[2:]
    print("                            MB check s   equal memory  values memory  tables memory")
    for file in files:
        with tempfile.TemporaryDirectory() as folder:
            copies = [os.path.join(folder, kind, os.path.basename(file)) for kind in ("equal", "values", "tables")]
            for copy in copies:
                os.mkdir(os.path.dirname(copy))
            shutil.copyfile(file, copies[0])
            measure(program, file, [copies[0], *(copy if write_copy(file, copy, copy == copies[2]) else None
                                                 for copy in copies[1:])])


if __name__ == "__main__":
    main()
