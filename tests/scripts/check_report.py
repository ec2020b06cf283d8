#!/usr/bin/env python3
"""Compares outlines of reports with those that are expected, and tries what reports promise of files and outputs.

usage: check_report.py VERIMARK CASES_FOLDER
KESTREL_UPDATE_CASES=1 rewrites the expected outlines.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

from report_outline import cleaned, outline, read_tree

PROGRAM, CASES = sys.argv[1], pathlib.Path(sys.argv[2])
UPDATE = os.environ.get("KESTREL_UPDATE_CASES") == "1"
faults = []


def run(*arguments, folder):
    result = subprocess.run([PROGRAM, *map(str, arguments)], cwd=folder, capture_output=True, check=False)
    return result.returncode, result.stdout.decode("utf-8", "replace"), result.stderr.decode("utf-8", "replace")


def expect(holds, what):
    if not holds:
        faults.append(what)


def lines_of(page):
    return list(outline(read_tree(page)))


def keys_of(page):
    """The keys of the pictures of a page."""
    return [cleaned(legend.text()) for legend in read_tree(page).all("p", "legend")]


def compare_outlines(page):
    files = sorted(CASES.glob("*.outline"))
    expect(files, "there are no outlines")
    for expected in files:
        name = next(file for file in CASES.glob(expected.stem + ".*") if file != expected)
        run("--quiet", f"--report={page}", name.name, folder=CASES)
        if name.name == "straight.ibs":
            key = ["typ min max typical rail 20 % and 80 % ramp DC level of the tables threshold"]
            expect(keys_of(page) == key, f"the key of all that is drawn: {keys_of(page)}")
        found = "\n".join(lines_of(page)) + "\n"
        if UPDATE:
            expected.write_text(found, encoding="utf-8")
        elif found != expected.read_text(encoding="utf-8"):
            (page.parent / expected.name).write_text(found, encoding="utf-8")
            diff = subprocess.run(["diff", "-u", expected, page.parent / expected.name], capture_output=True, check=False)
            faults.append(diff.stdout.decode())


def several_files(folder):
    """One page has all files in their order, however many are checked at a time."""
    text = (CASES / "straight.ibs").read_text()
    for number in range(40):
        size = 400 if number % 10 == 0 else 1  # a large one holds up those behind it
        (folder / f"f{number:02}.ibs").write_text(text.replace("[Ramp]", "| " + "x" * 70 + "\n" * 1 + "[Ramp]")
                                                  .replace("|@", "|\n" * 100 * size))
    names = [f"f{number:02}.ibs" for number in range(40)]
    pages = []
    for jobs in (1, 4):
        page = folder / f"j{jobs}.html"
        run("--quiet", f"--report={page}", f"--jobs={jobs}", *names, folder=folder)
        pages.append(page.read_bytes())
        expect([line for line in lines_of(page) if line.startswith("h2 ")][:40] == ["h2 " + name for name in names],
               "the files of a page are not in their order")
    expect(pages[0] == pages[1], "a page depends on the number of jobs")
    expect(not list(folder.glob(".verimark-*")), "temporary files are left")


def findings_left_out(folder):
    """What is ignored or known is not on the page, and the verdict follows."""
    text = (CASES / "straight.ibs").read_text().replace("Vinl = 0.8", "Vinl = x").replace("Vinh = 2.0", "Vinh = y")
    (folder / "bad.ibs").write_text(text)
    page = folder / "bad.html"
    status, *_ = run("--quiet", f"--report={page}", "--write-baseline=known.txt", "bad.ibs", folder=folder)
    whole = lines_of(page)
    counts = "Failed 3 errors 1 warning"
    expect(status == 1 and whole[1] == "p: " + counts, f"{counts} are expected: {whole[:3]}")
    codes = ",".join(sorted({line.split(" | ")[2] for line in whole if " | error | " in line or " | warning | " in line}))
    run("--quiet", f"--report={page}", f"--ignore={codes}", "bad.ibs", folder=folder)
    expect(lines_of(page)[1] == "p: Passed no findings", f"--ignore={codes}: {lines_of(page)[:3]}")
    for jobs in (1, 3):
        run("--quiet", f"--report={page}", "--baseline=known.txt", f"--jobs={jobs}", "bad.ibs", "bad.ibs", folder=folder)
        heads = [line for line in lines_of(page) if line.startswith(("p: Passed", "p: Failed"))]
        # The baseline knows each finding once in each file that is checked.
        expect(heads[:2] == ["p: Passed no findings", "p: Passed no findings"], f"a baseline: {heads}")


def marks(folder):
    """A finding is marked in the picture of its own table, on the line of its corner, or in the state that it is about."""
    (folder / "marks.ibs").write_text("""[IBIS Ver] 4.2
[File Name] marks.ibs
[File Rev] 1
[Model] m
Model_type 3-state
Vmeas = 1.5
C_comp 2pF 1pF 3pF
[Voltage Range] 3.3 3.3 3.3
[Pulldown]
-3.3 -66mA -60mA -72mA
0 0 0 0
1 20mA 20mA 20mA
2 30mA 10mA 40mA
6.6 40mA 40mA 50mA
[Pullup]
-3.3 33mA 30mA 36mA
0 0 0 0
6.6 -66mA -60mA -72mA
[GND Clamp]
-3.3 -66mA -33mA -99mA
0 0 0 0
6.6 0 0 0
[POWER Clamp]
-3.3 0 0 0
3.3 0 0 0
6.6 -66mA -33mA -99mA
[Ramp]
dV/dt_r 0.66/1n 0.6/1n 0.72/1n
dV/dt_f 0.99/1n 0.9/1n 1.08/1n
[Rising Waveform]
R_fixture = 50
V_fixture = 0
0n 0 0 0
1n 0.5 0.5 0.5
2n 1 1 1
[Rising Waveform]
R_fixture = 50
V_fixture = 3.3
0n 1 1 1
1n 3 2 2
2n 2 3 3
3n 3.3 3.3 3.3
[End]
""")
    page = folder / "marks.html"
    run("--quiet", "--advice", f"--report={page}", "marks.ibs", folder=folder)
    found = {}
    picture = ""
    for line in lines_of(page):
        if line.startswith("picture: "):
            picture = line.split(": ")[1]
        elif line.startswith("  mark: "):
            found.setdefault(picture, []).append(line.split(" at ", 1)[1].split(": ")[0])
    # At four fifths of the supply below ground both clamps carry 80 % of 66 mA.
    expect("-2.64 -0.1056" in found.get("Off state", []), f"clamps that are counted twice: {found}")
    expect("2 0.01" in found.get("Pulldown from the pulldown's rail up", []), f"a row that falls in min: {found}")
    # It begins at 1 V, where min would be at 2.6 V by its pulldown; the last 5 % of its time begin at 2.85 ns; one step
    # ends at 1 ns, from where it goes back.
    expect(found.get("Rising, 50 \u03a9 to 3.3 V") == ["0 1", "2.85e-09 3.105", "1e-09 3", "1e-09 3"],
           f"a waveform that begins elsewhere, is not settled, is coarse and goes back: {found}")
    # From 0 V to 4 V, where a line of 50 ohm needs 80 mA; reflections reach -4 V to 8 V. A capacitance of 0 is none.
    short = driver("[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\n[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\nC_fixture = 0\n"
                   "0n 0 0 0\n1n 2 2 2\n").replace("-4 -80.0mA -80.0mA -80.0mA\n", "", 1).replace("8 160.0mA", "4 40mA", 1)
    pictures = pictures_of(folder, short, "--advice")
    ends = [line.split(" at ")[1].split(":")[0] for line in pictures["Pulldown from the pulldown's rail up"]
            if "goes from 0 V to 4 V" in line]
    expect(ends == ["0 0", "4 0.04"], f"a table that is short at both ends: {ends}")
    expect("Rising, 50 \u03a9 to 0 V" in pictures, f"a fixture without a capacitance: {list(pictures)}")
    for other in ("Rising, 50 \u03a9 to 0 V", "GND Clamp from the clamp's rail up", "POWER Clamp from the clamp's rail down"):
        expect(other not in found, f"marks of others: {found}")


def driver(rest, pulldown=(80, 80, 80), pullup=(80, 80, 80), kind="Output"):
    """A file with a driver of 4 V whose tables are straight lines, by their currents at 4 V in mA."""
    def table(keyword, sign, currents):
        rows = (" ".join([str(volts), *(f"{sign * volts / 4 * current}mA" for current in currents)]) for volts in (-4, 0, 8))
        return "\n".join([keyword, *rows, ""]) if currents else ""

    return (f"[IBIS Ver] 4.2\n[File Name] driver.ibs\n[File Rev] 1\n[Model] m\nModel_type {kind}\nVmeas = 2.5\n"
            f"C_comp 2pF 1pF 3pF\n[Voltage Range] 4 4 4\n{table('[Pulldown]', 1, pulldown)}{table('[Pullup]', -1, pullup)}"
            f"{rest}[End]\n")


def pictures_of(folder, text, *options):
    """The lines of each picture of a file, by its caption."""
    (folder / "driver.ibs").write_text(text)
    page = folder / "driver.html"
    run("--quiet", *options, f"--report={page}", "driver.ibs", folder=folder)
    pictures = {}
    for line in lines_of(page):
        if line.startswith("picture: "):
            lines = pictures.setdefault(line.split(": ", 1)[1], [])
        elif line.startswith("  ") and pictures:
            lines.append(line.strip())
    return pictures


def labels(folder):
    """A label stands for several corners only where their levels lie together."""
    ends = "0n {0} {0} {0}\n1n {1} {1} {1}\n"
    waveforms = "".join(f"[Rising Waveform]\nR_fixture = 50\nV_fixture = {to}\n" + ends.format(*levels)
                        for to, levels in ((4, (2, 4)), (0, (0, 2))))
    found = {title: [line for line in lines if line.startswith("label: ")] for title, lines in pictures_of(
        folder, driver("[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\n" + waveforms, (80, 26.6667, 240), (80, 78, 82))).items()}
    # Pulldowns of 50, 150 and 16.7 ohm against 50 ohm to 4 V: levels of 2, 3 and 1 V, a quarter of the picture apart.
    expect(found.get("Rising, 50 \u03a9 to 4 V") == [
        "label: high 4 V", "label: low min 3 V", "label: Vmeas 2.5 V", "label: low 2 V", "label: low max 1 V"],
        f"levels far apart: {found}")
    # Pullups of 50, 51.3 and 48.8 ohm against 50 ohm to 0 V: 2 V, 1.975 V and 2.025 V, less than a line of text apart.
    expect(found.get("Rising, 50 \u03a9 to 0 V") == [
        "label: Vmeas 2.5 V", "label: high 1.97\u20262.02 V", "label: low 0 V"],
        f"levels that lie together: {found}")


def ramps(folder):
    """The picture of a ramp names the load that its dV fits."""
    def captions(rise, fall, load):
        text = driver(f"[Ramp]\n{load}dV/dt_r {rise}/1n NA NA\ndV/dt_f {fall}/1n NA NA\n", pullup=(),
                      kind="Open_drain\nRref = 150\nVref = 2.4")
        return [title for title in pictures_of(folder, text) if title.startswith("Ramp")]

    # 50 ohm to ground against 150 ohm: from 4 V to 1 V, 60 % of 3 V; from 2.4 V to 0.6 V, 60 % of 1.8 V.
    for rise, fall, load, caption in (
            (1.08, 1.08, "R_load = 150\n", "rising and falling into 150 \u03a9 to 2.4 V"),
            (1.75, 1.1, "R_load = 150\n", "rising into 150 \u03a9 to 4 V, falling into 150 \u03a9 to 2.4 V"),
            # Without a load of its own 50 ohm: from 2.4 V to 1.2 V; to 4 V it would be 60 % of 2 V.
            (0.72, 1.2, "", "rising into 50 \u03a9 to 2.4 V, falling into 50 \u03a9 to 4 V")):
        expect(captions(rise, fall, load) == [f"Ramp 20\u201380 %, {caption}"],
               f"{caption}: {captions(rise, fall, load)}")


def cuts(folder):
    """Clamps of tens of amperes do not make all else flat: a picture is cut, and says on which side."""
    ground, power = (f"[{name} Clamp]\n-4 {current} {current} {current}\n-0.6 0 0 0\n4 0 0 0\n"
                     for name, current in (("GND", "-30A"), ("POWER", "30A")))
    # Between the rails the driver carries 80 mA at most. Nothing is there without it: a line of 50 ohm has 80 mA at 4 V.
    for rest, side, cut in ((ground, "below \u2212160 mA", {-0.16}), (power, "above 160 mA", {0.16}),
                            (ground + power, "beyond \u00b1160 mA", {-0.16, 0.16})):
        for kind, pulldown, pullup, states in (("Output", (80, 80, 80), (80, 80, 80), ("Low", "High", "Off")),
                                               ("Input", (), (), ("Off",))):
            found = pictures_of(folder, driver(rest, pulldown, pullup, kind))
            captions = [title for title in found if " state" in title]
            expect(captions == [f"{state} state cut {side}" for state in states], f"{kind}, {side}: {captions}")
            for caption in captions:
                ends = [float(y) for line in found[caption] if line.startswith("typ: ")
                        for y in re.findall(r", ([-\d.e]+)\)", line)]
                expect(-0.16 <= min(ends) and max(ends) <= 0.16 and cut <= set(ends),
                       f"{caption} goes from {min(ends)} to {max(ends)}")


def flat_ends(folder):
    """A picture over time ends soon behind what happens in it; nothing that is not flat is left out."""
    def ends(rows, *options):
        text = driver(f"[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\n[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\n0n 0 0 0\n1n 0 0 0\n{rows}\n")
        found = pictures_of(folder, text, *options)
        title = next(title for title in found if title.startswith("Rising"))
        typ = next(line for line in found[title] if line.startswith("typ: "))
        return title.removeprefix("Rising, 50 \u03a9 to 0 V").strip(), typ.rsplit("(", 1)[1].split(",")[0]

    for what, rows, caption, end in (
            # 15 mV are less than a hundredth of 2 V, and so all is flat from 2 ns on.
            ("a flat end", "2n 2 2 1.985\n4n 2 2 2\n100n 2 2 2", "flat from 2.6 ns to 100 ns, not shown", "2.6e-09"),
            ("a corner that is late", "2n 2 2 1.97\n4n 2 2 2\n100n 2 2 2", "flat from 5 ns to 100 ns, not shown", "5e-09"),
            ("a picture that is not much longer", "2n 2 2 1.97\n4n 2 2 2\n8n 2 2 2", "", "8e-09"),
            ("a kick at the end", "2n 2 2 2\n98n 2 2 2\n99n 2 2.1 2\n100n 2 2 2", "", "1e-07"),
            ("a fault in a row of the flat end", "2n 2 2 2\n20n 2 x 2\n100n 2 2 2", "flat from 26 ns to 100 ns, not shown", "2.6e-08")):
        found = ends(rows)
        expect(found == (caption, end), f"{what}: {found}")


def parts(folder):
    """What the tables say of a model in parts, and what is left out because nothing is there."""
    lines = "\n".join(f"line {number}" for number in range(1, 14))
    (folder / "parts.ibs").write_text(f"""[IBIS Ver] 5.0
[File Name] parts.ibs
[File Rev] 1
[Source] A short source
[Notes] {lines}
[Component] c
[Manufacturer] Ours
[Package]
R_pkg 0 NA NA
L_pkg 0 NA NA
C_pkg 0 NA NA
[Pin] signal_name model_name R_pin L_pin C_pin
1 s m NA 2nH NA
2 t n NA NA NA
[Model] m
Model_type Output
Vmeas = -1.5
C_comp_pullup 1pF NA NA
C_comp_gnd_clamp 2pF NA NA
[Voltage Range] 3.3 NA NA
[Pulldown]
-3.3 -66mA NA NA
6.6 132mA NA NA
[Pullup]
-3.3 66mA NA NA
6.6 -132mA NA NA
[ISSO_PD]
-3.3 -66mA NA NA
3.3 66mA NA NA
[ISSO_PU]
-3.3 -66mA NA NA
3.3 66mA NA NA
[Ramp]
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
[Rising Waveform]
R_fixture = 75
V_fixture = 0
0n 0 NA NA
2n 2 NA NA
[Composite Current]
0n 0 NA NA
2n 1mA NA NA
[Model] n
Model_type Terminator
C_comp 3pF NA NA
[GND Clamp]
-3.3 -66mA NA NA
6.6 0 NA NA
[End]
""")
    page = folder / "parts.html"
    run("--quiet", "--advice", f"--report={page}", "parts.ibs", folder=folder)
    found = lines_of(page)
    for row in ("| Pin | Signal | Model | L", "| 1 | s | m | 2 nH", "| 2 | t | n | ",
                "| m | Output | 3.3 V | pullup 1 pF, gnd_clamp 2 pF | pulldown, pullup, ISSO, 1 waveform, composite currents | ",
                # 75 ohm are not the 50 of the ramp: both edges of it have a picture of their own.
                "picture: Ramp 20\u201380 %, rising into 50 \u03a9 to 0 V, falling into 50 \u03a9 to 3.3 V",
                # From 0 to 2 V in 2 ns: 60 % of it in 1.2 ns.
                "| Rising, 75 \u03a9 to 0 V: swing | 2 V | \u2013 | \u2013",
                "| Rising, 75 \u03a9 to 0 V: 20\u201380 % | 1.2 ns | \u2013 | \u2013",
                "| Rising, 75 \u03a9 to 0 V: rate | 1 V/ns | \u2013 | \u2013",
                "dd: A short source", "summary: Notes"):
        expect(any(line == row or (row.endswith("| ") and line.startswith(row)) for line in found), f"no {row!r}: {found}")
    # Only typ is drawn; the waveform has another load than the ramp, and is marked as coarse.
    expect(keys_of(page) == ["typ typical rail 20 % and 80 % DC level of the tables threshold finding", "typ typical rail"],
           f"a key has what was drawn: {keys_of(page)}")
    texts = [line for line in found if "Vmeas" in line and "never crossed" in line]
    expect(texts and all("Vmeas \u22121.5 V" in line for line in texts), f"a true minus sign: {texts}")


def outputs(folder):
    """Where the page goes, and where it cannot go."""
    (folder / "good.ibs").write_text((CASES / "straight.ibs").read_text().replace("straight.ibs", "good.ibs"))
    page = folder / "page.html"
    page.write_text("old")
    page.chmod(0o640)
    status, out, errors = run("--format=jsonl", f"--report={page}", "good.ibs", folder=folder)
    expect(status == 0 and out.startswith('{"') and not errors, f"a report goes with any form of findings: {status} {out} {errors}")
    expect(page.stat().st_mode & 0o777 == 0o640, "a page keeps the rights of the file that it replaces")
    status, out, errors = run("--report=good.ibs", "good.ibs", folder=folder)
    expect(status == 2 and "is a file to check" in errors, "a page must not replace its input: " + errors)
    status, out, errors = run("--report=no/such/folder.html", "good.ibs", folder=folder)
    expect(status == 2 and "cannot be written" in errors, "a folder that is not there: " + errors)
    status, out, errors = run("--quiet", "--report=full.html", "missing.ibs", "good.ibs", folder=folder)
    heads = [line for line in lines_of(folder / "full.html") if line.startswith("p: ")]
    expect(status == 2 and heads[0].startswith("p: Not read"), f"a file that is not there has its part: {heads}")
    if os.path.exists("/dev/full"):
        status, out, errors = run("--quiet", "--report=/dev/full", "good.ibs", folder=folder)
        expect(status == 2 and "No space" in errors, "a full disk: " + errors)


def odd_files(folder):
    """Whatever is in a file, its page is whole."""
    head = "[IBIS Ver] 4.2\n[File Name] odd.ibs\n[File Rev] 1\n"
    table = "[Model] m\nModel_type Output\n[Voltage Range] {v}\n[Pulldown]\n{rows}\n"
    inputs = {
        "empty": "",
        "no_model": head + "[End]\n",
        "no_rows": head + table.format(v="3.3 3 3.6", rows="") + "[End]\n",
        "one_row": head + table.format(v="3.3 3 3.6", rows="0 1m 1m 1m") + "[End]\n",
        "na": head + table.format(v="3.3 NA NA", rows="0 NA NA NA\n1 NA NA NA") + "[End]\n",
        "infinite": head + table.format(v="1e400 1e400 1e400", rows="-1e400 1e400 1 1\n0 -1e400 1 1e308\n1e400 1 -1e308 1")
        + "[End]\n",
        "equal": head + table.format(v="0 0 0", rows="1 1 1 1\n1 2 2 2\n1 3 3 3") + "[End]\n",
        "negative": head + table.format(v="-3.3 -3 -3.6", rows="-1 1 1 1\n1 2 2 2") + "[End]\n",
        "tiny": head + table.format(v="3.3 3 3.6", rows="0 1e-320 0 0\n1e-320 1e-310 0 0") + "[End]\n",
        "unsorted": head + table.format(v="3.3 3 3.6", rows="\n".join(f"{i * 7919 % 1000} {i} {i} {i}" for i in range(1000))),
        "many_rows": head + table.format(v="3.3 3 3.6", rows="\n".join(f"{i} {i % 17} 0 NA" for i in range(200000))),
        "many_findings": head + "[Model] m\nModel_type Output\n" + "bad\n" * 20000 + "[End]\n",
        "waveform": head + "[Model] m\nModel_type Output\n[Voltage Range] 3.3 3 3.6\n[Rising Waveform]\nR_fixture = 0\n"
        "V_fixture = 0\n0 1 NA 1\n1e400 2 2 2\n[Falling Waveform]\nR_fixture = -1\nV_fixture=1e400\n1 1 1 1\n0 0 0 0\n[End]\n",
        "deep": "(" * 5000 + "x" + ")" * 5000,
        "open": "(a (b \"c\n",
    }
    for name, text in inputs.items():
        file = folder / (name + (".ami" if name in ("deep", "open") else ".ibs"))
        file.write_text(text)
        page = folder / (name + ".html")
        status, _, errors = run("--quiet", f"--report={page}", file.name, folder=folder)
        expect(status in (0, 1, 2) and page.exists(), f"{name}: status {status} {errors}")
        if not page.exists():
            continue
        try:
            found = lines_of(page)
        except ValueError as fault:
            faults.append(f"{name}: {fault}")
            continue
        expect(found and found[0] == "h2 " + file.name, f"{name}: {found[:1]}")
        page_size = page.stat().st_size
        findings = sum(line.startswith("| ") for line in found)
        expect(page_size < 60000 + 10 * len(text) + 500 * findings, f"{name}: {page_size} bytes for {len(text)}")
        if name == "many_rows":
            longest = max(path.attributes["d"].count(" ") + path.attributes["d"].count("-")
                          for path in read_tree(page).all("path"))
            expect(longest <= 2 * 1000, f"a line has {longest} coordinates")
        if name == "many_findings":
            expect(any("the first 10000 findings" in line for line in found), "findings are not bounded")


with tempfile.TemporaryDirectory() as temporary:
    top = pathlib.Path(temporary)
    for number, check in enumerate((several_files, findings_left_out, marks, labels, ramps, cuts, flat_ends, parts, outputs, odd_files)):
        place = top / str(number)
        place.mkdir()
        check(place)
    compare_outlines(top / "page.html")
for fault in faults:
    print(fault)
sys.exit(1 if faults else 0)
