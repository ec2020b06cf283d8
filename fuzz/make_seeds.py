#!/usr/bin/python3
"""Makes the first inputs of the fuzzers from the examples, the frames and the cases of the tests.

usage: make_seeds.py SOURCES OUTPUT [DICTIONARIES PROGRAM]
For each entry there is a folder of inputs in OUTPUT and, if asked for, a dictionary in DICTIONARIES: what PROGRAM,
kestrel_dictionary, prints for it, and the words that several of its inputs have.
"""

import collections
import pathlib
import re
import shlex
import subprocess
import sys

KINDS = ("ibs", "pkg", "ebd", "ami")
LARGEST = 60_000
MOST_WORDS = 500

CALLS = (
    "verimark\n--help\n",
    "verimark\n-h\nx.ibs\n",
    "verimark\n--version\n",
    "verimark\n--messages\n-f\njson\n",
    "verimark\n--explain=905\n",
    "verimark\n--explain\nExceeds 80 chararacters.\n",
    "verimark\n--explain=C_comp\n-fjson\n",
    "verimark\n--completions=zsh\n--output=lib/x\n",
    "verimark\n--completions=bash\n",
    "verimark\n--completions=fish\n",
    "verimark\n--max-memory=50k\n-fjson\na.ibs\nb.ami\n--- a.ibs\n[IBIS Ver] 4.2\n[Model] m\nModel_type I/O\n[End]\n"
    "--- b.ami\n(b (Reserved_Parameters (Ignore_Bits (Usage Info) (Type Integer) (Value 2))))\n",
    "verimark\na.ibs\n--- a.ibs\n[IBIS Ver] 3.2\n[Component] c\n[Package Model] p\n[Pin] signal_name model_name\n"
    "1 s GND\n[End]\n--- p.pkg\n[IBIS Ver] 3.2\n[File Name] p.pkg\n[Define Package Model] p\n[End]\n",
    "verimark\n--compare\n-f\ngcc\na.ibs\nb.ibs\n",
    "verimark\n--compare\nlib\nlib/lib\n--- lib/A.ibs\n[IBIS Ver] 4.2\n--- lib/c.ami\n(c)\n--- lib/lib/a.ibs\n"
    "[IBIS Ver] 5.1\n--- lib/lib/b.ibs\n[IBIS Ver] 5.1\n",
    "verimark\n--compare\na.ami\nb.ibs\n--- a.ami\n(a)\n--- b.ibs\n[IBIS Ver] 5.1\n",
    "verimark\n--ignore=916\n--baseline=known.txt\na.ibs\n--- known.txt\n# verimark baseline 1: path, code, message\n"
    "a.ibs, 916, Invalid Keyword: x\n--- a.ibs\n[IBIS Ver] 3.2\n[x]\n",
    "verimark\n-fgithub\na\rb.ibs\n",
    "verimark\n--messages-page\n",
    "verimark\n--advice-page\n-o\nx.md\n",
    "verimark\nlib\n-q\n--jobs=2\n--- lib/a.ibs\n[IBIS Ver] 3.2\n[End]\n--- lib/lib/b.ami\n(b)\n",
    "verimark\n-\n--fail-on=warning\n--- -\nlib\r\na.ibs\n\nmissing.ibs\n--- a.ibs\n[IBIS Ver] 3.2\n--- lib/c.pkg\n[x]\n",
    "verimark\n--baseline=known.txt\na.ibs\n--- known.txt\n# verimark baseline 1: path, code, message\n"
    "a.ibs, -, gone\n\"a,b.ibs\", 905, \\x01\n--- a.ibs\n[IBIS Ver] 3.2\n[Component]\n[End]\n",
    "verimark\n--write-baseline=known.txt\n--advice\n--ignore=905,E1104\na.ibs\n--- a.ibs\n[IBIS Ver] 4.2\n[Model] m\n",
    "verimark\n--report=lib/page.html\n--color=always\n-j1\na.ibs\nb.ami\n--- a.ibs\n[IBIS Ver] 4.2\n[Model] m\n"
    "Model_type I/O\n[End]\n--- b.ami\n(b (Reserved_Parameters (Ignore_Bits (Usage Info) (Type Integer) (Value 2))))\n",
    "verimark\n--compare\n--tolerance=0.5\n--all\na.ibs\nlib\n--- a.ibs\n[IBIS Ver] 4.2\n--- lib/a.ibs\n[IBIS Ver] 5.1\n",
    "verimark\n--compare\nlib\nlib/lib\n-f\njson\n--- lib/a.ibs\n[IBIS Ver] 4.2\n--- lib/lib/b.ibs\n[IBIS Ver] 5.1\n",
    "verimark\n--output=lib/out.json\n-fjson\n--progress=never\n--\n-a.ibs\n--- -a.ibs\n[IBIS Ver] 4.2\n",
    "kestrel\na.ibs\n-m\nm,n\n-t\n-d\n;\n-c\nc\n--- a.ibs\n[IBIS Ver] 4.2\n[Component] c\n[Model] m\n[End]\n",
    "kestrel\n-i\n",
    "kestrel\n",
)


def read(path):
    return path.read_bytes().decode("latin-1")


def companions(path, text):
    """The files beside one that its text names, and the package models beside it."""
    found = []
    for other in sorted(path.parent.iterdir()):
        if other == path or other.suffix.lower()[1:] not in KINDS or not other.is_file():
            continue
        if other.name in text or (other.suffix.lower() == ".pkg" and "[package model]" in text.lower()):
            found.append(other)
    return found[:4]


def bundle(path):
    """A file and what it names as one input."""
    text = read(path)
    parts = [f"--- {path.name}\n{text}"]
    for other in companions(path, text):
        parts.append(f"--- {other.name}\n{read(other)}")
    return "\n".join(parts) if len(parts) > 1 else parts[0]


def call_of(case):
    """The call of a case with its files; none where it needs a folder."""
    head = read(case).split("\n---\n")[0]
    fields = dict(re.findall(r"^(args|program): (.*)$", head, re.M))
    arguments = shlex.split(fields.get("args", ""))
    if any("/" in word for word in arguments):
        return None
    parts = ["\n".join([fields.get("program", "kestrel"), *arguments]) + "\n"]
    for word in arguments:
        path = case.parent / word.split("=")[-1]
        if path.is_file() and path.stat().st_size < 8000:
            parts.append(f"--- {path.name}\n{read(path)}\n")
    return "".join(parts)


def large():
    """A file with more of what is told apart from few: entries of a selector, points of a curve, pins."""
    entries = "".join(f"m{number} text\n" for number in range(50))
    pins = "".join(f"{number} s{number} {'sel' if number % 2 else 'm1'}\n" for number in range(300))
    rows = "".join(f"{number / 100 - 3:.2f} {number}u {number}u NA\n" for number in range(1300))
    return (f"[IBIS Ver] 4.2\n[File Name] large.ibs\n[Component] c\n[Manufacturer] m\n[Package]\nR_pkg 0 NA NA\n"
            f"[Pin] signal_name model_name\n{pins}[Model Selector] sel\n{entries}[Model] m1\nModel_type Input\n"
            f"C_comp 1p NA NA\n[Voltage Range] 3 NA NA\n[GND Clamp]\n{rows}[End]\n")


HEAD = "[IBIS Ver] {}\n[File Name] a.{}\n[File Rev] 1\n"
CHIP = "[Component] c\n[Manufacturer] m\n[Package]\nR_pkg 0 NA NA\n[Pin] signal_name model_name\n1 s m\n"
MODEL = "[Model] m\nModel_type Output\nC_comp 1p NA NA\n[Voltage Range] 2 NA NA\n"


def pair(kind, was, now, version="5.1"):
    """Two texts to be compared, each behind a header."""
    head = f"--- a.{kind}\n" + HEAD.format(version, kind)
    return f"{head}{was}[End]\n{head}{now}[End]\n"


def rare():
    """What no case holds, and changes of single bytes do not lead to: large and deep records, changes of one field."""
    chip = HEAD.format("5.1", "ibs") + CHIP + MODEL
    wave = "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\n0 0 NA NA\n1n 2 NA NA\n[Composite Current]\n0 1m NA NA\n"
    path = "[Define Package Model] p\n[Manufacturer] m\n[OEM] o\n[Description] d\n[Number Of Sections] 2\n" \
           "[Number Of Pins] 1\n[Pin Numbers]\nA1 Len=1 L=1n{}/ Len={} R=1/\n[End Package Model]\n"
    board = "[Begin Board Description] b\n[Manufacturer] m\n[Number Of Pins] 1\n[Pin List] signal_name\nJ1 s\n" \
            "[Path Description] s\nPin J1\n{}Node U1.1\n[End Board Description]\n[End]\n"
    leaf = "(Usage Info) (Type String)"
    values = "\n".join(f'"value {number}"' for number in range(600))
    return {
        "ibs": [
            chip + "[x]\n" * 10001 + "[End]\n",
            chip + "[Algorithmic Model]\nExecutable Linux_gcc_64 x.so ../p.ami\n[End Algorithmic Model]\n[End]\n",
            *(HEAD.format("4.2", "ibs") + f"[Date] {date}\n{CHIP}[End]\n"
              for date in ("Fri 21 Aug 2026 12:30:00 +0200", "20260821", "210826", "20260821123000", "082026")),
        ],
        "ebd": [HEAD.format("4.2", "ebd") + board.format("Len=1 L=1n C=1p/\n" * 500)],
        "ami": [
            "(a " + "(b " * 40 + "(c)" + ")" * 41,
            f"(a (Reserved_Parameters (AMI_Version {leaf} (Value \"5.1\"))) (Model_Specific (t (Usage In) ((x)))))",
            f"(a (Description \"x\") (Description \"y\") (Reserved_Parameters\n(AMI_Version {leaf} (Default \"5.1\"))"
            "\n(Ignore_Bits (Usage Info) (Type Integer) (Default 2)))\n(Model_Specific (t (Usage In) (Type Float)"
            f"\n(Format Table (Labels \"x\") (1) (2))) (l {leaf} (List {values})) (m (n {leaf} (List {values}))"
            f"\n(n (k {leaf} (Value \"x\"))))))",
        ],
        "compare": [
            pair("ibs", CHIP + MODEL + wave + "1n 2m NA NA\n", CHIP + MODEL + wave + "1n 3m NA NA\n"),
            pair("ibs", CHIP + "[Bus Label] signal_name\n" + MODEL, CHIP + MODEL, "7.0"),
            pair("pkg", path.format("", 1), path.format(" C=1p", 2)),
        ],
        "texts": ["# verimark baseline 1: path, code, message\n\"a, 905, x\n", "board.ibs:12: error: Invalid Keyword: x"],
    }


def collect(sources):
    """The inputs of each entry."""
    inputs = collections.defaultdict(list)
    files = []
    for folder in ("examples", "tests/frames", "tests/cases", "tests/report"):
        files += sorted(path for path in (sources / folder).rglob("*") if path.is_file())
    inputs["ibs"].append(large())
    before = None
    for path in files:
        kind = path.suffix.lower()[1:]
        if kind not in KINDS or path.stat().st_size == 0:
            continue
        inputs[kind].append(bundle(path))
        if kind in ("ibs", "pkg"):
            if before is not None and before.parent == path.parent and before.suffix == path.suffix:
                inputs["compare"].append(f"--- {before.name}\n{read(before)}\n--- {path.name}\n{read(path)}")
            before = path
    inputs["calls"] += CALLS
    for entry, texts in rare().items():
        inputs[entry] += texts
    for path in files:
        if path.suffix == ".case" and (call := call_of(path)) is not None:
            inputs["calls"].append(call)
        if path.suffix == ".txt" and read(path).startswith("# verimark baseline"):
            inputs["texts"].append(read(path))
    for path in sorted((sources / "docs/messages").glob("*.txt")):
        text = read(path)
        inputs["texts"] += [text, text[:text.index("\n")]]
    inputs["texts"] += ["905,E1104,W921,Q304", "Exceeds 80 chararacters.", "E905", "c-comp-corners", "Q201"]
    return inputs


def words_of(inputs):
    """Words that occur in several inputs, the most frequent first."""
    counts = collections.Counter()
    for text in inputs:
        counts.update(set(re.findall(r"[A-Za-z_][A-Za-z0-9_/-]{2,30}", text)))
    return [word for word, count in counts.most_common(MOST_WORDS) if count > 1]


def main():
    sources, output = (pathlib.Path(word) for word in sys.argv[1:3])
    for entry, inputs in collect(sources).items():
        folder = output / entry
        folder.mkdir(parents=True, exist_ok=True)
        for number, text in enumerate(inputs):
            if len(text) <= LARGEST:
                (folder / f"seed_{number:03}").write_bytes(text.encode("latin-1"))
        if len(sys.argv) < 5:
            continue
        dictionaries = pathlib.Path(sys.argv[3])
        dictionaries.mkdir(parents=True, exist_ok=True)
        tables = subprocess.run([sys.argv[4], entry], check=True, capture_output=True, text=True).stdout
        words = "".join(f'"{word}"\n' for word in words_of(inputs))
        (dictionaries / f"{entry}.dict").write_text(tables + words)


if __name__ == "__main__":
    main()
