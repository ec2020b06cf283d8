#!/usr/bin/env python3
"""Runs what the documents show: check_docs.py FOLDER-OF-PROGRAMS ROOT INSTALLED.

INSTALLED is a JSON object about what was installed: "prefix" and in it "libraries" and "python" (folders), "compiler",
"flags", "cmake", "generator", "interpreter" for the package, or why that is "left_out".

Every code block of README.md and of the pages in docs has a language. One of "console" holds commands behind "$ " and
what they print, where "..." stands for any lines; one of "sh" is a script, whose output is not shown. Both are run in an
empty folder that holds a copy of examples/, all of a page in the same one. Blocks of "cpp" and "python" are run beside the
examples, the body of a main function and a script; one of "cmake" is configured, a part of a CMakeLists.txt. A comment on the line ahead of a block may say
  <!-- status: 1 -->         the status of the last command, 0 without
  <!-- needs: jq -->         a program without which the block is not run here
  <!-- not run: reason -->   why it never is; these blocks are listed
  <!-- given: CODE -->       what a block of cpp or cmake relies on and does not show
  <!-- prints: COMMAND -->   ahead of a "json" block: what this command prints is the same object
Beside that every page is in the index, every folder of sources has its README, and every link leads somewhere.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field

GENERATED = {"messages.md", "advice.md"}  # made from texts that have tests of their own
PROGRAMS = ("kestrel", "verimark", "$")
CODE = ("cpp", "cmake", "python")
CPP_HEADERS = ["#include <kestrel/kestrel.hpp>", "#include <functional>", "#include <iostream>", "#include <map>",
               "#include <optional>", "#include <string>", "#include <string_view>", "#include <vector>"]


@dataclass
class Block:
    where: str
    language: str
    lines: list = field(default_factory=list)
    notes: dict = field(default_factory=dict)


class Wrong(Exception):
    """What a document says is not so."""


def blocks_of(name, text):
    """The code blocks of a page. All have to be fenced and to have a language."""
    found, block, notes, before = [], None, {}, ""
    for number, line in enumerate(text.splitlines(), 1):
        where = f"{name}:{number}"
        note = re.fullmatch(r"<!-- (status|needs|not run|prints|given): (.*) -->", line)
        if block is not None:
            if line == "```":
                found.append(block)
                block = None
            else:
                block.lines.append(line)
        elif line.startswith("```"):
            if not re.fullmatch(r"```[a-z]+", line):
                raise Wrong(f"{where}: the block has no language, such as console, sh, text or json")
            block = Block(where, line[3:], [], notes)
            notes = {}
        elif note:
            notes[note[1]] = note[2]
        elif line.startswith("    ") and not before.strip():
            raise Wrong(f"{where}: the block is not fenced")
        elif notes:
            raise Wrong(f"{where}: a comment about a block, and no block behind it")
        before = line
    if block is not None:
        raise Wrong(f"{block.where}: the block does not end")
    return found


def steps_of(block):
    """The commands of a console block with what they print."""
    steps = []
    for line in block.lines:
        if line.startswith("$ "):
            steps.append((line[2:], []))
        elif not steps:
            raise Wrong(f"{block.where}: output ahead of the first command")
        elif line.startswith("> ") and not steps[-1][1]:
            steps[-1] = (steps[-1][0] + "\n" + line[2:], [])
        else:
            steps[-1][1].append(line)
    return steps


def agree(shown, printed):
    """True when the lines are those that are shown, with any in place of "...". Empty ones at the end do not count."""
    lines = "\n".join(shown).rstrip("\n").split("\n")
    pattern = "".join(r"(?:.*\n)*?" if line == "..." else re.escape(line) + "\n" for line in lines)
    return re.fullmatch(pattern, printed.rstrip("\n") + "\n") is not None


class Runner:
    def __init__(self, programs, root, installed):
        self.root = pathlib.Path(root)
        self.installed = installed
        self.environment = {**os.environ, "PATH": os.path.abspath(programs) + os.pathsep + os.environ["PATH"],
                            "LC_ALL": "C.UTF-8"}
        self.commands = 0
        self.codes = 0
        self.not_run = []

    def shell(self, folder, script, errors=subprocess.STDOUT):
        return subprocess.run(["bash", "-o", "pipefail", "-c", script], cwd=folder, env=self.environment, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors, text=True, timeout=100)

    def step(self, block, call, folder, expected=0):
        done = subprocess.run(call, cwd=folder, env=self.environment, check=False, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300)
        if done.returncode != expected:
            raise Wrong(f"{block.where}: the status of {call[0]} is {done.returncode}\n{done.stdout}")

    def code(self, examples, block, expected):
        """Builds or runs a block of code against what was installed."""
        installed, given = self.installed, block.notes.get("given", "")
        with tempfile.TemporaryDirectory() as build:
            def write(name, *lines):
                (pathlib.Path(build) / name).write_text("\n".join([*lines, ""]), encoding="utf-8")

            if block.language == "cpp":
                includes = [line for line in block.lines if line.startswith("#include")]
                body = [line for line in block.lines if line not in includes]
                write("block.cpp", *includes, *CPP_HEADERS, "int main() {", given, *body, "}")
                libraries = f"{installed['prefix']}/{installed['libraries']}"
                self.step(block, [installed["compiler"], *installed["flags"].split(), "-std=c++20", "-Wall", "-Wextra",
                                  "-Werror", f"-I{installed['prefix']}/include", "block.cpp", "-o", "block",
                                  f"-L{libraries}", "-lkestrel", f"-Wl,-rpath,{libraries}"], build)
                self.step(block, [f"{build}/block"], examples, expected)
            elif block.language == "cmake":
                write("CMakeLists.txt", "cmake_minimum_required(VERSION 3.25)", "project(block LANGUAGES CXX)", given,
                      *block.lines)
                write("block.cpp", "int main() {}")
                self.step(block, [installed["cmake"], "-S", build, "-B", f"{build}/build", "-G", installed["generator"],
                                  f"-DCMAKE_PREFIX_PATH={installed['prefix']}",
                                  f"-DCMAKE_CXX_COMPILER={installed['compiler']}"], build)
            else:
                write("block.py", "import sys", f"sys.path.insert(0, {installed['prefix'] + '/' + installed['python']!r})",
                      "import kestrel", *block.lines)
                self.step(block, [installed["interpreter"], "-B", f"{build}/block.py"], examples, expected)
        self.codes += 1

    def run(self, folder, block):
        expected = int(block.notes.get("status", 0))
        if block.language == "console":
            steps = steps_of(block)
            for place, (command, shown) in enumerate(steps):
                done = self.shell(folder, command)
                self.commands += 1
                if not agree(shown, done.stdout):
                    raise Wrong(f"{block.where}: {command}\nshown:\n" + "\n".join(shown) + "\nprinted:\n" + done.stdout)
                last = place + 1 == len(steps)
                if (last and done.returncode != expected) or (not last and done.returncode not in (0, 1)):
                    raise Wrong(f"{block.where}: {command}\nits status is {done.returncode}")
        elif block.language == "sh":
            done = self.shell(folder, "set -e\n" + "\n".join(block.lines))
            self.commands += len(block.lines)
            if done.returncode != expected:
                raise Wrong(f"{block.where}: its status is {done.returncode}\n{done.stdout}")
        elif "prints" in block.notes:
            done = self.shell(folder, block.notes["prints"], subprocess.PIPE)
            self.commands += 1
            if json.loads(done.stdout) != json.loads("\n".join(block.lines)):
                raise Wrong(f"{block.where}: {block.notes['prints']}\nprinted:\n{done.stdout}")
        elif block.language in CODE:
            self.code(pathlib.Path(folder) / "examples", block, expected)
        elif any(line.split(" ")[0] in PROGRAMS for line in block.lines):
            raise Wrong(f"{block.where}: a command in a block of \"{block.language}\"")

    def page(self, name, text):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(self.root / "examples", pathlib.Path(folder) / "examples")
            for block in blocks_of(name, text):
                missing = [need for need in block.notes.get("needs", "").split() if shutil.which(need) is None]
                reason = f"{', '.join(missing)} is not at hand" if missing else block.notes.get("not run")
                if block.language == "python" and not reason:
                    reason = self.installed["left_out"]
                if reason:
                    self.not_run.append(f"{block.where}: {reason}")
                else:
                    self.run(folder, block)


def check_self(runner):
    """The check sees what it looks for."""
    def fence(language, *lines):
        return "\n".join([f"```{language}", *lines, "```", ""])

    runner.page("good", "<!-- status: 1 -->\n" + fence("console", "$ echo a; echo b", "a", "b", "", "$ echo c; false", "...") +
                fence("sh", "touch here") + fence("console", "$ ls here", "here") +
                '<!-- prints: echo \'{"a": [1, 2]}\' -->\n' + fence("json", '{"a":', " [1, 2]}"))
    for bad in (fence("console", "$ echo a", "b"), fence("console", "$ echo a; echo b", "a"), fence("console", "$ true", "a"),
                fence("console", "$ false"), fence("console", "$ echo a"), fence("sh", "false"), fence("", "a"),
                fence("text", "verimark x.ibs"), "A:\n\n    verimark x.ibs\n", "<!-- status: 1 -->\nNothing.\n",
                "<!-- prints: echo 1 -->\n" + fence("json", "2"), fence("cpp", "return kestrel::api::none;"),
                fence("cpp", "return 1;"), fence("cmake", "find_package(kestrel 99 REQUIRED)")):
        try:
            runner.page("bad", bad)
        except Wrong:
            continue
        raise Wrong(f"this is taken for right:\n{bad}")


def check_links(root, pages):
    for page in pages:
        text = re.sub(r"```.*?```|<!--.*?-->", "", page.read_text(encoding="utf-8"), flags=re.DOTALL)
        for link in re.findall(r"\]\(([^)#]+)", text):
            if not re.match(r"[a-z]+:", link) and not (page.parent / link).exists():
                raise Wrong(f"{page.relative_to(root)}: the link {link} leads nowhere")


def check_indexes(root):
    index = (root / "docs" / "README.md").read_text(encoding="utf-8")
    for file in sorted((root / "docs").glob("*.*")):
        if file.name != "README.md" and f"]({file.name})" not in index:
            raise Wrong(f"docs/README.md does not lead to {file.name}")
    for folder in sorted(path for path in (root / "src").iterdir() if path.is_dir()):
        readme = folder / "README.md"
        if not readme.exists():
            raise Wrong(f"src/{folder.name} has no README.md")
        lines = [line for line in readme.read_text(encoding="utf-8").splitlines() if line]
        if len(lines) != 5 or lines[0] != f"# {folder.name}":
            raise Wrong(f"src/{folder.name}/README.md has not its name and four lines")
        for file in re.findall(r"`([a-z_/]+\.[a-z.]+)`", "\n".join(lines)):
            if not (folder / file).exists():
                raise Wrong(f"src/{folder.name}/README.md: there is no {file}")


def main():
    runner = Runner(sys.argv[1], sys.argv[2], json.loads(sys.argv[3]))
    root = runner.root
    check_self(runner)
    pages = [root / "README.md", *sorted((root / "docs").glob("*.md"))]
    try:
        check_indexes(root)
        check_links(root, [*pages, root / "HACKING.md", root / "CHANGELOG.md", *root.glob("src/*/README.md")])
        runner.commands = runner.codes = 0
        for page in pages:
            if page.name not in GENERATED:
                runner.page(str(page.relative_to(root)), page.read_text(encoding="utf-8"))
    except Wrong as wrong:
        sys.exit(str(wrong))
    print(f"{runner.commands} command lines and {runner.codes} blocks of code were run. Not run:", *runner.not_run, sep="\n  ")
    if runner.commands < 10 or runner.codes < 5:
        sys.exit("the command lines or the blocks of code were not found")


main()
