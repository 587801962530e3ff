# SPDX-License-Identifier: LGPL-2.1-or-later
"""A Chromium without a window, controlled through chromedriver by the WebDriver protocol."""

import json
import os
import re
import shutil
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

PROGRAMS = ("chromium", "chromedriver")
FLAGS = (
    "--headless",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-dev-shm-usage",
    "--disable-gpu",
    "--disable-sync",
    "--hide-scrollbars",
    "--no-first-run",
    "--no-proxy-server",
)


class Browser:
    """Both programs end with the test, even if it is killed. Their files are in a temporary directory."""

    def __init__(self):
        self.home = tempfile.mkdtemp()
        self.driver = None
        self.session = ""
        try:
            self.start()
        except Exception:
            self.stop()
            raise

    def start(self):
        variables = ("HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR")
        self.driver = subprocess.Popen(
            ["setpriv", "--pdeathsig", "KILL", "chromedriver", "--port=0"],
            env={**os.environ, **{name: self.home for name in variables}},
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            universal_newlines=True,
        )
        found = (re.search(r"started successfully on port (\d+)", line) for line in self.driver.stdout)
        port = next(filter(None, found), None)
        if not port:
            raise RuntimeError("chromedriver does not start")
        self.address = f"http://127.0.0.1:{port[1]}/session"
        flags = [*FLAGS, "--user-data-dir=" + self.home]
        if os.geteuid() == 0:
            flags.append("--no-sandbox")  # the sandbox does not work as root
        options = {
            "goog:chromeOptions": {"binary": self.create_launcher(), "args": flags},
            "goog:loggingPrefs": {"browser": "ALL"},
        }
        self.session = "/" + self.send("POST", "", {"capabilities": {"alwaysMatch": options}})["sessionId"]

    def create_launcher(self):
        """Returns the path of a script that starts Chromium so that it ends with chromedriver."""
        path = os.path.join(self.home, "launcher")
        with open(path, "w") as file:
            file.write(f'#!/bin/sh\nexec setpriv --pdeathsig KILL {shutil.which("chromium")} "$@"\n')
        os.chmod(path, 0o700)
        return path

    def stop(self):
        if self.session:
            self.send("DELETE", "")
        if self.driver:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()
        shutil.rmtree(self.home, ignore_errors=True)

    def send(self, method, path, body=None):
        data = json.dumps(body or {}).encode() if method == "POST" else None
        request = urllib.request.Request(self.address + self.session + path, data, method=method)
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from error

    def open(self, address):
        self.send("POST", "/url", {"url": address})

    def run(self, script, *arguments):
        """Runs a script, the body of a function, and returns its result, also that of a promise."""
        return self.send("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def wait_for(self, script):
        """Runs the script repeatedly until its result is true. Fails after a minute."""
        end = time.monotonic() + 60
        while not self.run(script):
            if time.monotonic() > end:
                raise RuntimeError(f"never true: {script}")
            time.sleep(0.02)

    def element(self, selector):
        found = self.send("POST", "/element", {"using": "css selector", "value": selector})
        return "/element/" + next(iter(found.values()))

    def click(self, selector):
        self.send("POST", self.element(selector) + "/click")

    def type(self, selector, text):
        self.send("POST", self.element(selector) + "/value", {"text": text})

    def command(self, command, **parameters):
        self.send("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def set_theme(self, theme):
        self.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": theme}])

    def set_size(self, width, height):
        metrics = {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}
        self.command("Emulation.setDeviceMetricsOverride", **metrics)

    def errors(self):
        entries = self.send("POST", "/se/log", {"type": "browser"})
        return [entry["message"] for entry in entries if entry["level"] == "SEVERE"]
