"""Chromium without a window, steered through its driver."""

import base64
import json
import re
import shutil
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

DEADLINE = 60  # seconds; what is to happen happens much sooner, on any machine
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
KEYS = {"Tab": "\ue004", "Enter": "\ue007", "Space": "\ue00d", "Escape": "\ue00c"}
ARGUMENTS = ("--headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking "
             "--disable-component-update --disable-sync --disable-dev-shm-usage --window-size=1280,900").split()

without_proxy = urllib.request.build_opener(urllib.request.ProxyHandler({}))


def wait(condition, what):
    """The first value of the condition that counts as true."""
    end = time.monotonic() + DEADLINE
    while not (value := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"never came true: {what}")
        time.sleep(0.03)
    return value


class Browser:
    def __init__(self):
        self.home = tempfile.mkdtemp(prefix="velta-panel-")
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, text=True)
        ports = (re.search(r"started successfully on port (\d+)", line) for line in self.driver.stdout)
        self.base = f"http://127.0.0.1:{next(filter(None, ports))[1]}/session"
        chrome = {"args": [*ARGUMENTS, f"--user-data-dir={self.home}"]}
        always = {"goog:chromeOptions": chrome, "goog:loggingPrefs": {"browser": "ALL"}}
        session = self.ask("POST", "", {"capabilities": {"alwaysMatch": always}})
        self.base += "/" + session["sessionId"]

    def close(self):
        try:
            self.ask("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()
            shutil.rmtree(self.home, ignore_errors=True)

    def ask(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        try:
            with without_proxy.open(request, timeout=DEADLINE) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(json.load(error)["value"]["message"]) from None

    def open(self, url):
        self.ask("POST", "/url", {"url": url})

    def run(self, script, *arguments):
        """What the script returns; an argument is arguments[0]."""
        return self.ask("POST", "/execute/sync", {"script": script, "args": arguments})

    def text(self, css):
        return self.run("return document.querySelector(arguments[0])?.textContent", css)

    def click(self, css):
        found = self.ask("POST", "/element", {"using": "css selector", "value": css})
        self.ask("POST", f"/element/{found[ELEMENT]}/click", {})

    def press(self, key):
        value = KEYS.get(key, key)
        presses = [{"type": kind, "value": value} for kind in ("keyDown", "keyUp")]
        self.ask("POST", "/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": presses}]})

    def devtools(self, command, **parameters):
        return self.ask("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def resize(self, width, height, scale=1):
        self.devtools("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=scale,
                      mobile=width < 600)

    def prefer(self, scheme):
        self.devtools("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def errors(self):
        """What the console has said since it was asked last."""
        log = self.ask("POST", "/se/log", {"type": "browser"})
        return [entry["message"] for entry in log if entry["level"] in ("SEVERE", "WARNING")]

    def save_screenshot(self, path):
        picture = self.devtools("Page.captureScreenshot", format="png")["data"]
        with open(path, "wb") as file:
            file.write(base64.b64decode(picture))
