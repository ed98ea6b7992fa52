"""A browser for tests: headless Chromium, driven through chromedriver by the WebDriver protocol.

No more of the protocol than the tests need, over the standard library.
"""

import base64
import json
import re
import shutil
import subprocess
import tempfile
import urllib.request

# No display, no start page, and no request of the browser's own.
ARGUMENTS = ["--headless", "--no-sandbox", "--disable-gpu", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             "--window-size=1280,800"]
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
# Long enough for a machine that is busy with other things.
TIMEOUT = 120

KEYS = {"Tab": "\ue004", "Enter": "\ue007", "End": "\ue010", "Home": "\ue011",
        "Left": "\ue012", "Up": "\ue013", "Right": "\ue014", "Down": "\ue015"}


class Browser:
    """One browser with one page. To be closed."""

    def __init__(self):
        self.profile = tempfile.mkdtemp(prefix="adexp-browser-")
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, encoding="utf-8")
        self.session = None
        try:
            port = self._port()
            self.base = f"http://127.0.0.1:{port}/session"
            options = {"args": ARGUMENTS + ["--user-data-dir=" + self.profile]}
            capabilities = {"goog:chromeOptions": options,
                            "goog:loggingPrefs": {"browser": "ALL"}}
            answer = self._send("POST", "", {"capabilities": {"alwaysMatch": capabilities}})
            self.session = answer["sessionId"]
        except BaseException:
            self.close()
            raise

    def _port(self):
        for line in self.driver.stdout:
            if started := re.search(r"started successfully on port (\d+)", line):
                return started[1]
        raise RuntimeError("chromedriver did not start")

    def _send(self, method, path, body=None):
        session = "/" + self.session if self.session else ""
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + session + path, data, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=TIMEOUT) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(error.read().decode()) from error

    def close(self):
        if self.session:
            self._send("DELETE", "")
        self.driver.stdout.close()
        self.driver.terminate()
        self.driver.wait()
        shutil.rmtree(self.profile, ignore_errors=True)

    def open(self, url):
        """Opens a page, and forgets what was logged before."""
        self.log()
        self._send("POST", "/url", {"url": url})

    def run(self, script, *arguments):
        """What the body of a function returns in the page."""
        return self._send("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def log(self):
        """What the browser logged since the last call: errors of scripts, violations of the policy."""
        return [entry["message"] for entry in self._send("POST", "/se/log", {"type": "browser"})]

    def devtools(self, command, **parameters):
        """A command of the DevTools protocol, for what WebDriver does not have."""
        return self._send("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def element(self, selector):
        return self._send("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def role(self, selector):
        """The role that assistive technology is told."""
        return self._send("GET", f"/element/{self.element(selector)}/computedrole")

    def label(self, selector):
        """The name that assistive technology is told."""
        return self._send("GET", f"/element/{self.element(selector)}/computedlabel")

    def point_at(self, selector):
        """Moves the mouse to the middle of an element, which is scrolled into sight before."""
        self.run("document.querySelector(arguments[0]).scrollIntoView({block: 'center'})", selector)
        self._move({ELEMENT: self.element(selector)}, 0, 0)

    def point_at_corner(self):
        """Moves the mouse to where nothing is."""
        self._move("viewport", 1, 1)

    def _move(self, origin, x, y, *more):
        move = {"type": "pointerMove", "duration": 0, "origin": origin, "x": x, "y": y}
        self._act({"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"},
                   "actions": [move, *more]})

    def click(self, selector):
        self._send("POST", f"/element/{self.element(selector)}/click", {})

    def press(self, *keys):
        """Presses keys one after another: characters, or names of KEYS."""
        actions = [{"type": kind, "value": KEYS.get(key, key)}
                   for key in keys for kind in ("keyDown", "keyUp")]
        self._act({"type": "key", "id": "keyboard", "actions": actions})

    def _act(self, source):
        self._send("POST", "/actions", {"actions": [source]})

    def screenshot(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self._send("GET", "/screenshot")))

    def pdf(self, path):
        """The page as it is printed."""
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.devtools("Page.printToPDF")["data"]))
