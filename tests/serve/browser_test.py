#!/usr/bin/env python3
"""The board page in a real browser: headless Chromium on voractl --sim serve.

  browser_test.py VORACTL SOURCE_DIR ARTIFACT_DIR

For each simulated board (each generation's default and largest, and a board
whose texts hold markup): serve it with samples every half second, open "/"
in headless Chromium after two sample intervals, and hold the page to the
capability document: no console error or refused content, every element of
the document present with the widget its hints ask for, every chart with
points, the board name and a sensor showing what `voractl get` reads, and
markup in board texts shown as text. A screenshot at 360 and at 1280 pixels
wide of each board, and one in dark mode, is kept in ARTIFACT_DIR.
"""
import html.parser, json, os, re, shutil, signal, subprocess, sys, tempfile, time, urllib.request

VORACTL, SOURCE, ARTIFACTS = sys.argv[1:4]
CHROMIUM = shutil.which("chromium")
failures = []


def fail(message):
    failures.append(message)
    print("FAIL:", message)


class Page(html.parser.HTMLParser):
    """The dumped DOM: the body's data attributes, the items, charts and tags."""

    def __init__(self):
        super().__init__()
        self.body, self.items, self.tags, self.text = {}, [], [], {}
        self.capture = None

    def handle_starttag(self, tag, attributes):
        a = dict(attributes)
        self.tags.append(tag)
        if tag == "body":
            self.body = a
        if "data-widget" in a:
            self.items.append({"id": int(a["data-id"]), "widget": a["data-widget"], "points": None,
                               "value": None})
        if a.get("class") == "chart" and self.items:
            self.items[-1]["points"] = int(a.get("data-points", "0"))
        if tag == "input" and a.get("class") == "value" and self.items:
            self.items[-1]["value"] = a.get("value", "")
        if tag in ("output", "h1") or (tag == "p" and a.get("id") == "library"):
            self.capture = (tag, a.get("id"))
            self.text[self.capture] = ""

    def handle_endtag(self, tag):
        if self.capture and tag == self.capture[0]:
            if tag == "output" and self.items:
                self.items[-1]["value"] = self.text[self.capture]
            self.capture = None

    def handle_data(self, data):
        if self.capture:
            self.text[self.capture] += data


def widget(element):
    if element.get("sui") == "Chart":
        return "chart"
    return "textbox" if element.get("ui") == "TextBox" else "label"


def elements(document):
    for block in document.values():
        if not isinstance(block, dict):
            continue
        groups = [block] if isinstance(block.get("e"), list) else []
        groups += [g for g in block.values() if isinstance(g, dict) and isinstance(g.get("e"), list)]
        for group in groups:
            yield from group["e"]


def chromium(url, *args):
    return subprocess.run([CHROMIUM, "--headless=new", "--no-sandbox", "--disable-gpu",
                           "--hide-scrollbars", "--enable-logging=stderr", "--v=0",
                           "--virtual-time-budget=4000", *args, url],
                          capture_output=True, text=True, timeout=120)


def check(name, generation, profile):
    env = dict(os.environ, VORA_SIM_STATE=os.path.join(ARTIFACTS, f"{name}.state.json"))
    sim = ["--sim" + (f"={profile}" if profile else ""), "--sim-generation", generation, "--quiet"]
    server = subprocess.Popen([VORACTL, *sim, "serve", "--listen", "127.0.0.1:0", "--interval", "0.5"],
                              stderr=subprocess.PIPE, text=True, env=env)
    try:
        url = re.search(r"https?://[0-9.:]+", server.stderr.readline()).group(0) + "/"
        # Sampling starts when a page first asks; two intervals and more
        # after that, as if the page had been open a while.
        urllib.request.urlopen(url + "api/v1/items").read()
        time.sleep(1.2)
        with urllib.request.urlopen(url + "api/v1/document") as answer:
            policy = answer.headers["Content-Security-Policy"]
            document = json.load(answer)
        if "default-src 'none'" not in (policy or ""):
            fail(f"{name}: no content security policy on the API")
        dumped = chromium(url, "--dump-dom")
        page = Page()
        page.feed(dumped.stdout)
        console = [l for l in dumped.stderr.splitlines() if ":CONSOLE(" in l]
        if page.body.get("data-ready") != "1" or page.body.get("data-errors") or console:
            fail(f"{name}: page not ready or with errors: {page.body} {console[:3]}")
        wanted = sorted((e["id"], widget(e)) for e in elements(document))
        shown = sorted((i["id"], i["widget"]) for i in page.items)
        if wanted != shown:
            fail(f"{name}: the page's items differ from the document's: "
                 f"{len(shown)} shown, {len(wanted)} in the document")
        charts = [i for i in page.items if i["widget"] == "chart"]
        if not charts or any((i["points"] or 0) < 2 for i in charts):
            fail(f"{name}: a chart has fewer than two points")
        # What voractl reads is what the page shows: the board name and the
        # first chart's sensor.
        by_id = {i["id"]: i for i in page.items}
        for element in [e for e in elements(document) if e.get("n") in ("Board name", "Platform name")][:1] + \
                       [e for e in elements(document) if e.get("sui") == "Chart"][:1]:
            # A text as it is (voractl's own human output escapes what a
            # terminal would obey), a reading as voractl shows it.
            text = "sv" in element
            read = subprocess.run([VORACTL, *sim, "get", *(["--json"] * text), str(element["id"])],
                                  env=env, capture_output=True, text=True).stdout
            read = json.loads(read)["value"] if text else read.strip()
            if by_id[element["id"]]["value"] != read:
                fail(f"{name}: {element['n']} shows {by_id[element['id']]['value']!r}, voractl reads {read!r}")
        for width, height, scheme in ((360, 1600, ""), (1280, 1600, ""), (1280, 1600, "dark")):
            shot = os.path.join(ARTIFACTS, f"{name}-{width}{'-' + scheme if scheme else ''}.png")
            dark = ["--force-dark-mode", "--blink-settings=preferredColorScheme=0"] if scheme else []
            chromium(url, f"--window-size={width},{height}", f"--screenshot={shot}", *dark)
            with open(shot, "rb") as f:
                if f.read(8) != b"\x89PNG\r\n\x1a\n":
                    fail(f"{name}: no screenshot at {width} pixels")
        print(f"{name}: {len(page.items)} items, {len(charts)} charts, screenshots kept")
        return page
    finally:
        server.send_signal(signal.SIGTERM)
        server.wait(timeout=15)


def main():
    if CHROMIUM is None:
        print("SKIP: Debian's chromium is not installed")
        return 77
    os.makedirs(ARTIFACTS, exist_ok=True)
    profiles = os.path.join(SOURCE, "sim", "profiles")
    for generation, stem in (("4", "vora4"), ("3", "vora3"), ("eapi", "eapi")):
        check(stem, generation, None)
        check(stem + "-largest", generation, os.path.join(profiles, stem + "-largest.json"))

    # Markup and control characters in the board's texts are shown as text.
    with open(os.path.join(profiles, "vora4.json")) as f:
        board = json.load(f)
    hostile = '<script>alert(1)</script>"\'&\u0007'
    board["board"]["name"] = hostile
    board["sensors"]["temperature"][0]["name"] = '<img src=x onerror="alert(2)">'
    path = os.path.join(ARTIFACTS, "markup.json")
    with open(path, "w") as f:
        json.dump(board, f)
    page = check("markup", "4", path)
    if page.tags.count("script") != 1 or "img" in page.tags:
        fail(f"markup: board texts became markup: {page.tags.count('script')} scripts, "
             f"{page.tags.count('img')} images")
    if page.text.get(("h1", "board")) != hostile:
        fail(f"markup: the board name shows as {page.text.get(('h1', 'board'))!r}")
    print(f"browser: {len(failures)} failures")
    return 1 if failures else 0


sys.exit(main())
