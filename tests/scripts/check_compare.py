"""Compares files with copies that mean the same and copies that do not: check_compare.py PROGRAM SCHEMA FILE...

Of each .ibs file it makes a copy with other blanks, comments, line ends, forms of numbers and order of models and pins, of
which no difference may be told at any tolerance, and copies with ten numbers edited, of which exactly those have to be
told. Ends with status 77 when a check had to be left out and the others passed.
"""

import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
from decimal import Decimal

SKIPPED = 77
NUMBER = re.compile(r"^([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)([A-Za-z]*)$")
SCALES = {"T": 12, "G": 9, "M": 6, "k": 3, "m": -3, "u": -6, "n": -9, "p": -12, "f": -15}
CURVES = ("[Pulldown]", "[Pullup]", "[GND Clamp]", "[POWER Clamp]")
WAVEFORMS = ("[Rising Waveform]", "[Falling Waveform]")
RANGES = ("C_comp", "R_pkg", "L_pkg", "C_pkg")
RECORDS = ("[Model]", "[Submodel]", "[Component]", "[Model Selector]", "[Define Package Model]", "[End]",
           "[External Circuit]", "[Test Data]", "[Test Load]")
LINE_LIMIT = 78


def value_of(item):
    """The number of an item, as a decimal; None when it is none."""
    found = NUMBER.match(item)
    if not found:
        return None
    scale = SCALES.get(found[2][:1], 0)
    return Decimal(found[1]).scaleb(scale)


class Line:
    """A line with what it belongs to."""

    def __init__(self, text, comment, keyword, record):
        self.text = text
        self.keyword = keyword  # as written in the tables above where it is one of them
        self.record = record  # kind and name
        self.body = text.split(comment, 1)[0].rstrip()
        self.items = self.body.split()
        self.is_keyword = text.startswith("[")

    def is_row(self):
        if self.is_keyword or self.keyword not in CURVES + WAVEFORMS or len(self.items) != 4:
            return False
        return all(item == "NA" or value_of(item) is not None for item in self.items) and value_of(self.items[0]) is not None

    def is_range(self):
        return not self.is_keyword and bool(self.items) and self.items[0] in RANGES and len(self.items) == 4


def spelling(keyword):
    plain = re.sub(r"[ _]+", " ", keyword).lower()
    for known in CURVES + WAVEFORMS + RECORDS:
        if known.lower() == plain:
            return known
    return plain


def read_lines(path):
    with open(path, "rb") as file:
        text = file.read().decode("latin-1").rstrip("\x1a")
    lines = []
    comment, keyword, record = "|", "", ("header", "")
    for raw in re.split(r"\r?\n", text):
        raw = raw.expandtabs(8)
        if raw.startswith("["):
            keyword = spelling(raw[: raw.find("]") + 1])
            rest = raw[raw.find("]") + 1 :].strip()
            if keyword == "[comment char]":
                comment = rest[:1]
            rest = rest.split(comment, 1)[0].strip()
            if keyword in RECORDS:
                record = (keyword[1:-1].lower(), rest)
        lines.append(Line(raw, comment, keyword, record))
        if keyword == "[End]":
            break  # what follows does not count
    return lines, comment


def other_form(item, chance):
    """The same number written in another way."""
    found = NUMBER.match(item)
    if not found or found[2][:1] in ("T", "G", "M", "k", "f"):
        return item
    value = value_of(item)
    unit = found[2][1:] if found[2][:1] in SCALES else found[2]
    if unit[:1] in SCALES:
        unit = ""
    choice = chance.randrange(4)
    if choice == 0:
        return f"{value:f}{unit}"
    if choice == 1:
        return f"{value.scaleb(3):f}m{unit}"
    if choice == 2:
        return f"{value:E}"
    return f"{value.scaleb(9):f}n{unit}"


def pins_turned_round(lines):
    """The texts of the lines of pins, by their places, the last pin of a component first."""
    texts = {}
    begins = [place for place, line in enumerate(lines) if line.is_keyword]
    for begin, end in zip(begins, begins[1:] + [len(lines)]):
        if lines[begin].keyword != "[pin]":
            continue
        rows = [place for place in range(begin + 1, end) if lines[place].items]
        texts.update(zip(rows, (lines[place].text for place in reversed(rows))))
    return texts


def disguised(lines, comment, seed):
    """A copy that means the same."""
    chance = random.Random(seed)
    pins = pins_turned_round(lines)
    blocks = [[]]
    kinds = [None]
    for place, line in enumerate(lines):
        if line.is_keyword and line.keyword in RECORDS:
            blocks.append([])
            kinds.append(line.keyword)
        text = pins.get(place, line.text)
        if line.is_row() or line.is_range():
            first = [line.items[0]] if line.is_range() else []
            items = first + [other_form(item, chance) for item in line.items[len(first) :]]
            wanted = (" " * chance.randrange(1, 3)).join(items)
            if line.is_row():
                wanted = " " * chance.randrange(3) + wanted
            text = wanted if len(wanted) <= LINE_LIMIT - 10 else line.body
            if chance.randrange(3) == 0:
                text += f" {comment} said"
            blocks[-1].extend([f"{comment} a comment"] * chance.randrange(2))
        blocks[-1].append(text)
    # Models that follow each other come the other way round.
    ordered = []
    start = 0
    while start < len(blocks):
        end = start + 1
        while kinds[start] == "[Model]" and end < len(blocks) and kinds[end] == "[Model]":
            end += 1
        ordered.extend(reversed(blocks[start:end]))
        start = end
    return "\r\n".join(text for block in ordered for text in block) + "\r\n"


def largest(lines, line, column):
    """The largest magnitude of a column of the table that the line is in."""
    at = lines.index(line)
    first = at
    while not lines[first].is_keyword:
        first -= 1
    values = []
    for other in lines[first + 1 :]:
        if other.is_keyword:
            break
        if other.is_row() and value_of(other.items[column]) is not None:
            values.append(abs(value_of(other.items[column])))
    return max(values)


def edited(lines, seed):
    """A copy with up to ten numbers changed, each in another field, and what has to be told of it."""
    chance = random.Random(seed)
    candidates = [line for line in lines if (line.is_row() or line.is_range()) and "NA" not in line.items]
    chance.shuffle(candidates)
    texts = {id(line): line.text for line in lines}
    expected = set()
    for line in candidates:
        if len(expected) == 10:
            break
        field = line.items[0] if line.is_range() else line.keyword
        place = (*line.record, field)
        if place in expected or line.record[0] not in ("model", "component"):
            continue
        column = chance.randrange(1, 4)
        value = value_of(line.items[column])
        if line.is_range():
            change = value * Decimal("0.3")
        else:
            change = largest(lines, line, column) * Decimal("0.2")
        if abs(change) < (Decimal("1e-4") if field in CURVES else Decimal(0)) or change == 0:
            continue
        items = list(line.items)
        items[column] = f"{float(value + change):.9g}"
        texts[id(line)] = "  ".join(items)
        expected.add(place)
    return "\n".join(texts[id(line)] for line in lines) + "\n", expected


def compare(program, old, new, *options):
    done = subprocess.run([program, "--format=json", *options, "--compare", old, new], capture_output=True, check=False)
    assert not done.stderr, done.stderr
    whole = json.loads(done.stdout)
    assert done.returncode == (1 if whole["totals"]["different"] else 0)
    return whole


def told_of(whole):
    """Kind, name and field of everything that was told."""
    told = set()
    for change in whole["pairs"][0]["changes"]:
        for name in change["subject"]["names"]:
            field = change["field"] or ""
            known = [word for word in CURVES + WAVEFORMS if field.startswith(word)]
            told.add((change["subject"]["kind"], name, known[0] if known else field))
    return told


def check_names(program, folder, sample):
    """Names of files with a line feed do not break a line of the text."""
    old, new = (os.path.join(folder, side) for side in ("old\nside", "new\nside"))
    for side in (old, new):
        os.mkdir(side)
        shutil.copyfile(sample, os.path.join(side, "a\nb.ibs"))
    shutil.copyfile(sample, os.path.join(new, "c\nd.ibs"))
    done = subprocess.run([program, "--compare", old, new], capture_output=True, text=True, check=False)
    was, now = old.replace("\n", " "), new.replace("\n", " ")
    told = done.stdout.splitlines()
    assert told[0] == f"Comparing {was}/a b.ibs with {now}/a b.ibs", told
    assert f"{now}/a b.ibs fails with 1 error; compared as far as it was read" in told, told  # [File Name] is another
    assert f"Only new: {now}/c d.ibs" in told, told


def check_page(program, folder, old, new):
    """With a page the same is told, with the same status, and the page is whole."""
    page = os.path.join(folder, "page.html")
    for paths, status in (((old, old), 0), ((old, new), 1), ((old, os.path.join(folder, "none.ibs")), 2)):
        plain = subprocess.run([program, "--compare", *paths], capture_output=True, check=False)
        done = subprocess.run([program, "--compare", "--report=" + page, *paths], capture_output=True, check=False)
        assert (done.returncode, done.stdout, done.stderr) == (status, plain.stdout, plain.stderr), (paths, done)
        with open(page, encoding="utf-8") as file:
            assert file.read().rstrip().endswith("</html>"), paths
        os.remove(page)


def check_order(program, folder):
    """Thousands of changes of nearly one size come in the order of their sizes, whoever makes their lines."""
    count = 9001
    names = [str(place * 7919 % count) for place in range(count)]  # 7919 is prime: each number once, in another order
    paths = []
    for side in ("few", "more"):
        path = os.path.join(folder, side, "pins.ibs")
        os.mkdir(os.path.dirname(path))
        with open(path, "w", encoding="ascii") as file:
            file.write("[IBIS Ver] 5.1\n[File Name] pins.ibs\n[File Rev] 1\n[Component] part\n[Manufacturer] us\n"
                       "[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
                       "[Pin] signal_name model_name R_pin L_pin C_pin\n")
            for name in names:
                # Larger by 10 % and as many ten millionths of one per cent as the name says.
                value = "100" if side == "few" else f"{Decimal(110) + Decimal(name).scaleb(-7)}"
                file.write(f"{name} a NC {value} 1n 1p\n")
            file.write("[End]\n")
        paths.append(path)
    for jobs in ("--jobs=1", "--jobs=2"):
        done = subprocess.run([program, jobs, "--compare", *paths], capture_output=True, text=True, check=False)
        told = [line.split(":")[0] for line in done.stdout.splitlines() if line.startswith("Component part, pin")]
        assert told == [f"Component part, pin {name}" for name in reversed(range(count))], (jobs, told[:5])


def main():
    program, schema_path, *paths = sys.argv[1:]
    documents = []
    edits = 0
    with tempfile.TemporaryDirectory() as folder:
        for path in paths:
            lines, comment = read_lines(path)
            original = os.path.join(folder, "old", os.path.basename(path))
            copy = os.path.join(folder, "new", os.path.basename(path))
            for name in (original, copy):
                os.makedirs(os.path.dirname(name), exist_ok=True)
            with open(original, "w", encoding="latin-1", newline="") as file:
                file.write("\n".join(line.text for line in lines) + "\n")
            for seed in range(3):
                with open(copy, "w", encoding="latin-1", newline="") as file:
                    file.write(disguised(lines, comment, seed))
                for tolerance in ("0", "1"):
                    whole = compare(program, original, copy, "--all", "--tolerance=" + tolerance)
                    assert not told_of(whole), (path, seed, tolerance, whole["pairs"][0]["changes"])
                documents.append(whole)
            for seed in range(5):
                text, expected = edited(lines, seed)
                edits += len(expected)
                with open(copy, "w", encoding="latin-1", newline="") as file:
                    file.write(text)
                whole = compare(program, original, copy)
                assert told_of(whole) == expected, (path, seed, told_of(whole) ^ expected)
                documents.append(whole)
            os.remove(original)
            os.remove(copy)
        check_names(program, folder, paths[0])
        check_page(program, folder, paths[0], paths[1])
        check_order(program, folder)
    assert edits > 0
    try:
        import jsonschema
    except ImportError:
        print("The schema is left out: there is no module jsonschema (python3-jsonschema).")
        return SKIPPED
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    for document in documents:
        validator.validate(document)
    print(f"{len(paths)} files, {edits} edits: all were told and nothing else.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
