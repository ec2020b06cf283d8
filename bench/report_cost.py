#!/usr/bin/env python3
"""What a report costs beside the check: time by the clock, processor time and bytes, as ratios.

usage: report_cost.py VERIMARK FILE...
Files of kestrel_generate, for example. Best of seven turns of each.
"""

import os
import subprocess
import sys
import tempfile

TURNS = 7


def seconds(command):
    """Time by the clock and processor time of a program that ends well, findings or not."""
    before = os.times()
    status = subprocess.run(command, stdout=subprocess.DEVNULL, check=False).returncode
    after = os.times()
    if status not in (0, 1):
        sys.exit(f"{command[0]} ended with status {status}")
    processor = after.children_user + after.children_system - before.children_user - before.children_system
    return after.elapsed - before.elapsed, processor


def main():
    program, files = sys.argv[1], sys.argv[2:]
    print("file                              MB   check s  report s  ratio  of processor time  page/file")
    with tempfile.TemporaryDirectory() as folder:
        page = os.path.join(folder, "page.html")
        for file in files:
            check = [program, "--quiet", "--jobs=1", file]
            pairs = [(seconds(check), seconds([*check, f"--report={page}"])) for _ in range(TURNS)]
            checked, reported = ([min(times) for times in zip(*column)] for column in zip(*pairs))
            size = os.path.getsize(file)
            ratios = [after / max(before, 1e-9) for before, after in zip(checked, reported)]
            print(f"{os.path.basename(file):30} {size * 1e-6:6.1f} {checked[0]:9.3f} {reported[0]:9.3f} "
                  f"{ratios[0]:6.2f} {ratios[1]:18.2f} {os.path.getsize(page) / size:10.2f}")


if __name__ == "__main__":
    main()
