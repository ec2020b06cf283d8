#!/usr/bin/env python3
"""Asks verimark for explanations at a pseudo-terminal and elsewhere: check_explain.py PROGRAM.

Width, color, pagers, and what the JSON form has of each message.
"""
import fcntl
import json
import os
import pty
import struct
import subprocess
import sys
import tempfile
import termios

PROGRAM = os.path.abspath(sys.argv[1])
TITLE_AND_HEADS = ["Meaning", "Why it matters", "How to mend", "Example"]


def expect(what, condition, got):
    if not condition:
        sys.exit(f"FAILED: {what}:\n{got}")


def run(*arguments):
    return subprocess.run([PROGRAM, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False, text=True)


def at_terminal(columns, *arguments, **environment):
    """The status and all that comes to a terminal of this width."""
    mine, its = pty.openpty()
    fcntl.ioctl(its, termios.TIOCSWINSZ, struct.pack("HHHH", 40, columns, 0, 0))
    given = {key: value for key, value in os.environ.items() if key not in ("PAGER", "LESS", "NO_COLOR")}
    given.update({"TERM": "xterm"} | environment)
    child = subprocess.Popen([PROGRAM, *arguments], stdin=its, stdout=its, stderr=its, env=given, start_new_session=True)
    os.close(its)
    text = b""
    while True:
        try:
            piece = os.read(mine, 65536)
        except OSError:  # the other end is closed
            break
        if not piece:
            break
        text += piece
    os.close(mine)
    return child.wait(), text.decode().replace("\r\n", "\n")


def check_terminal():
    plain = run("--explain=905").stdout
    prose = plain[:plain.index("\nExample\n")]
    expect("80 columns without a terminal", all(len(line) <= 80 for line in prose.splitlines()), plain)
    # Without a pager it is the same, with the title and the heads in bold.
    status, text = at_terminal(80, "--explain=905", PAGER="")
    expect("status", status == 0, text)
    expect("colors", text.replace("\x1b[1m", "").replace("\x1b[0m", "") == plain, text)
    expect("heads", all(f"\x1b[1m{head}\x1b[0m\n" in text for head in TITLE_AND_HEADS), text)
    expect("no color", at_terminal(80, "--explain=905", "--color=never", PAGER="")[1] == plain, text)
    _, wide = at_terminal(200, "--explain=905", PAGER="", NO_COLOR="1")
    longest = max(len(line) for line in wide[:wide.index("\nExample\n")].splitlines())
    expect("200 columns", wide.split() == plain.split() and 80 < longest <= 200, wide)

    _, paged = at_terminal(80, "--explain=905", "--color=never", PAGER="sed s/^/:/")
    expect("pager", paged == "".join(":" + line + "\n" for line in plain.splitlines()), paged)
    status, paged = at_terminal(80, "--explain=905", "--color=never", PAGER="/no/such/pager 2>/dev/null")
    expect("pager that is not there", status == 0 and paged == plain, paged)
    status, paged = at_terminal(80, "--explain=905", PAGER="true")
    expect("pager that reads nothing", status == 0 and paged == "", paged)
    _, dumb = at_terminal(80, "--explain=905", TERM="dumb")
    expect("a terminal that cannot move", dumb == plain, dumb)
    expect("JSON is not paged", at_terminal(80, "-fjson", "--explain=905", PAGER="true")[1].startswith("{"), "")
    with tempfile.TemporaryDirectory() as folder:
        name = os.path.join(folder, "topic.txt")
        at_terminal(80, "--explain=905", "-o", name, PAGER="true")
        with open(name, encoding="utf-8") as file:
            expect("a file", file.read() == plain, "")
        done = run("--explain=nothing at all", "-o", name + "2")
        expect("no file", done.returncode == 2 and not os.path.exists(name + "2"), done.stderr)
    _, error = at_terminal(80, "--explain=\x1b[31m")
    expect("a text that steers the terminal", "\x1b" not in error, error)


def check_json():
    messages = json.loads(run("--messages", "--format=json").stdout)["messages"]
    asked = 0
    for message in messages[::20]:
        done = run("--format=json", "--explain=" + message["code"])
        expect(message["code"], (done.returncode == 0) == (message["topic"] is not None), done.stderr)
        if message["topic"] is None:
            continue
        asked += 1
        (topic,) = json.loads(done.stdout)["topics"]
        expect(message["code"], topic["topic"] == message["topic"], topic)
        own = [one for one in topic["messages"] if one["code"] == message["code"]]
        expect(message["code"], own and own[0]["classes"] == message["classes"], topic)
        expect(message["code"], topic.keys() >= {"title", "meaning", "why", "mend"}, topic)
        expect(message["code"], ("no_example" in topic) != ("bad" in topic and "mended" in topic), topic)
    expect("codes with topics", asked > 20, asked)


check_terminal()
check_json()
print("Explanations come as they are asked for.")
