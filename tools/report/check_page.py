"""Looks at a page in chromium without a screen: no script fails, every picture is drawn, it fits a phone, tables sort,
light and dark differ. Talks to the browser by a pair of pipes (--remote-debugging-pipe)."""

import base64
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

VIEWS = (("desktop", 1280, 900, "light"), ("phone", 390, 844, "light"), ("phone-dark", 390, 844, "dark"))

# What the page says of itself once it is drawn. A phone's window grows with what is too wide for it, so the width that
# it has to keep to is given.
LOOK = """(async (width) => {
  await drawAll();
  const plots = Array.from(document.querySelectorAll(".picture"));
  const tables = Array.from(document.querySelectorAll("table"));
  const longest = tables.sort((one, other) => other.tBodies[0].rows.length - one.tBodies[0].rows.length)[0];
  const header = longest ? longest.querySelector("th") : null;
  let sorted = header === null;
  if (header !== null) {
    const texts = () => Array.from(header.closest("table").tBodies[0].rows, (row) => row.cells[0].dataset.value);
    header.click();
    const up = texts();
    header.click();
    const down = texts();
    const ordered = (list, sign) => list.every((text, i) => i === 0 || sign * (list[i - 1] <= text ? -1 : 1) <= 0 ||
      list[i - 1] === text);
    sorted = ordered(up, 1) && ordered(down, -1);
  }
  const luminance = (text) => {
    const [r, g, b] = text.match(/[0-9.]+/g).map(Number);
    return (0.2126 * r + 0.7152 * g + 0.0722 * b) / 255;
  };
  const style = getComputedStyle(document.body);
  return JSON.stringify({
    plots: plots.length,
    empty: plots.filter((plot) => plot.querySelector(".main-svg") === null ||
      plot.querySelector(".trace, .points, .hm, image") === null).map((plot) => plot.id),
    overflow: Math.max(document.documentElement.scrollWidth, document.body.scrollWidth) - width,
    wide: plots.filter((plot) => plot.scrollWidth > width).map((plot) => plot.id),
    sorted, background: luminance(style.backgroundColor), text: luminance(style.color),
  });
})"""


class Browser:
    """Chromium's protocol: messages of JSON, each ended by a NUL."""

    def __init__(self, directory):
        to_browser, self.output = os.pipe()
        self.input, from_browser = os.pipe()
        command = ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                   "--no-first-run", "--disable-extensions", f"--user-data-dir={directory}", "--remote-debugging-pipe"]

        def put_in_place():  # the protocol is spoken on 3 and 4
            kept_in, kept_out = os.dup(to_browser), os.dup(from_browser)
            os.dup2(kept_in, 3)
            os.dup2(kept_out, 4)
        self.process = subprocess.Popen(command, preexec_fn=put_in_place, close_fds=False,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self.buffer = b""
        self.count = 0
        self.events = []

    def receive(self):
        while b"\0" not in self.buffer:
            part = os.read(self.input, 1 << 16)
            if not part:
                raise SystemExit("report: the browser ended")
            self.buffer += part
        message, _, self.buffer = self.buffer.partition(b"\0")
        return json.loads(message)

    def ask(self, method, session=None, **parameters):
        self.count += 1
        message = {"id": self.count, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        os.write(self.output, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.count:
                if "error" in answer:
                    raise SystemExit(f"report: the browser on {method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

    def wait_for(self, method):
        while not any(event.get("method") == method for event in self.events):
            self.events.append(self.receive())

    def stop(self):
        self.process.terminate()
        self.process.wait()
        os.close(self.output)
        os.close(self.input)


def look(browser, page, view, pictures):
    """What is wrong with the page in one view, as lines; and how many plots it has."""
    name, width, height, scheme = view
    target = browser.ask("Target.createTarget", url="about:blank")["targetId"]
    session = browser.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
    browser.events.clear()
    for domain in ("Page", "Runtime", "Log"):
        browser.ask(f"{domain}.enable", session)
    browser.ask("Emulation.setDeviceMetricsOverride", session, width=width, height=height, deviceScaleFactor=1,
                mobile=width < 600)
    browser.ask("Emulation.setEmulatedMedia", session, features=[{"name": "prefers-color-scheme", "value": scheme}])
    browser.ask("Network.enable", session)
    browser.ask("Page.navigate", session, url=page.resolve().as_uri())
    browser.wait_for("Page.loadEventFired")
    result = browser.ask("Runtime.evaluate", session, expression=f"{LOOK}({width})", awaitPromise=True, returnByValue=True)
    problems = []
    if "exceptionDetails" in result:
        return [f"{name}: {result['exceptionDetails']}"], 0
    seen = json.loads(result["result"]["value"])
    if pictures:
        shot = browser.ask("Page.captureScreenshot", session, format="png")["data"]
        (page.parent / f"{page.stem}-{name}.png").write_bytes(base64.b64decode(shot))
    for event in browser.events:
        if event.get("method") == "Runtime.exceptionThrown":
            problems.append(f"{name}: a script failed: {event['params']['exceptionDetails'].get('text')}")
        if event.get("method") == "Log.entryAdded" and event["params"]["entry"]["level"] == "error":
            problems.append(f"{name}: an error: {event['params']['entry']['text']}")
        if event.get("method") == "Network.requestWillBeSent" and event["params"]["request"]["url"].startswith("http"):
            problems.append(f"{name}: asks the network for {event['params']['request']['url']}")
    if seen["plots"] == 0 or seen["empty"]:
        problems.append(f"{name}: {seen['plots']} plots, of which not drawn: {seen['empty']}")
    if seen["overflow"] > 0 or seen["wide"]:
        problems.append(f"{name}: wider than {width} pixels by {seen['overflow']}; plots: {seen['wide']}")
    if not seen["sorted"]:
        problems.append(f"{name}: a table does not sort")
    is_dark = seen["background"] < 0.3
    if is_dark != (scheme == "dark") or abs(seen["background"] - seen["text"]) < 0.6:
        problems.append(f"{name}: background {seen['background']:.2f} and text {seen['text']:.2f} in {scheme}")
    browser.ask("Target.closeTarget", targetId=target)
    return problems, seen["plots"]


def problems_of(page, pictures=True):
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as directory:
        browser = Browser(directory)
        try:
            looks = [look(browser, page, view, pictures) for view in VIEWS]
        finally:
            browser.stop()
    return [problem for problems, _ in looks for problem in problems], looks[0][1]


def check(page):
    """The exit status."""
    page = pathlib.Path(page)
    if not page.exists():
        print(f"report: there is no {page}; ./dev report makes it", file=sys.stderr)
        return 1
    if shutil.which("chromium") is None:
        print("report: chromium is not installed", file=sys.stderr)
        return 1
    problems, plots = problems_of(page)
    for problem in problems:
        print(problem)
    print(f"check: {plots} plots in {len(VIEWS)} views, {len(problems)} problems")
    return 1 if problems else 0
