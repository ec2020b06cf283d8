"""A headless Chromium for the tests of the report, which sees what pages log and request."""

import json
import pathlib
import subprocess
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service


class Browser:
    """Opens pages from the disk. Whatever they would load from a network is not found, and noted."""

    def __init__(self, script=True, width=1280, height=900):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        self._profile = tempfile.TemporaryDirectory()
        for argument in ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                         "--disable-background-networking", "--disable-component-update",
                         "--host-resolver-rules=MAP * ~NOTFOUND", f"--window-size={width},{height}",
                         f"--user-data-dir={self._profile.name}"]:
            options.add_argument(argument)
        if not script:
            options.add_experimental_option("prefs", {"profile.managed_default_content_settings.javascript": 2})
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.driver.set_page_load_timeout(120)

    def close(self):
        self.driver.quit()
        self._profile.cleanup()

    def open(self, path, fragment=""):
        """Opens a file; returns what was logged to the console and the addresses that were requested."""
        for kind in ("browser", "performance"):
            self.driver.get_log(kind)
        self.driver.get("about:blank")
        self.driver.get(pathlib.Path(path).resolve().as_uri() + fragment)
        return self.noted(path)

    def noted(self, path):
        """What was logged and requested since the page was opened, the page itself aside."""
        logged = [entry["message"] for entry in self.driver.get_log("browser")]
        own = pathlib.Path(path).resolve().as_uri()
        requested = []
        for entry in self.driver.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] != "Network.requestWillBeSent":
                continue
            url = message["params"]["request"]["url"].split("#")[0]
            if message["params"]["documentURL"].startswith(own) and url != own:
                requested.append(url)
        return logged, requested

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def texts(self, selector):
        return self.run("return Array.from(document.querySelectorAll(arguments[0]), e => e.textContent)", selector)

    def count(self, selector):
        return self.run("return document.querySelectorAll(arguments[0]).length", selector)

    def media(self, **features):
        """Has pages see other media features, such as prefers_color_scheme="dark"."""
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [
            {"name": name.replace("_", "-"), "value": value} for name, value in features.items()]})

    def size(self, width, height):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})

    def screenshot(self, path):
        pathlib.Path(path).write_bytes(self.driver.get_screenshot_as_png())


def write_report(program, inputs, page, *options):
    """Has verimark write a report; its exit status is returned, which tells of the files."""
    result = subprocess.run([program, "--quiet", f"--report={page}", *options, *map(str, inputs)],
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=False)
    if result.returncode not in (0, 1, 2) or not pathlib.Path(page).exists():
        raise AssertionError(f"no report: status {result.returncode}: {result.stderr}")
    return result.returncode


def tidy_complaints(page):
    """What Debian's tidy says of a page. It knows no links in pictures, which HTML has."""
    result = subprocess.run(["tidy", "-quiet", "-errors", str(page)], capture_output=True, check=False)
    lines = result.stderr.decode("utf-8", "replace").splitlines()
    known = ("<a> proprietary attribute \"href\"", "<a> proprietary attribute \"class\"")
    return [line for line in lines if not line.endswith(known)]
