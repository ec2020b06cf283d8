#!/usr/bin/env python3
"""Measures verimark over many files: many_files.py PROGRAM FOLDER SAMPLE...

Copies the samples (.ibs files of real size) under new names, with the file names in them changed to match, to
FOLDER/200, FOLDER/2000 and FOLDER/20000, and prints files per second, megabytes per second and the peak memory of
checking each of them.
"""
import os
import re
import subprocess
import sys
import time

PROGRAM, FOLDER, *SAMPLES = sys.argv[1:]
COUNTS = (200, 2000, 20000)
PER_FOLDER = 500
ROUNDS = 3


def make(count):
    """Writes the files of one measurement, unless they are there. Their bytes in all."""
    texts = []
    for sample in SAMPLES:
        with open(sample, "rb") as file:
            texts.append(file.read())
    size = 0
    for i in range(count):
        name = f"part{i:05}.ibs"
        path = os.path.join(FOLDER, str(count), f"{i // PER_FOLDER:03}", name)
        text = re.sub(rb"(?im)^(\[File[ _]Name\])[^\r\n]*", rb"\1 " + name.encode(), texts[i % len(texts)], count=1)
        size += len(text)
        if not os.path.exists(path):
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                file.write(text)
    return size


def measure(count, jobs, form):
    """Seconds and peak memory in MB of one run."""
    # Another program in between: what python starts counts python's memory as its own.
    peak = os.path.join(FOLDER, "peak")
    call = ["/usr/bin/time", "-q", "-f", "%M", "-o", peak, PROGRAM, f"-j{jobs}", "-f", form,
            os.path.join(FOLDER, str(count))]
    begin = time.monotonic()
    with open(os.devnull, "wb") as nowhere:
        subprocess.run(call, stdout=nowhere, stderr=nowhere, check=False)
    seconds = time.monotonic() - begin
    with open(peak, encoding="ascii") as file:
        return seconds, int(file.read()) / 1024


def main():
    print("  files     MB  jobs  form   files/s    MB/s  peak MB")
    for count in COUNTS:
        size = make(count) / 1e6
        for form in ("text", "json"):
            for jobs in (1, 2):
                runs = [measure(count, jobs, form) for _ in range(ROUNDS)]
                seconds = min(run[0] for run in runs)
                peak = max(run[1] for run in runs)
                print(f"{count:7} {size:6.0f} {jobs:5}  {form:5} {count / seconds:8.0f} {size / seconds:7.0f} {peak:8.1f}",
                      flush=True)


main()
