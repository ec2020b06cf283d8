"""Tries the pieces for other repositories: check_ci.py PROGRAM ROOT CASES.

They have to be YAML, use options that the program has, and do what they say to files that pass and that fail. Ends with
status 77 when YAML cannot be read here; what does not need that is tried first.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

SKIPPED = 77


def shell(folder, program, script):
    """Runs lines as a build server does: in bash, up to the first that fails."""
    path = os.path.dirname(os.path.abspath(program)) + os.pathsep + os.environ["PATH"]
    return subprocess.run(["bash", "-e", "-c", script], cwd=folder, env={**os.environ, "PATH": path}, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def check_options(program, pieces):
    known = subprocess.run([program, "--help"], stdout=subprocess.PIPE, check=True, text=True).stdout
    known = set(re.findall(r"--[a-z][a-z-]*", known))
    calls = 0
    for piece in pieces:
        for line in re.findall(r"\bverimark ((?:--\S+ ?)+)", piece.read_text(encoding="utf-8")):
            calls += 1
            for option in line.split():
                assert option == "--" or option.split("=")[0] in known, f"{piece}: no option {option}"
    assert calls >= 4, "the calls were not found"


def check_runs(program, folder, script, passing, failing):
    """The script's status is 0 on files that pass, and another on files that fail, below the folder and in any case."""
    for files, passes in [(passing, True), (failing, False)]:
        below = folder / "models of a vendor"
        shutil.rmtree(below, ignore_errors=True)
        below.mkdir(parents=True)
        for file in files:
            shutil.copy(file, below)
        done = shell(folder, program, script)
        assert (done.returncode == 0) == passes, f"{script}\n{done.stdout}"


def main():
    program, root, cases = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    pieces = root / "examples" / "ci"
    check_options(program, [*pieces.iterdir()])
    passing = [root / "examples" / name for name in ("board.ibs", "clock.ibs", "module.ebd", "receiver.ami")]
    failing = [cases / "header" / "faults42.ibs"]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        shutil.copy(pieces / "Makefile", folder)
        if shutil.which("make") is None:
            print("The Makefile is left out: make is not at hand.")
        else:
            check_runs(program, folder, "make check-ibis", passing, failing)
        try:
            import yaml
        except ImportError:
            print("The YAML files are left out: python3-yaml is not at hand.")
            return SKIPPED

        def load(path):
            return yaml.safe_load(path.read_text(encoding="utf-8"))

        [hook] = load(root / ".pre-commit-hooks.yaml")
        assert load(pieces / "pre-commit.yaml")["repos"][0]["hooks"] == [{"id": hook["id"]}]
        assert {"id", "name", "entry", "language", "files"} <= hook.keys()
        for path, taken in [("a/b.ibs", True), ("B.PKG", True), ("c.Ebd", True), ("d.ami", True), ("ibs", False), ("a.ibs.txt", False)]:
            assert bool(re.search(hook["files"], path)) == taken, path
        entry = " ".join([hook["entry"], *hook["args"], '"models of a vendor"/*'])
        check_runs(program, folder, entry, passing, failing)

        steps = load(pieces / "github.yml")["jobs"]["verimark"]["steps"]
        [check] = [step for step in steps if "verimark --format=sarif" in step.get("run", "")]
        [upload] = [step for step in steps if "upload-sarif" in step.get("uses", "")]
        check_runs(program, folder, check["run"], passing, failing)
        assert (folder / upload["with"]["sarif_file"]).stat().st_size > 0, "the findings of a file that fails"

        job = load(pieces / "gitlab.yml")["verimark"]
        check_runs(program, folder, "\n".join(job["script"]), passing, failing)
        ElementTree.parse(folder / job["artifacts"]["reports"]["junit"])
        assert job["artifacts"]["when"] == "always"
    return 0


if __name__ == "__main__":
    sys.exit(main())
