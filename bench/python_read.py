#!/usr/bin/python3
"""What kestrel.read costs beside reading the same tables in Python by hand.

usage: python_read.py FILE [ROUNDS]     with the folder of the package in PYTHONPATH

Prints the least processor time of several rounds, taken in turn, of
  read     kestrel.read(FILE) and every table of every model as an array
  loop     a loop over the lines of FILE that converts the rows of the tables, their scales included, and checks nothing
  loadtxt  numpy.loadtxt over the numbers of those tables alone, written as plain numbers beforehand
  fromstring  numpy.fromstring over the same text, which knows no rows
"""

import pathlib
import sys
import tempfile
import time

import numpy

import kestrel

SCALES = {"T": 1e12, "G": 1e9, "M": 1e6, "k": 1e3, "m": 1e-3, "u": 1e-6, "n": 1e-9, "p": 1e-12, "f": 1e-15}
TABLES = {"[pulldown]", "[pullup]", "[gnd clamp]", "[power clamp]", "[gnd_clamp]", "[power_clamp]", "[rising waveform]",
          "[falling waveform]", "[rising_waveform]", "[falling_waveform]"}


def tables_of(model):
    yield from (model.pulldown, model.pullup, model.gnd_clamp, model.power_clamp)
    for waveform in model.rising_waveforms + model.falling_waveforms:
        yield waveform.table


def read(path):
    return [table for model in kestrel.read(path).models for table in tables_of(model) if len(table)]


def number(text):
    if text in ("NA", "na"):
        return numpy.nan
    try:
        return float(text)
    except ValueError:
        end = len(text)
        while not (text[end - 1].isdigit() or text[end - 1] == "."):
            end -= 1
        return float(text[:end]) * SCALES.get(text[end], 1.0)


def loop(path):
    """Rows of four numbers under the keywords of tables."""
    tables = []
    rows = None
    with open(path, encoding="latin-1") as file:
        for line in file:
            line = line.partition("|")[0].strip()
            if not line:
                continue
            if line.startswith("["):
                is_table = line[:line.find("]") + 1].lower() in TABLES
                rows = [] if is_table else None
                if is_table:
                    tables.append(rows)
            elif rows is not None and "=" not in line:
                rows.append([number(word) for word in line.split()])
    return [numpy.array(rows) for rows in tables if rows]


def main():
    path = sys.argv[1]
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 7
    tables = read(path)
    numbers = numpy.concatenate(tables)
    by_hand = numpy.concatenate(loop(path))
    if numbers.shape != by_hand.shape or not numpy.isclose(numpy.nansum(numbers), numpy.nansum(by_hand), rtol=1e-9):
        sys.exit("the loop and kestrel.read do not have the same tables")
    with tempfile.TemporaryDirectory() as folder:
        plain = pathlib.Path(folder) / "numbers.txt"
        numpy.savetxt(plain, numbers, fmt="%.7g")
        ways = {"read": lambda: read(path), "loop": lambda: loop(path), "loadtxt": lambda: numpy.loadtxt(plain),
                "fromstring": lambda: numpy.fromstring(plain.read_text(), sep=" ")}
        least = dict.fromkeys(ways, float("inf"))
        for _ in range(rounds):
            for name, way in ways.items():
                begin = time.process_time()
                way()
                least[name] = min(least[name], time.process_time() - begin)
    print(f"{pathlib.Path(path).stat().st_size} bytes, {len(tables)} tables, {len(numbers)} rows")
    for name, seconds in least.items():
        print(f"{name:12}{seconds * 1e3:9.1f} ms {seconds / least['read']:8.2f}")


if __name__ == "__main__":
    main()
