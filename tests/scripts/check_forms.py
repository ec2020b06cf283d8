"""Holds what verimark writes of all test cases to the schemas: check_forms.py PROGRAM CASES SCHEMA [SARIF_SCHEMA].

Ends with status 77 when a check had to be left out and the others passed.
"""

import json
import os
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

SKIPPED = 77
ODD_NAME = b"odd \xff\x1b[31m\n\"<&,%:.ibs"


def find_files(folder):
    found = []
    for root, _, names in os.walk(os.fsencode(folder)):
        for name in sorted(names):
            if name.lower().endswith((b".ibs", b".pkg", b".ebd", b".ami")):
                found.append(os.path.join(root, name))
    # Neither there nor any text: its name shows up in every form.
    return sorted(found) + [os.path.join(os.fsencode(folder), ODD_NAME)]


def run(program, form, files):
    done = subprocess.run([program, "--format=" + form, *files], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    assert done.returncode == 2, f"{form}: status {done.returncode}"
    return done.stdout.decode("utf-8")  # fails on what is no UTF-8


def main():
    program, cases, schema_path, *rest = sys.argv[1:]
    sarif_path = rest[0] if rest else ""
    files = find_files(cases)
    whole = json.loads(run(program, "json", files))
    lines = [json.loads(line) for line in run(program, "jsonl", files).splitlines()]
    sarif = json.loads(run(program, "sarif", files))
    junit = ElementTree.fromstring(run(program, "junit", files))
    gcc = run_bytes_lines(program, files)

    findings = [finding for file in whole["files"] for finding in file["findings"]]
    assert len(whole["files"]) == whole["totals"]["files"] == len(junit.findall("testsuite")) == len(files) > 80
    assert lines == findings and len(findings) == len(sarif["runs"][0]["results"]) == gcc > 500
    for severity, count in (("error", "errors"), ("warning", "warnings"), ("note", "notes"), ("bug", "bugs")):
        assert sum(finding["severity"] == severity for finding in findings) == whole["totals"][count]
    assert sum(file["verdict"] == "failed" for file in whole["files"]) == whole["totals"]["failed"]
    assert len(junit.findall("testsuite/testcase/failure")) == whole["totals"]["failed"]
    assert len(junit.findall("testsuite/testcase/error")) == whole["totals"]["unread"]
    results = sarif["runs"][0]["results"]
    rules = {rule["id"] for rule in sarif["runs"][0]["tool"]["driver"]["rules"]}
    assert rules == {result["ruleId"] for result in results}

    try:
        import jsonschema
    except ImportError:
        print("The schemas are left out: there is no module jsonschema (python3-jsonschema).")
        return SKIPPED
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    validator.validate(whole)
    # The schema is held to as well: a field that it does not describe would be one that documents do not.
    known = schema["definitions"]["finding"]["properties"].keys()
    assert all(finding.keys() == known for finding in findings)
    if not os.path.isfile(sarif_path):
        print("The SARIF schema is left out: it is not at hand.")
        return SKIPPED
    with open(sarif_path, encoding="utf-8") as file:
        sarif_schema = json.load(file)
    jsonschema.validators.validator_for(sarif_schema)(sarif_schema).validate(sarif)
    print(f"{len(files)} files, {len(findings)} findings: all forms are valid.")
    return 0


def run_bytes_lines(program, files):
    done = subprocess.run([program, "--format=gcc", *files], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    return done.stdout.count(b"\n")


if __name__ == "__main__":
    sys.exit(main())
