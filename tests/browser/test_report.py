#!/usr/bin/env python3
"""Opens reports in a browser: nothing runs that is in a file, nothing is requested, what the page offers works.

usage: test_report.py VERIMARK SOURCE_FOLDER [SCREENSHOT_FOLDER]
"""

import base64
import pathlib
import re
import sys
import tempfile
import unittest

from browser import Browser, tidy_complaints, write_report
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

PROGRAM = ""
SOURCE = pathlib.Path()
SHOTS = None

ATTACKS = [
    "<img/src=x/onerror=window.pwned=1>",
    "</script><script>window.pwned=2</script>",
    "\"onmouseover=window.pwned=3//",
    "'><svg/onload=window.pwned=4>",
    "</title></style></textarea><b>x",
    "javascript:window.pwned=5",
    "--><!--]]>&lt;&amp;{{7*7}}${7*7}",
    "</pre><iframe/src=//example.com>",
]


def model(name, extra=""):
    """A small push-pull model whose tables are straight lines: 50 ohm low, 100 ohm high, at 3.3 V."""
    return f"""[Model] {name}
Model_type I/O
Vinl = 0.8
Vinh = 2.0
C_comp 2pF 1pF 3pF
[Voltage Range] 3.3 3.0 3.6
[Pulldown]
-3.3 -66mA -60mA -72mA
0 0 0 0
6.6 132mA 120mA 144mA
[Pullup]
-3.3 33mA 30mA 36mA
0 0 0 0
6.6 -66mA -60mA -72mA
[Ramp]
dV/dt_r 0.66/1n 0.6/1n 0.72/1n
dV/dt_f 0.99/1n 0.9/1n 1.08/1n
[Rising Waveform]
R_fixture = 50
V_fixture = 0
0n 0 0 0
1n 0 0 0
2n 1.1 1.0 1.2
5n 1.1 1.0 1.2
{extra}"""


def library(names, pins=None, extra=""):
    pins = pins or [(f"{i}", f"s{i}", name) for i, name in enumerate(names, 1)]
    rows = "\n".join(" ".join(pin) for pin in pins)
    return (f"[IBIS Ver] 4.2\n[File Name] lib.ibs\n[File Rev] 1\n[Component] Chip\n[Manufacturer] Ours\n[Package]\n"
            f"R_pkg 0.1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n[Pin] signal_name model_name R_pin L_pin C_pin\n"
            f"{rows}\n{extra}" + "".join(map(model, names)) + "[End]\n")


def hostile():
    """A file whose every name attacks, with findings that repeat them."""
    names = [attack[:40] for attack in ATTACKS]
    pins = [(attack[:5], attack[:20], names[i]) for i, attack in enumerate(ATTACKS)]
    selectors = "".join(f"[Model Selector] s{i}{attack[:30]}\n{names[i]} {attack}\n" for i, attack in enumerate(ATTACKS))
    text = library(names, pins, selectors)
    text = text.replace("[Component] Chip", "[Component] " + ATTACKS[0]).replace("Ours", ATTACKS[3])
    text = text.replace("[File Rev] 1\n", f"[File Rev] {ATTACKS[2]}\n[Date] {ATTACKS[4]}\n[Source] {ATTACKS[1]}\n"
                                           f"[Notes] {ATTACKS[7]}\n")
    text = text.replace("[End]", f"[{ATTACKS[0][:20]}]\n{ATTACKS[1]} bad line\n[Submodel] {ATTACKS[5]}\n"
                                 f"Submodel_type {ATTACKS[6]}\n[End]")
    return text.encode() + b"| \xff\xfe\x00\x1b[31m \xc3\n"


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.path = pathlib.Path(cls.folder.name)
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.folder.cleanup()

    def page(self, name, *contents, options=()):
        """Writes input files and the report of them; a content is text, bytes or the path of a file that is there."""
        inputs = []
        for number, content in enumerate(contents):
            if isinstance(content, pathlib.Path):
                inputs.append(content)
                continue
            inputs.append(self.path / f"{name}{number}.ibs")
            inputs[-1].write_bytes(content if isinstance(content, bytes) else content.encode())
        page = self.path / f"{name}.html"
        write_report(PROGRAM, inputs, page, *options)
        return page

    def opened(self, page):
        """Opens a page and holds it to what is true of all of them."""
        logged, requested = self.browser.open(page)
        self.assertEqual(logged, [])
        self.assertEqual(requested, [])
        self.assertEqual(tidy_complaints(page), [])
        self.assertEqual(self.browser.run("""
            const ids = Array.from(document.querySelectorAll('[id]'), e => e.id);
            return ids.filter((id, place) => ids.indexOf(id) !== place)"""), [], "ids that are there twice")
        self.assertEqual(self.browser.run("""
            return Array.from(document.querySelectorAll('a')).map(a => a.getAttribute('href'))
                .filter(href => !/^#[a-z0-9]+$/.test(href) || !document.getElementById(href.slice(1)))"""), [])
        self.assertEqual(self.browser.run("""
            const outside = [];
            for (const path of document.querySelectorAll('svg.plot .d path')) {
                const box = path.getBBox();
                if (box.x < 0 || box.y < 0 || box.x + box.width > 6000 || box.y + box.height > 4000)
                    outside.push(path.getAttribute('d'));
            }
            return outside"""), [], "lines outside of their frames")
        return self.browser

    def test_examples(self):
        for file in sorted((SOURCE / "examples").glob("*.*")):
            with self.subTest(file=file.name):
                browser = self.opened(self.page(file.stem, file))
                self.assertEqual(browser.texts("h2"), [str(file)])
                if SHOTS:
                    browser.screenshot(SHOTS / f"{file.stem}.png")

    def test_all_examples_on_one_page(self):
        files = sorted((SOURCE / "examples").glob("*.*"))
        browser = self.opened(self.page("all", *files))
        self.assertEqual(browser.texts("#files tbody td:first-child"), [str(file) for file in files])
        # The list leads, although it is known last.
        self.assertEqual(browser.run("return document.querySelector('h1').nextElementSibling.id"), "files")

    def test_cases(self):
        """Whatever the cases of the checks hold, the pages of all of them are right."""
        files = sorted(file for folder in ("verimark", "model", "component", "board", "package", "algmod", "reader",
                                                          "testdata")
                       for file in (SOURCE / "tests" / "cases" / folder).rglob("*.*")
                       if file.suffix in (".ibs", ".ebd", ".pkg", ".ami"))
        self.assertGreater(len(files), 50)
        self.opened(self.page("cases", *files))

    def test_names_are_shown_and_not_run(self):
        browser = self.opened(self.page("hostile", hostile()))
        self.assertIsNone(browser.run("return window.pwned ?? null"))
        self.assertEqual(browser.count("img, iframe, main script, main style, b script"), 0)
        self.assertEqual(browser.count("script"), 1)
        self.assertEqual(browser.texts(".component h4"), [ATTACKS[0]])
        self.assertEqual(browser.texts(".model h4")[:len(ATTACKS)], [attack[:40] for attack in ATTACKS])
        self.assertIn(ATTACKS[1], browser.texts("dd"))
        browser.run("document.querySelectorAll('details').forEach(fold => { fold.open = true; })")
        ActionChains(browser.driver).move_to_element(browser.driver.find_element(By.CSS_SELECTOR, ".model h4")).perform()
        for element in browser.driver.find_elements(By.CSS_SELECTOR, "svg.plot")[:3]:
            ActionChains(browser.driver).move_to_element(element).perform()
        self.assertIsNone(browser.run("return window.pwned ?? null"))
        self.assertEqual(browser.noted(self.path / "hostile.html"), ([], []))

    def test_hostile_file_names(self):
        folder = self.path / "<img src=x onerror=alert(1)>"
        folder.mkdir()
        file = folder / "</title><script>window.pwned=1</script>&\".ibs"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(library(["m"]))
        browser = self.opened(self.page("names", file))
        self.assertEqual(browser.texts("h2"), [str(file)])
        self.assertEqual(browser.run("return document.title"), str(file))
        self.assertIsNone(browser.run("return window.pwned ?? null"))

    def test_every_byte(self):
        names = bytes(b for b in range(1, 256) if b not in (10, 13))
        text = library(["m"]).encode().replace(b"Ours", names[:40]).replace(b"[File Rev] 1", b"[File Rev] " + names)
        self.opened(self.page("bytes", text, bytes(range(256)) * 20, b"", library(["m"]).encode()[:300]))

    def test_a_comparison_shows_both_curves(self):
        old = library(["a", "b", "gone"])
        new = library(["a", "b", "come"]).replace("6.6 132mA 120mA 144mA", "6.6 198mA 120mA 144mA", 1)
        new = new.replace("Ours", "Theirs")
        browser = self.opened(self.page("changes", old, new, options=["--compare"]))
        self.assertEqual(browser.texts(".outcome .verdict"), ["Different"])
        # The model that changed has a section, with the line of its table from the rail up in both files: at 6.6 V
        # the new typ one is half as high again, while that of min is where it was.
        self.assertEqual(browser.texts(".model h4"), ["a", "come"])
        self.assertEqual(browser.texts(".model li"),
                         ["[Pulldown] typ: up to 50 % more current (at 6.6 V: 198 mA, was 132 mA)", "renamed, was gone"])
        self.assertEqual(browser.texts("p.names"), ["Unchanged: b"])
        self.assertIn("Model come", browser.texts(".long td:first-child"))
        self.assertEqual(browser.texts(".model figcaption"),
                         ["Pulldown from the pulldown's rail up; typ: up to 50 % more current (at 6.6 V: 198 mA, was 132 mA)"])
        self.assertEqual(browser.texts("h2"), ["changes1.ibs compared with changes0.ibs"])
        self.assertEqual(browser.texts(".legend b"), ["typ", "min", "max", "typ", "min", "max", "typical rail"])
        ends = browser.run("""
            const end = name => document.querySelector('.d > path.' + name).getPointAtLength(1e6).y;
            return Object.fromEntries(['t', 'n', 'x', 'w-t', 'w-n', 'w-x'].map(name => [name, end(name)]))""")
        self.assertLess(ends["t"], ends["w-t"])
        self.assertEqual(ends["n"], ends["w-n"])
        self.assertEqual(ends["x"], ends["w-x"])
        # They are told apart by more than their color, and the old ones lie below.
        style = "return getComputedStyle(document.querySelector('.d > path.' + arguments[0]))[arguments[1]]"
        self.assertNotEqual(browser.run(style, "t", "strokeWidth"), browser.run(style, "w-t", "strokeWidth"))
        self.assertEqual(browser.run("return Array.from(document.querySelectorAll('.d > path'), p => p.classList[0])"),
                         ["r", "w-x", "w-n", "w-t", "x", "n", "t"])
        plot = browser.driver.find_element(By.CSS_SELECTOR, ".model svg.plot")
        ActionChains(browser.driver).move_to_element(plot).perform()
        rows = browser.texts(".model .cursor text")
        self.assertTrue(any(row.startswith("old typ ") for row in rows), rows)
        if SHOTS:
            browser.screenshot(SHOTS / "changes.png")

    def test_a_comparison_shows_models_of_one_file(self):
        one, two = library(["a"]), library(["a", "b"])
        curves = "return Array.from(document.querySelectorAll('#%s .plot:first-of-type .d'), d => Array.from(d.children, p => p.classList[0]).join(' '))"
        for old, new, word, lines in ((one, two, "added", "r x n t"), (two, one, "removed", "r w-x w-n w-t")):
            browser = self.opened(self.page(word, old, new, options=["--compare"]))
            self.assertEqual(browser.texts(".model h4"), ["b"])
            self.assertEqual(browser.texts(".model h4 + .sub"), [word])
            section = browser.run("return document.querySelector('.model').id")
            self.assertEqual(browser.texts(".model figcaption"), [
                "Pulldown from the pulldown's rail up", "Pullup from the pullup's rail down", "Rising, 50\u00a0\u03a9 to 0\u00a0V"])
            self.assertEqual(browser.run("return Array.from(document.querySelectorAll('p.names a'), a => a.getAttribute('href'))"),
                             ["#" + section])
            self.assertEqual(browser.run(curves % section), [lines, lines, lines[2:]])

    def test_files_of_one_name_are_compared(self):
        files = [self.path / folder / "lib" / "same.ibs" for folder in ("old", "new")]
        for file, names in zip(files, (["a"], ["a", "b"])):
            file.parent.mkdir(parents=True)
            file.write_text(library(names))
        browser = self.opened(self.page("same", *files, options=["--compare"]))
        self.assertEqual(browser.texts("h2"), ["new/lib/same.ibs compared with old/lib/same.ibs"])

    def test_a_comparison_of_hostile_files(self):
        old = hostile()
        new = old.replace(b"132mA", b"99mA").replace(b"s1", b"s9")
        browser = self.opened(self.page("compared", old, new, options=["--compare", "--all"]))
        self.assertIsNone(browser.run("return window.pwned ?? null"))
        self.assertEqual(browser.texts(".model h4")[:len(ATTACKS)], [attack[:40] for attack in ATTACKS])

    def test_findings_are_filtered_and_sorted(self):
        bad = library(["a", "b"]).replace("Vinl = 0.8", "Vinl = x").replace("[Ramp]", "[Ramp]\nbad line")
        browser = self.opened(self.page("findings", bad))
        rows = "return Array.from(document.querySelectorAll('.findings tbody tr')).filter(r => !r.hidden).map(r => r.cells[%d].textContent)"
        lines = browser.run(rows % 0)
        self.assertGreater(len(lines), 3)
        box = browser.driver.find_element(By.CSS_SELECTOR, ".findings input")
        box.send_keys("model a")
        self.assertEqual(set(browser.run(rows % 4)), {"model a"})
        box.send_keys(Keys.BACKSPACE * 10)
        self.assertEqual(len(browser.run(rows % 0)), len(lines))
        browser.driver.find_element(By.CSS_SELECTOR, ".findings .error button").click()
        self.assertNotIn("error", browser.run(rows % 1))
        browser.driver.find_element(By.CSS_SELECTOR, ".findings .error button").click()
        sort = browser.driver.find_element(By.CSS_SELECTOR, ".findings th button")
        sort.click()
        ascending = [int(line) for line in browser.run(rows % 0)]
        self.assertEqual(ascending, sorted(ascending))
        sort.click()
        self.assertEqual([int(line) for line in browser.run(rows % 0)], sorted(ascending, reverse=True))
        # A link from a model shows its finding, also one that is filtered out, with the lines around it.
        box.send_keys("nothing has this")
        target = browser.run("return document.querySelector('ul.about a').getAttribute('href').slice(1)")
        browser.run("document.querySelector('ul.about a').click()")
        row = browser.driver.find_element(By.ID, target)
        self.assertTrue(row.is_displayed())
        self.assertTrue(row.find_element(By.TAG_NAME, "pre").is_displayed())
        number = row.find_element(By.TAG_NAME, "td").text
        self.assertEqual(row.find_element(By.CSS_SELECTOR, "pre b i").text, number)

    def test_many_pins(self):
        count = 3000
        pins = [(f"P{i}", f"net{i}", "m") for i in range(count)]
        browser = self.opened(self.page("pins", library(["m"], pins)))
        rows = "return Array.from(document.querySelectorAll('.component tbody tr')).filter(r => r.cells[0].textContent.startsWith('P') && !r.hidden).length"
        fold = browser.driver.find_element(By.CSS_SELECTOR, ".component details")
        self.assertFalse(fold.get_property("open"))
        fold.find_element(By.TAG_NAME, "summary").click()
        browser.run("return document.body.offsetHeight")
        self.assertEqual(browser.run(rows), 200)
        self.assertIn("3,000", fold.text)
        fold.find_element(By.XPATH, ".//button[text()='Show more rows']").click()
        self.assertEqual(browser.run(rows), 700)
        box = fold.find_element(By.CSS_SELECTOR, "input")
        box.send_keys("net2999")
        self.assertEqual(browser.run(rows), 1)
        link = fold.find_element(By.XPATH, ".//tr[not(@hidden)]//a[text()='m']")
        link.click()
        self.assertEqual(browser.run("return document.getElementById(location.hash.slice(1)).className"), "model")
        box.send_keys(Keys.BACKSPACE * 10)
        self.assertEqual(browser.run(rows), 200)

    def driver_waits(self, holds):
        WebDriverWait(self.browser.driver, 10).until(lambda driver: holds())

    def plot(self, title):
        return self.browser.driver.find_element(
            By.XPATH, f"//figure[figcaption[starts-with(normalize-space(), '{title}')]]//*[name()='svg']")

    def test_cursor_shows_values(self):
        browser = self.opened(self.page("cursor", library(["m"])))
        plot = self.plot("Pulldown")
        self.assertEqual(plot.get_attribute("aria-label") or
                         plot.find_element(By.XPATH, "./*[name()='title']").get_attribute("textContent"), "Pulldown of m")
        browser.run("arguments[0].scrollIntoView({block: 'center'}); arguments[0].focus()", plot)
        plot.send_keys(Keys.ARROW_RIGHT)
        # From the middle at 1.65 V a hundredth of 9.9 V to the right, into 50 ohm, 50 ohm and 50 ohm.
        rows = [text.replace("\u00a0", " ") for text in browser.texts(".cursor text")]
        self.assertEqual(rows[0], "1.749 V")
        values = {row.split(" ", 1)[0]: float(row.split(" ")[1]) for row in rows[1:]}
        self.assertAlmostEqual(values["typ"], 1000 * 1.749 / 50, delta=0.05)
        self.assertAlmostEqual(values["min"], 1000 * 1.749 / 6.6 * 0.120, delta=0.05)
        self.assertAlmostEqual(values["max"], 1000 * 1.749 / 6.6 * 0.144, delta=0.05)
        ActionChains(browser.driver).move_to_element(plot).perform()
        self.assertEqual(browser.count(".cursor"), 1)
        ActionChains(browser.driver).move_to_element(browser.driver.find_element(By.TAG_NAME, "footer")).perform()
        self.assertEqual(browser.count(".cursor"), 0)

    def test_labels_lie_beside_the_curves(self):
        # Pulldowns of 50, 55 and 45.8 ohm, into 10 and 50 kohm to 1 V: of the latter 1 mV is left, which nobody sees
        # on an axis up to 3.3 V.
        edges = "".join(f"[Rising Waveform]\nR_fixture = {ohms}\nV_fixture = 1\n0n 0 0 0\n1n 3.3 3 3.6\n" for ohms in ("10k", "50k"))
        longest = library(["m"]).replace("[End]", edges + "[End]")
        browser = self.opened(self.page("labels", SOURCE / "examples" / "board.ibs", longest))
        labels = [text.replace("\u00a0", " ") for text in browser.texts(".lh")]
        self.assertIn("low 4.56\u20265.47 mV", labels)
        self.assertEqual([text for text in labels if text.startswith("low 0.9") or text.startswith("low 1 m")], [])
        self.assertIn("low 0 V", [text.replace("\u00a0", " ") for text in browser.run("""
            const pictures = Array.from(document.querySelectorAll('figure'));
            const picture = pictures.find((figure) => figure.textContent.startsWith('Rising, 50\u00a0k'));
            return Array.from(picture.querySelectorAll('.lh'), (label) => label.textContent)""")])
        try:
            for width in (1280, 1100, 600, 390, 320):
                browser.size(width, 900)
                self.labels_have_room(browser)
        finally:
            browser.driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})
        # Also where a part is shown: labels of lines that are out of sight are, too.
        plot = browser.driver.find_element(By.CSS_SELECTOR, "svg.plot.w")
        browser.run("arguments[0].scrollIntoView({block: 'center'}); arguments[0].focus()", plot)
        plot.send_keys("+")
        shown = "return Array.from(arguments[0].querySelectorAll('.lh')).filter(l => l.style.display !== 'none').length"
        self.assertLess(browser.run(shown, plot), len(plot.find_elements(By.CSS_SELECTOR, ".lh")))
        plot.send_keys("0")
        self.assertEqual(browser.run(shown, plot), len(plot.find_elements(By.CSS_SELECTOR, ".lh")))

    def labels_have_room(self, browser):
        counts = browser.run("""
            return Array.from(document.querySelectorAll('svg.plot.w'), (plot) => {
                const right = plot.querySelector('.g').getBoundingClientRect().right;
                const picture = plot.getBoundingClientRect();
                const boxes = Array.from(plot.querySelectorAll('.lh'), (label) => label.getBoundingClientRect());
                const over = (a, b) => a !== b && Math.abs(a.top + a.bottom - b.top - b.bottom) < a.height * 1.5;
                return boxes.filter((box) => box.left < right || box.right > picture.right || box.top < picture.top ||
                                    boxes.some((other) => over(box, other))).length;
            })""")
        self.assertGreater(len(counts), 0)
        self.assertEqual(set(counts), {0})

    def test_lists_have_all_columns_in_sight(self):
        names = [f"a_model_with_a_name_of_{'many'[:i % 4 + 1]}_letters_{i}" for i in range(12)]
        parts = "\n".join(f"C_comp_{part} 2pF 1pF 3pF" for part in ("pullup", "pulldown", "power_clamp", "gnd_clamp"))
        rails = "[Pullup Reference] 1.8 1.7 1.9\n[Pulldown Reference] 0 0 0\n[POWER Clamp Reference] 2.5 2.4 2.6\n[GND Clamp Reference] 0 0 0"
        old = library(names).replace("C_comp 2pF 1pF 3pF", parts).replace("[Voltage Range] 3.3 3.0 3.6", rails)
        try:
            browser = self.opened(self.page("lists", old.replace("Vinl = 0.8", "Vinl = x")))
            browser.size(1100, 900)
            in_sight = "return Array.from(document.querySelectorAll('.long'), e => e.scrollWidth <= e.clientWidth)"
            self.assertNotIn(False, browser.run(in_sight))
            list_of_models = "details:has(a[href^='#']) .long tbody tr"
            rows = [row for row in browser.texts(list_of_models) if "C_comp" not in row and "power_clamp" in row]
            self.assertEqual(len(rows), 12)
            self.assertEqual({"1.8\u00a0V" in row for row in rows}, {True})
            browser = self.opened(self.page("list_of_changes", old, old.replace("132mA", "198mA"), options=["--compare"]))
            browser.size(1100, 900)
            self.assertEqual(browser.run(in_sight), [True])
            self.assertTrue(all(name in browser.texts(".long td:first-child")[0] for name in names))
        finally:
            browser.driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})

    def test_dragging_zooms(self):
        browser = self.opened(self.page("zoom", library(["m"])))
        plot = self.plot("Pulldown")
        browser.run("arguments[0].scrollIntoView({block: 'center'})", plot)
        ticks = "return Array.from(arguments[0].querySelectorAll('.tx text'), t => t.textContent)"
        before = browser.run(ticks, plot)
        self.assertEqual(before, ["\u22122", "0", "2", "4", "6"])
        width = plot.rect["width"]
        ActionChains(browser.driver).move_to_element_with_offset(plot, int(width * 0.1), 0).click_and_hold() \
            .move_by_offset(int(width * 0.2), 5).release().perform()
        zoomed = [float(text.replace("\u2212", "-")) for text in browser.run(ticks, plot)]
        self.assertIn("zoomed", plot.get_attribute("class"))
        self.assertGreater(min(zoomed), 1.65)
        self.assertLess(max(zoomed), 6.6)
        ActionChains(browser.driver).double_click(plot).perform()
        self.assertEqual(browser.run(ticks, plot), before)
        self.assertNotIn("zoomed", plot.get_attribute("class"))
        # The same picture as the program drew it.
        self.assertEqual(browser.run("return arguments[0].querySelector('.d').getTransformToElement ? 0 : 1", plot), 1)

    def test_a_matrix_shows_the_value_under_the_pointer(self):
        package = self.path / "matrix.pkg"
        package.write_text("[IBIS Ver] 4.2\n[File Name] matrix.pkg\n[File Rev] 1\n[Define Package Model] p\n[Manufacturer] Ours\n"
                           "[OEM] Ours\n[Description] A pair\n[Number Of Pins] 2\n[Pin Numbers]\nA\nB\n[Model Data]\n"
                           "[Inductance Matrix] Full_matrix\n[Row] A\n4n 1n\n[Row] B\n3n\n"
                           "[Capacitance Matrix] Full_matrix\n[Row] A\n2p -1p\n[Row] B\n2p\n[End Model Data]\n"
                           "[End Package Model]\n[End]\n")
        browser = self.opened(self.page("matrix", package))
        self.assertEqual(browser.run("return Array.from(document.querySelectorAll('.matrices pre'), p => p.getClientRects().length)"), [0, 0])
        grid = browser.driver.find_elements(By.CSS_SELECTOR, "svg.matrix")[1]
        browser.run("arguments[0].scrollIntoView({block: 'center'})", grid)
        quarter = int(grid.rect["width"] / 4)
        ActionChains(browser.driver).move_to_element_with_offset(grid, -quarter, quarter).perform()
        self.assertEqual(browser.texts("figure.matrix small:last-child")[1], "B, A: \u22121\u00a0pF")

    def test_without_script_everything_is_there(self):
        page = self.page("plain", library(["a", "b"]).replace("Vinl = 0.8", "Vinl = x"))
        plain = Browser(script=False)
        try:
            self.assertEqual(plain.open(page), ([], []))
            self.assertEqual(plain.driver.find_element(By.CSS_SELECTOR, ".verdict").text, "Failed")
            self.assertEqual(len(plain.driver.find_elements(By.CSS_SELECTOR, "input, button")), 0)
            self.assertEqual(len(plain.driver.find_elements(By.CSS_SELECTOR, ".model")), 2)
            for plot in plain.driver.find_elements(By.CSS_SELECTOR, "svg.plot"):
                self.assertEqual(len(plot.find_elements(By.XPATH, "./*[name()='title'] | ./*[name()='desc']")), 2)
            self.assertTrue(plain.driver.find_element(By.CSS_SELECTOR, ".findings summary").is_displayed())
        finally:
            plain.close()

    def test_screens(self):
        page = self.page("screens", SOURCE / "examples" / "board.ibs")
        browser = self.opened(page)
        try:
            light = browser.run("return getComputedStyle(document.body).backgroundColor")
            browser.media(prefers_color_scheme="dark")
            dark = browser.run("return getComputedStyle(document.body).backgroundColor")
            self.assertLess(sum(map(int, re.findall(r"\d+", dark)[:3])), 150)
            self.assertGreater(sum(map(int, re.findall(r"\d+", light)[:3])), 600)
            if SHOTS:
                browser.screenshot(SHOTS / "dark.png")
            browser.media()
            browser.size(360, 740)
            self.assertLessEqual(browser.run("return document.documentElement.scrollWidth"), 360)
            if SHOTS:
                browser.screenshot(SHOTS / "phone.png")
        finally:
            browser.driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})

    def test_print(self):
        names = [f"m{i}" for i in range(5)]
        browser = self.opened(self.page("print", library(names)))
        printed = base64.b64decode(browser.driver.execute_cdp_cmd("Page.printToPDF", {})["data"])
        pages = len(re.findall(rb"/Type\s*/Page\b", printed))
        self.assertGreaterEqual(pages, len(names) + 1)
        self.assertLessEqual(pages, 3 * len(names))
        if SHOTS:
            (SHOTS / "print.pdf").write_bytes(printed)

    def test_nothing_is_cut_off_in_print(self):
        name = "a_model_whose_name_is_as_long_as_names_may_be"[:40]
        pins = [("1", "a_signal_whose_name_is_as_long_as_it_may_be"[:40], name)]
        bad = library([name], pins).replace("Vinl = 0.8", "Vinl = x").replace("[Ramp]", "[Ramp]\nbad line")
        browser = self.opened(self.page("wide", bad))
        try:
            browser.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
            browser.size(680, 900)  # what the margins leave of a sheet
            browser.run("window.dispatchEvent(new Event('beforeprint'))")
            self.assertEqual(browser.run("""
                return Array.from(document.querySelectorAll('main *')).filter((e) => {
                    const box = e.getBoundingClientRect();
                    return box.width > 0 && box.right > 681 && getComputedStyle(e).clipPath === 'none';
                }).map((e) => e.outerHTML.slice(0, 80))"""), [])
            self.assertEqual(browser.count("th > button"), 0)  # heads with buttons would not be repeated
            self.assertEqual(browser.run("""
                return Array.from(document.querySelectorAll('input, button, nav, .tools'))
                    .filter((e) => e.getClientRects().length > 0).length"""), 0)
            browser.run("window.dispatchEvent(new Event('afterprint'))")
            self.assertGreater(browser.count("th > button"), 0)
        finally:
            browser.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": ""})
            browser.driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})

    def test_models_of_a_library_open_soon(self):
        names = [f"m{i}" for i in range(200)]
        page = self.page("library", library(names))
        browser = self.opened(page)
        self.browser.open(page)
        milliseconds = browser.run("const [entry] = performance.getEntriesByType('navigation'); return entry.loadEventEnd")
        self.assertLess(milliseconds, 3000)
        self.assertEqual(browser.count(".model"), 200)
        # Pictures far below are made when somebody comes near, or prints.
        self.assertEqual(browser.count(".model:nth-of-type(n + 150) svg.plot"), 0)
        browser.run("document.querySelectorAll('.model')[180].scrollIntoView()")
        self.driver_waits(lambda: browser.run("return document.querySelectorAll('.model')[180].querySelector('svg.plot') !== null"))
        self.assertEqual(browser.run("return document.querySelectorAll('.model')[180].querySelectorAll('svg.plot').length"),
                         browser.run("return document.querySelectorAll('.model')[0].querySelectorAll('svg.plot').length"))
        browser.run("window.dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(browser.count("noscript"), 0)
        self.assertEqual(browser.count("svg.plot"), 200 * browser.run("return document.querySelectorAll('.model')[0].querySelectorAll('svg.plot').length"))


if __name__ == "__main__":
    PROGRAM, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    if len(sys.argv) > 3:
        SHOTS = pathlib.Path(sys.argv[3])
        SHOTS.mkdir(parents=True, exist_ok=True)
    unittest.main(argv=sys.argv[:1], verbosity=2)
