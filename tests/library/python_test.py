"""The Python package, as it is installed. usage: python_test.py EXAMPLES"""

import gc
import math
import pathlib
import sys
import threading
import unittest

import numpy

import kestrel

EXAMPLES = pathlib.Path(sys.argv.pop())


class Package(unittest.TestCase):
    def test_findings(self):
        text = "[IBIS Ver] 4.2\n[File Name] a.ibs\n[File Rev] 1\n[Colour]\n[End]\n"
        file = kestrel.read_text("a.ibs", text)
        self.assertFalse(file.passed)
        finding = next(one for one in file.findings if one.code == "916")
        self.assertEqual((finding.level, finding.file, finding.line, finding.exact, finding.text),
                         ("error", "a.ibs", 4, True, "Invalid Keyword: Colour"))
        self.assertEqual(file.models, [])
        missing = kestrel.read(EXAMPLES / "nowhere.ibs")
        self.assertFalse(missing.is_read)
        self.assertEqual(len(missing.findings), 1)
        self.assertEqual(kestrel.read_text("a.ibs", b"\xff").findings[0].file, "a.ibs")
        # A name that is no text in UTF-8 comes back as Python has it.
        self.assertEqual(kestrel.read_text("\udcff.ibs", "").name, "\udcff.ibs")

    def test_records(self):
        file = kestrel.read(EXAMPLES / "board.ibs")
        self.assertTrue(file.passed and file.is_checked)
        self.assertEqual(file.header.date, "21 November 2026")
        self.assertEqual([model.name for model in file.models], ["clk_in", "dq_io", "irq_od"])
        model = file.model("dq_io")
        self.assertEqual((model.type, model.vmeas), ("I/O", 1.5))
        numpy.testing.assert_allclose(tuple(model.c_comp), (3e-12, 2.5e-12, 3.5e-12), rtol=1e-12)
        self.assertFalse(model.pullup_reference)
        self.assertEqual(model.ramp.dv_r.max, 1.34)
        self.assertEqual(model.rising_waveforms[0].v_fixture, 0)
        component = file.components[0]
        self.assertEqual([pin.model for pin in component.pins].count("GND"), 2)
        self.assertTrue(math.isnan(component.pins[4].r_pin))
        with self.assertRaises(KeyError):
            file.model("none")

    def test_tables(self):
        table = kestrel.read(EXAMPLES / "board.ibs").model("irq_od").pulldown
        gc.collect()  # the table keeps what it shows
        self.assertEqual((table.shape, table.dtype), ((11, 4), numpy.float64))
        numpy.testing.assert_allclose(table[9], [3.3, 35.1e-3, 27.4e-3, 43.6e-3], rtol=1e-12)
        numpy.testing.assert_allclose(numpy.interp(0.5, table[:, 0], table[:, 1]), 11.5e-3, rtol=1e-12)
        self.assertFalse(table.flags.writeable or table.flags.owndata)
        with self.assertRaises(ValueError):
            table[0, 0] = 1
        file = kestrel.read(EXAMPLES / "board.ibs")
        first, second = file.model("clk_in").gnd_clamp, file.model("clk_in").gnd_clamp
        self.assertEqual(first.ctypes.data, second.ctypes.data)  # not a copy
        self.assertEqual(file.model("clk_in").pulldown.shape, (0, 4))

    def test_companions(self):
        board = (EXAMPLES / "module.ebd").read_text()
        asked = []

        def companion(path):
            asked.append(path)
            beside = EXAMPLES / pathlib.Path(path).name
            return beside.read_bytes() if beside.exists() else None

        self.assertTrue(kestrel.read_text("sub/module.ebd", board, companion=companion).passed)
        self.assertIn("sub/board.ibs", asked)
        self.assertFalse(kestrel.read_text("sub/module.ebd", board, companion=lambda path: None).passed)

        def refuse(path):
            raise LookupError(path)

        with self.assertRaises(LookupError):
            kestrel.read_text("module.ebd", board, companion=refuse)
        with self.assertRaises(TypeError):
            kestrel.read_text("module.ebd", board, companion=lambda path: 7)
        component = "[IBIS Ver] 4.2\n[Component] C\n[Package Model] P\n[Pin] signal_name model_name\n1 A NC\n[End]\n"
        with self.assertRaises(TypeError):
            kestrel.read_text("a.ibs", component, companion=lambda path: None, list_folder=lambda folder: 7)

    def test_options(self):
        codes = [one.code for one in kestrel.read(EXAMPLES / "clock.ibs", advice=True).findings]
        self.assertEqual(codes, ["Q407", "Q207", "Q207"])
        self.assertEqual(kestrel.read(EXAMPLES / "clock.ibs").findings, [])
        later = "[IBIS Ver] 7.0\n"
        self.assertFalse(kestrel.read_text("a.ibs", later, later_versions=False).is_checked)

    def test_threads(self):
        wrong = []

        def work():
            for _ in range(20):
                if kestrel.read(EXAMPLES / "board.ibs").model("dq_io").pullup[12, 3] > -61e-3:
                    wrong.append(1)

        threads = [threading.Thread(target=work) for _ in range(3)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong, [])


if __name__ == "__main__":
    unittest.main()
