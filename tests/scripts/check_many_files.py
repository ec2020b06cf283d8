#!/usr/bin/env python3
"""Tries verimark on many files at once: check_many_files.py PROGRAM [--sanitized].

Order of the output, lists of names, names of every kind, files that end a check, signals, pipes, and progress at a
pseudo-terminal.
"""
import json
import os
import pty
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from xml.etree import ElementTree

PROGRAM = os.path.abspath(sys.argv[1])
SANITIZED = "--sanitized" in sys.argv
FORMS = ["text", "gcc", "json", "jsonl", "sarif", "github", "junit"]
GOOD = "[IBIS Ver] 4.2\n[File Name] {}\n[File Rev] 1\n[Component] Chip\n[Manufacturer] Ours\n[Package]\n" \
       "R_pkg 0.1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n{}[Pin] signal_name model_name R_pin L_pin C_pin\n" \
       "1 VCC POWER\n[End]\n"
PACKAGE = "[IBIS Ver] 4.2\n[File Name] {}\n[File Rev] 1\n[Define Package Model] {}\n[Manufacturer] Ours\n" \
          "[OEM] Ours\n[Description] one pin\n[Number Of Pins] 1\n[Pin Numbers]\n1\n[Model Data]\n" \
          "[Resistance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] 1\n0.1\n[Inductance Matrix] Banded_matrix\n" \
          "[Bandwidth] 0\n[Row] 1\n1n\n[Capacitance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] 1\n1p\n" \
          "[End Model Data]\n[End Package Model]\n[End]\n"


def write(name, text):
    os.makedirs(os.path.dirname(name) or b"." if isinstance(name, bytes) else os.path.dirname(name) or ".",
                exist_ok=True)
    with open(name, "wb") as file:
        file.write(text.encode() if isinstance(text, str) else text)


def read(name):
    with open(name, "rb") as file:
        return file.read()


def run(*arguments, given=b"", **more):
    return subprocess.run([PROGRAM, *arguments], input=given, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          check=False, **more)


def expect(what, wanted, got):
    if wanted != got:
        sys.exit(f"FAILED: {what}:\n  expected {wanted!r:.2000}\n  got      {got!r:.2000}")


def library():
    """Files of all fates, larger ones first, in three folders. Their names in the order of a walk."""
    names = []
    for i in range(60):
        name = f"lib/{'abc'[i // 20]}/part{i:02}.{'IBS' if i % 7 == 0 else 'ibs'}"
        faults = "".join(f"[Fault {i} {j}]\n" for j in range(0 if i % 3 else 2000 if i % 20 == 0 else 5))
        text = GOOD.format(os.path.basename(name), "")
        write(name, text.replace("[End]\n", faults + "[End]\n") if i % 11 else "")
        names.append(name)
    write("lib/a/notes.txt", "no file to check\n")
    write("lib/b/deep/er/last.Ami", "(bad\n")
    write("lib/b/pins.PKG", "")
    os.symlink("../a", "lib/b/link")
    os.symlink("../a/part01.ibs", "lib/b/linked.ibs")
    os.symlink("nowhere", "lib/b/broken.ibs")
    os.mkdir("lib/empty.ibs")
    b = [name for name in names if "/b/" in name]
    return ([name for name in names if "/a/" in name] + ["lib/b/deep/er/last.Ami", "lib/b/linked.ibs"] + b +
            ["lib/b/pins.PKG"] + [name for name in names if "/c/" in name])


def in_order(names):
    for form in FORMS:
        alone = run("-f", form, "-j1", *names)
        expect(f"{form}: status", 2, alone.returncode)
        if not alone.stdout:
            sys.exit(f"FAILED: {form}: nothing is found")
        for call in (["-j2", *names], ["-j8", *names], ["-j", "64", *names], ["lib"], ["lib/"], ["-j3", "-"]):
            many = run("-f", form, *call, given="\n".join(names).encode())
            expect(f"{form} {call[0]}", (alone.stdout, alone.stderr, 2), (many.stdout, many.stderr, many.returncode))
    # One after the other they give the same.
    apart = [run(name) for name in names]
    together = run(*names)
    expect("text of each", (b"".join(one.stdout for one in apart), b"".join(one.stderr for one in apart)),
           (together.stdout, together.stderr))
    paths = [file["path"] for file in json.loads(run("-fjson", "lib").stdout)["files"]]
    expect("order of a walk", names, paths)


def lists():
    good = GOOD.format("good.ibs", "")
    write("list/good.ibs", good)
    os.mkdir("bare")
    expect("a folder without files", (2, b"verimark: bare: there is no .ibs, .pkg, .ebd or .ami file in the folder\n"),
           (run("bare").returncode, run("bare").stderr))
    expect("an empty list", (0, b"", b""), (lambda r: (r.returncode, r.stdout, r.stderr))(run("-")))
    expect("empty lines, a last line without end, a folder", 3,
           len(json.loads(run("-fjson", "-", given=b"\nlist/good.ibs\n\n\nlist\nlist/good.ibs").stdout)["files"]))
    expect("an empty list as json", {"files": [], "total": 0},
           (lambda j: {"files": j["files"], "total": j["totals"]["files"]})(json.loads(run("-fjson", "-").stdout)))
    missing = "".join(f"missing{i}.ibs\n" for i in range(1000)).encode()
    result = run("-fjson", "-", given=missing)
    whole = json.loads(result.stdout)
    expect("a thousand missing files", (2, 1000, 1000, 1000),
           (result.returncode, whole["totals"]["unread"], whole["totals"]["errors"], result.stderr.count(b"\n")))
    # Names that are hard to write.
    odd = [b"odd/new\nline.ibs", b"odd/inv\xff\xfealid.ibs", b"odd/esc\x1b[31m.ibs", b"odd/ blank.ibs", b"odd/\xc3\xa9.ibs"]
    for name in odd:
        write(name, good)
    for form in FORMS:
        expect(f"odd names, {form}", run("-j1", "-f", form, b"odd").stdout, run("-j4", "-f", form, b"odd").stdout)
    paths = {file["path"] for file in json.loads(run("-fjson", "odd").stdout)["files"]}
    expect("odd names in json", {name.decode(errors="replace") for name in odd}, paths)
    # Line ends of other systems, and lists that are none.
    expect("carriage returns", b"list/good.ibs\n", b"\n".join(
        file["path"].encode() for file in json.loads(run("-fjson", "-", given=b"list/good.ibs\r\n\r\n").stdout)["files"]) + b"\n")
    no_name = b"verimark: -: a line is no name of a file; there is to be one name on each line\n"
    for given in (b"list/good.ibs\0list/good.ibs\0", b"x" * 70000 + b"\n"):
        expect("no list of names", (2, b"", no_name), (lambda r: (r.returncode, r.stdout, r.stderr))(run("-", given=given)))
    with open("/dev/zero", "rb") as endless:
        result = subprocess.run([PROGRAM, "-"], stdin=endless, stderr=subprocess.PIPE, check=False)
        expect("a line without end", (2, no_name), (result.returncode, result.stderr))
    if not SANITIZED:
        limit = 120 << 20
        result = run("-o", "list/out.txt", "-", given=(b"x" * 60000 + b"\n") * 3000,
                     preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
        expect("more names than memory", (2, b"", b"verimark: out of memory\n"),
               (result.returncode, result.stdout, result.stderr))
    # What is no file is not opened.
    os.mkfifo("list/pipe.ibs")
    result = run("-fgcc", "list/pipe.ibs", "/dev/zero.ibs", "list", timeout=60)
    expect("a pipe", (2, b"list/pipe.ibs:1: error: Unable To Open File 'list/pipe.ibs' [1905]\n"
                         b"/dev/zero.ibs:1: error: Unable To Open File '/dev/zero.ibs' [1905]\n"),
           (result.returncode, result.stdout))
    os.unlink("list/pipe.ibs")
    # A folder that cannot be listed; root may list any.
    if os.geteuid() != 0:
        os.mkdir("closed", 0)
        expect("closed folder", 2, run("closed", "list").returncode)


def contained():
    blanks = GOOD.format("blanks.ibs", "[Fault]\n" + " " * 121 + "x\n")
    write("three/a.ibs", GOOD.format("a.ibs", ""))
    write("three/blanks.ibs", blanks)
    write("three/c.ibs", GOOD.format("c.ibs", "[Fault]\n"))
    text = "ERROR (line   11) - More than 120 blanks in a row; the check ends here.\n"
    for jobs in ("-j1", "-j3"):
        result = run(jobs, "three")
        expect("status of an assertion", (1, b""), (result.returncode, result.stderr))
        expect("an assertion in the text form", True,
               "Checking three/blanks.ibs for IBIS 4.2 Compatibility...\n\nERROR (line   10) - Invalid Keyword: Fault\n"
               "ERROR (line   11) - Exceeds 120 chararacters.\n" + text + "\nErrors  : 3\n\nFile Failed\n\n\nChecking three/c.ibs" in result.stdout.decode())
        expect("files behind it", 3, result.stdout.count(b"\nChecking "))
    files = json.loads(run("-fjson", "three").stdout)["files"]
    expect("verdicts", ["passed", "failed", "failed"], [file["verdict"] for file in files])
    expect("its place", ("three/blanks.ibs", 11, True, None),
           (lambda f: (f["file"], f["line"], f["exact"], f["code"]))(files[1]["findings"][-1]))
    # In a package file that is followed: the place is in it.
    write("followed/one.ibs", GOOD.format("one.ibs", "[Package Model] far\n"))
    write("followed/p.pkg", PACKAGE.format("p.pkg", "far").replace("[Description]", " " * 121 + "\n[Description]"))
    finding = json.loads(run("-fjson", "followed/one.ibs").stdout)["files"][0]["findings"][-1]
    expect("an assertion in a followed file", ("followed/p.pkg", 7), (finding["file"], finding["line"]))
    # So little memory that one file does not fit.
    if SANITIZED:
        return
    write("three/b.ami", '(b "' + "y" * (150 << 20) + '")\n')
    limit = 120 << 20
    result = run("-j1", "-fjson", "three",
                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
    files = json.loads(result.stdout)["files"]
    expect("verdicts with little memory", (2, ["passed", "unread", "failed", "failed"]),
           (result.returncode, [file["verdict"] for file in files]))


def peak(*arguments):
    """The peak memory of a call in bytes. A small process starts it: what this one starts counts this one's memory."""
    starter = "import os, sys; process = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ, file_actions=[" \
              "(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]); print(os.wait4(process, 0)[2].ru_maxrss)"
    return int(subprocess.run([sys.executable, "-S", "-E", "-c", starter, PROGRAM, *arguments], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, check=True).stdout) << 10


def memory():
    # Each large file needs nine tenths of the limit, under sanitizers, which need a small one, seven.
    parts = 1 if SANITIZED else 5
    limit = f"--max-memory={8 * parts}M"
    digits = "0123456789abcdefghijklmnopqrstuvwxyz"
    pins = "".join(f"{a}{b}{c}{d} n GND\n" for a in digits[:parts] for b in digits for c in digits for d in digits)
    for name in ("big1.ibs", "big2.ibs"):
        write(f"memory/{name}", GOOD.format(name, "").replace("1 VCC POWER\n", pins))
    write("memory/faults.ibs", GOOD.format("faults.ibs", "[Fault]\n" * 20000))
    write("memory/small.ibs", GOOD.format("small.ibs", "[Fault]\n"))
    names = [f"memory/{name}.ibs" for name in ("big1", "big2", "faults", "small")]
    big, small = names[0], names[3]
    # Too little for a large file.
    text = "More memory than --max-memory={} is needed; the check ends here."
    for form in ("text", "json"):
        alone = run("-j1", "-f", form, "--max-memory=2m", *names)
        many = run("-j8", "-f", form, "--max-memory=2m", *names)
        expect(f"too little memory, {form}", (alone.stdout, alone.stderr, 1), (many.stdout, many.stderr, many.returncode))
    files = json.loads(alone.stdout)["files"]
    expect("which of them fail", [(1, text.format("2m"))] * 2 + [(20000, "Invalid Keyword: Fault"), (1, "Invalid Keyword: Fault")],
           [(len(file["findings"]), file["findings"][-1]["message"]) for file in files])
    files = json.loads(run("-fjson", "--max-memory=1", *names).stdout)["files"]
    expect("a limit in which nothing can be read", [text.format("1")] * 4, [file["findings"][-1]["message"] for file in files])
    result = run("--compare", "--max-memory=2M", small, big)
    expect("too little memory to compare", (2, f"verimark: {big}: more memory than --max-memory=2M is needed; not compared\n"),
           (result.returncode, result.stderr.decode()))
    # Enough for one at a time: all is found, beside each other or not.
    run("--write-baseline=memory.txt", small)
    for more in ([], ["--report=memory.html"], ["--report=memory.html", "--baseline=memory.txt"]):
        seen = []
        for call in (["-j1"], ["-j8", limit]):
            result = run(*call, *more, *names)
            # What the report says of the time is not compared.
            page = re.sub(rb"\d\d:\d\d", b"", read("memory.html")) if more else b""
            seen.append((result.returncode, result.stdout, result.stderr, page))
        expect(f"one at a time {more}", *seen)
    # Ahead of its turn a part is kept, which takes more than to write it in its place: only the latter counts.
    lines = 3000
    write("memory/many.ibs", GOOD.format("many.ibs", "".join(f"[Fault {i}]\n" for i in range(100000))))
    write("memory/part.ibs", GOOD.format("part.ibs", "[Fault]\n" * lines))
    found = [run(jobs, "-fgcc", "--max-memory=3M", "--report=memory.html", "memory/many.ibs", "memory/part.ibs").stdout
             for jobs in ("-j1", "-j2", "-j4")]
    expect("a part that is too large ahead of its turn", [lines] * 3,
           [text.count(b"memory/part.ibs:") for text in found])
    expect("what is found beside it", [found[0]] * 2, found[1:])
    # A part that cannot be kept.
    write("memory/long.ibs", GOOD.format("long.ibs", "| a comment\n" * 10000 + "[Fault]\n" * lines))
    result = run("-j2", "-fgcc", "--report=lost.html", "memory/many.ibs", "memory/long.ibs",
                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000)))
    expect("a part that cannot be kept", (2, True, True),
           (result.returncode, b"verimark: memory/long.ibs: its part of the report: File too large; not everything is "
            b"reported\n" in result.stderr, b"verimark: lost.html: cannot be written" in result.stderr))
    # A baseline is a part of it.
    count = 15000 if SANITIZED else 50000
    known = read("memory.txt") + b"".join(b"elsewhere.ibs, -, %d%s\n" % (i, b"x" * 80) for i in range(count))
    write("known.txt", known)
    result = run(limit, "-fjson", "--baseline=known.txt", *names)
    files = json.loads(result.stdout)["files"]
    expect("a baseline leaves too little for the large files", (1, b"verimark: known.txt: 1 known finding left out\n"),
           (result.returncode, result.stderr))
    expect("which of them fail beside a baseline", [text.format(limit.split("=")[1])] * 2 + ["Invalid Keyword: Fault", None],
           [file["findings"][-1]["message"] if file["findings"] else None for file in files])
    for too_little in ("1", "100K", f"{parts}M"):
        result = run("--max-memory=" + too_little, "--baseline=known.txt", *names)
        expect("a baseline that is too large", (2, b"", f"verimark: known.txt: more memory than --max-memory={too_little} is needed\n"),
               (result.returncode, result.stdout, result.stderr.decode()))
    if SANITIZED:
        return
    for call in (["-j1"], ["-j8"], ["-j8", "--report=memory.html"]):
        expect(f"what {call} takes is bounded", True, peak(limit, *call, *names[:2] * 4) <= 60 << 20)
    # With a limit of the system beside it, too, though several files are checked at the same time.
    several = names * 2

    def limits(size):
        return lambda: resource.setrlimit(resource.RLIMIT_AS, (size, size))

    expect("limits that leave enough", run("-j1", "-fjson", limit, *several).stdout,
           run("-j4", "-fjson", limit, *several, preexec_fn=limits(160 << 20)).stdout)
    for size in (24 << 20, 36 << 20, 56 << 20):
        result = run("-j4", "-fjson", limit, *several, preexec_fn=limits(size))
        files = json.loads(result.stdout)["files"]
        expect(f"both limits, {size}", (1, b"", several, [20000, 1] * 2),
               (result.returncode, result.stderr, [file["path"] for file in files],
                [len(file["findings"]) for i, file in enumerate(files) if i % 4 > 1]))
        for file in files[0], files[1], files[4], files[5]:
            expect(f"a large file under both limits, {size}", True, not file["findings"] or
                   file["findings"][0]["message"].startswith(("More memory", "Out of memory", "Unable to Allocate Memory")))
    # Without a limit of our own the system has one.
    least = 40 << 20
    little = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_AS, (least, least))}
    result = run("-j1", "-fjson", "--report=memory.html", *names, **little)
    files = json.loads(result.stdout)["files"]
    expect("a report with little memory", (1, ["Unable to Allocate Memory", "Invalid Keyword: Fault"], True),
           (result.returncode, [files[0]["findings"][-1]["message"][:25], files[3]["findings"][-1]["message"]],
            read("memory.html").endswith(b"</html>\n")))
    for more in ([], ["--max-memory=1G"]):
        result = run("-j1", "--compare", *more, big, names[1], **little)
        expect("a comparison with little memory", (2, True),
               (result.returncode, b": out of memory; not compared\n" in result.stderr))


def kept_text():
    """The form whose counts come ahead of the findings keeps these in a temporary file."""
    count = 100000
    write("käpt/many.ibs", GOOD.format("many.ibs", "[Fault]\n" * count))
    found = "".join(f"käpt/many.ibs:{10 + i}: error: Invalid Keyword: Fault [916]\n" for i in range(count))

    def failure(result):
        return ElementTree.fromstring(result.stdout).find("testsuite/testcase/failure")

    call = ["-fjunit", "--max-memory=2M", "käpt/many.ibs"]
    whole = run(*call)
    expect("junit: all findings", (1, f"{count} findings", found),
           (whole.returncode, failure(whole).get("message"), failure(whole).text))
    if not SANITIZED:
        expect("junit: memory is bounded", True, peak(*call) <= 16 << 20)
        little = run(*call, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (30 << 20, 30 << 20)))
        expect("junit with little memory", whole.stdout, little.stdout)
    # Where it cannot be written, the output is well formed and says less.
    for problem, more in (("File too large", {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 17, 1 << 17))}),
                          ("No such file or directory", {"env": {**os.environ, "TMPDIR": "/nowhere"}})):
        result = run(*call, **more)
        expect(f"junit: {problem}", (2, f"verimark: käpt/many.ibs: a temporary file cannot be used: {problem}; "
                                        "not everything is reported\n", f"{count} findings", True),
               (result.returncode, result.stderr.decode(), failure(result).get("message"),
                found.startswith((failure(result).text or "").rstrip("\n"))))
    dirty = 20 * "ä" + 5 * "&" + ".ibs"
    # Wherever the file ends, also within a character or what stands for one.
    write(dirty, GOOD.format(dirty, "[Fault]\n" * 6000))
    texts = failure(run("-fjunit", dirty)).text
    for limit in range(1 << 17, (1 << 17) + 30):
        result = run("-fjunit", "--max-memory=2M", dirty,
                     preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))  # noqa: B023
        text = failure(result).text
        expect(f"junit in {limit} bytes", (2, True), (result.returncode, texts.startswith(text) and text.endswith("\n")))
    expect("a folder that is empty is none", whole.stdout, run(*call, env={**os.environ, "TMPDIR": ""}).stdout)
    expect("no temporary file is needed for few", run("-fjunit", "list/good.ibs").stdout,
           run("-fjunit", "list/good.ibs", env={**os.environ, "TMPDIR": "/nowhere"}).stdout)


def packages():
    """Many files beside many .pkg files list and scan the folder once."""
    for i in range(30):
        write(f"beside/part{i}.ibs", GOOD.format(f"part{i}.ibs", f"[Package Model] package{i}\n"))
        write(f"beside/p{i}.pkg", PACKAGE.format(f"p{i}.pkg", f"package{i}"))
    parts = [f"beside/part{i}.ibs" for i in range(30)]
    alone = b"".join(run(name).stdout for name in parts)
    for jobs in ("-j1", "-j4"):
        expect(f"package models, {jobs}", alone, run(jobs, *parts).stdout)
    trace = subprocess.run(["strace", "-f", "-e", "trace=openat", PROGRAM, "-j4", *parts], stderr=subprocess.PIPE,
                           stdout=subprocess.DEVNULL, check=False).stderr.decode() if has_strace() else None
    if trace is not None:
        expect("how often the folder is listed", 1, len(re.findall(r'"beside/", .*O_DIRECTORY', trace)))


def has_strace():
    return not SANITIZED and subprocess.run(["sh", "-c", "strace -V"], stdout=subprocess.DEVNULL,
                                            stderr=subprocess.DEVNULL, check=False).returncode == 0


def large_list(size):
    """Names of one file, again and again, that takes some time to check."""
    if not os.path.exists("long/large.ibs"):
        text = GOOD.format("large.ibs", "").replace("[End]\n", "")
        write("long/large.ibs", text + "| a comment\n" * 40000 + "[Fault]\n" * 20 + "[End]\n")
    return ["long/large.ibs"] * size


def start(*arguments, number, given=None):
    """Starts the program so that it gets the signal: shells let what runs in the background ignore SIGINT."""
    process = subprocess.Popen([PROGRAM, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, preexec_fn=lambda: signal.signal(number, signal.SIG_DFL))
    if given is not None:
        process.stdin.write(given)
    process.stdin.close()
    return process


def wait_for(what, happens):
    end = time.monotonic() + 30
    while not happens():
        if time.monotonic() > end:
            sys.exit(f"FAILED: {what}: it does not come to that")
        time.sleep(0.001)


def expect_end(what, process, number):
    """Sends the signal, which has to end the program at once and leave nothing behind."""
    begin = time.monotonic()
    process.send_signal(number)
    process.wait(timeout=30)
    if time.monotonic() - begin > 1:
        sys.exit(f"FAILED: {what}: it took more than a second to stop")
    expect(f"{number.name}, {what}: status and words", (-number, b"", b""),
           (process.returncode, process.stdout.read(), process.stderr.read()))
    expect(f"{number.name}, {what}: what is left", ["kept.txt"], os.listdir("out"))
    expect(f"{number.name}, {what}: the file before", b"what was there", read("out/kept.txt"))


def signals():
    names = "\n".join(large_list(3000)).encode()
    os.mkdir("out")
    write("out/kept.txt", "what was there")
    os.mkfifo("fifo")
    write("many.ibs", GOOD.format("many.ibs", "").replace("[End]\n", "[Fault]\n" * 5000 + "[End]\n"))
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        for jobs in ("-j1", "-j4"):
            process = start(jobs, "-fjson", "-o", "out/kept.txt", "--write-baseline=out/new.txt", "-", number=number,
                            given=names)
            wait_for("both files", lambda: len(os.listdir("out")) == 3)
            expect_end("in the check", process, number)
        # Before the check, where it waits for a baseline that nobody writes.
        process = start("-o", "out/kept.txt", "--baseline=fifo", "list/good.ibs", number=number)
        wait_for("the output file", lambda: len(os.listdir("out")) == 2)
        expect_end("ahead of the check", process, number)
        # Behind the check, where it writes a baseline that nobody reads.
        process = start("-o", "out/kept.txt", "--write-baseline=fifo", *["many.ibs"] * 3, number=number)
        with open("fifo", "rb") as reader:
            expect("a baseline comes", b"#", reader.read(1))
            expect_end("behind the check", process, number)
    # Whenever it comes: each file is the old or the new one, and nothing is left beside them.
    kept = b"what was there"
    ended = 0
    for step in range(60):
        process = start("-j2", "-o", "out/kept.txt", "--write-baseline=out/new.txt", "many.ibs", number=signal.SIGTERM)
        wait_for("a file", lambda p=process: len(os.listdir("out")) > 1 or p.poll() is not None)
        time.sleep(step * 0.0005)
        process.send_signal(signal.SIGTERM)
        ended += process.wait(timeout=30) == -signal.SIGTERM
        expect("no temporary is left", [], [name for name in os.listdir("out") if name.startswith(".")])
        if read("out/kept.txt") != kept:
            kept = run("many.ibs").stdout
            expect("the output is whole", kept, read("out/kept.txt"))
        if os.path.exists("out/new.txt"):
            expect("the baseline is whole", 5001, read("out/new.txt").count(b"\n"))
            os.unlink("out/new.txt")
    if ended == 0:
        sys.exit("FAILED: no signal came in time")
    # A file that grows too large is an error, not an end.
    write("out/new.txt", "what was there")
    result = run("-o", "out/new.txt", "many.ibs",
                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000)))
    expect("a file that grows too large", (2, b"verimark: out/new.txt: cannot be written: File too large\n"),
           (result.returncode, result.stderr))
    expect("what is left of it", (b"what was there", {"kept.txt", "new.txt"}), (read("out/new.txt"), set(os.listdir("out"))))
    # Where nobody reads the terminal, too.
    main, terminal = pty.openpty()
    process = subprocess.Popen([PROGRAM, "--progress=always", *["many.ibs"] * 50], stderr=terminal, stdout=terminal)
    os.close(terminal)
    time.sleep(0.5)
    process.send_signal(signal.SIGTERM)
    expect("a terminal that nobody reads", -signal.SIGTERM, process.wait(timeout=5))
    os.close(main)
    # Whoever wants it to go on, as nohup does.
    process = subprocess.Popen([PROGRAM, "-fjson", "-o", "out/kept.txt", *large_list(30)],
                               preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
    time.sleep(0.1)
    process.send_signal(signal.SIGHUP)
    expect("an ignored signal", 1, process.wait(timeout=60))


def pipes():
    for form in ("text", "gcc", "json", "junit"):
        call = [PROGRAM, "-j2", "-f", form, *large_list(100)]
        process = subprocess.Popen(call, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        process.stdout.read(10)
        process.stdout.close()
        _, status, used = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        expect(f"a closed pipe, {form}", (2, b""), (process.returncode, process.stderr.read()))
        if used.ru_utime + used.ru_stime > 5:  # of the processor, not of the clock, which says how busy the machine is
            sys.exit("FAILED: the closed pipe was not noticed")


def at_terminal(*arguments, errors_only=True, interrupt_after=None):
    """What comes to a pseudo-terminal, and the status."""
    main, terminal = pty.openpty()
    process = subprocess.Popen([PROGRAM, *arguments], stderr=terminal, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL if errors_only else terminal)
    os.close(terminal)
    if interrupt_after is not None:
        time.sleep(interrupt_after)
        process.send_signal(signal.SIGTERM)
    pieces = []
    while True:
        try:
            piece = os.read(main, 65536)
        except OSError:
            break
        if not piece:
            break
        pieces.append(piece)
    os.close(main)
    return b"".join(pieces).replace(b"\r\n", b"\n"), process.wait()


def progress():
    names = large_list(40)
    erase = rb"\r\x1b\[K"
    line = rb"\d+ of \d+ files, \d+ failed(: [^\r\x1b]*)?"
    seen, status = at_terminal("--progress=always", "-j1", *names)
    expect("progress is lines in place, and gone at the end", True,
           bool(re.fullmatch(rb"(" + erase + line + rb")+" + erase, seen)))
    expect("progress begins", True, seen.startswith(b"\r\x1b[K0 of 40 files, 0 failed: long/large.ibs"))
    expect("progress: status", 1, status)
    for option in ("--progress=never", "--progress=auto"):
        expect(f"{option} of a short check", b"", at_terminal(option, "list/good.ibs")[0])
    seen, status = at_terminal("-j2", *large_list(20000), interrupt_after=2.5)
    counts = [int(count) for count in re.findall(rb"K(\d+) of", seen)]
    expect("auto after a second", True, bool(counts) and counts[0] > 0 and counts == sorted(counts))
    expect("an interrupt takes it away", (-signal.SIGTERM, True), (status, seen.endswith(b"\r\x1b[K")))
    # Findings on the same terminal are not disturbed.
    for form in ("text", "gcc"):
        seen = at_terminal("--progress=always", "--color=never", "-f", form, "-j2", *names, errors_only=False)[0]
        expect(f"findings between, {form}", run("-f", form, *names).stdout,
               re.sub(erase + rb"(" + line + rb")?", b"", seen))
    seen = at_terminal("--progress=always", "-fjson", *names, errors_only=False)[0]
    expect("json between", run("-fjson", *names).stdout, re.sub(erase + rb"(" + line + rb")?", b"", seen))
    steering = b"list/inv\xff\xfealid\x1b[31m.ibs"
    shutil.copyfile("list/good.ibs", steering)
    seen = at_terminal("--progress=always", "-j1", steering)[0]
    expect("names are clean", True, b": list/inv??alid?[31m.ibs" in seen and b"\x1b[31m" not in seen)
    expect("no terminal", b"", run("--progress=auto", *names).stderr)


def main():
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        names = library()
        for check in (lambda: in_order(names), lists, contained, memory, kept_text, packages, signals, pipes, progress):
            check()
        os.chdir("/")
    print("all is well")


main()
