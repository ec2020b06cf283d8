"""Checks IBIS files and gives what is in them.

    file = kestrel.read("board.ibs")
    for finding in file.findings:
        print(finding.file, finding.line, finding.level, finding.text)
    table = file.model("dq_io").pulldown  # volts, then typical, minimum and maximum amperes

A File has its findings and records as attributes, named as in the C++ library. Tables are NumPy arrays of four
columns that show the memory of the library: nothing is copied, nothing can be written, and the memory lives as long as
somebody uses it. Values are in volts, amperes, ohms, henries, farads, seconds and degrees Celsius; what a file does not
give, or gives as "NA", is nan.
"""

import os

from . import _kestrel
from ._kestrel import Component, Corners, File, Finding, Model, PackageModel, Selector, Submodel, __version__

__all__ = ["read", "read_text", "Component", "Corners", "File", "Finding", "Model", "PackageModel", "Selector",
           "Submodel", "__version__"]


def read(path, *, later_versions=True, advice=False, cautions=False, companion=None, list_folder=None):
    """Checks the file of this name and returns a File. What is wrong with it, or that there is none, is a finding.

    later_versions: versions 6.0 to 7.x are read by the rules of 5.1; without it they are refused
    advice, cautions: also give findings of these levels
    companion: gives the content (bytes or str) of a file that the checked one leads to, by its path, or None for none;
        the disk is then not looked at. What it raises leaves this function.
    list_folder: gives the names of the files in a folder; only asked beside `companion`
    """
    return _kestrel.read(os.fsencode(path), later_versions, advice, cautions, companion, list_folder)


def read_text(name, text, *, later_versions=True, advice=False, cautions=False, companion=None, list_folder=None):
    """The same for a content (bytes or str). The name says what kind of file it is, and where its companions are."""
    return _kestrel.read_text(os.fsencode(name), text, later_versions, advice, cautions, companion, list_folder)
