#!/usr/bin/env python3
"""The board page in headless Chromium, driven by Selenium (Debian's chromium,
chromium-driver and python3-selenium), on voractl --sim serve.

  browser_test.py VORACTL SOURCE_DIR ARTIFACT_DIR

Each board of BOARDS is served with samples every half second, and its page,
on a 360-pixel phone and at 1280 pixels, held by each of CHECKS to what
voractl reads of the same board (and charts on demand opened with the
keyboard alone); screenshots are kept in ARTIFACT_DIR. Then a module that
comes up late and a restarted exporter.
"""
import base64, json, os, re, signal, subprocess, sys, time

VORACTL, SOURCE, ARTIFACTS = sys.argv[1:4]
PHONE = (360, 740)
failures, running = [], []

# Readings at, just over and far outside their limits, negative rails, an
# all-ones sensor, a case switch.
RAILS = {"board": {"name": "VB-RAILS"}, "sensors": {
    "temperature": [{"index": 0, "value": 100}, {"index": 1, "value": 100.1},
                    {"index": 2, "value": -25}, {"index": 3, "raw": "0xFFFFFFFF"}],
    "voltage": [{"index": 0, "value": 0}, {"index": 9, "value": -5}, {"index": 10, "value": -12}],
    "fan": [{"index": 0, "value": 8000}], "current": [{"index": 0, "value": -0.5}],
    "case_open": [{"index": 0, "value": 1}]}}
with open(os.path.join(SOURCE, "sim", "profiles", "vora4.json")) as f:
    MARKUP = json.load(f)  # board texts that are markup and control characters
MARKUP["board"]["name"] = '<script>alert(1)</script>"\'&\u0007'
MARKUP["sensors"]["temperature"][0]["name"] = '<img src=x onerror="alert(2)">'
# name, generation, profile (of sim/profiles/, of our own, or the library's
# own), the most screens of a phone the page may take.
BOARDS = [("vora4", "4", None, 6), ("vora4-largest", "4", "vora4-largest.json", 4),
          ("vora3", "3", None, 6), ("vora3-largest", "3", "vora3-largest.json", 4),
          ("eapi", "eapi", None, 6), ("eapi-largest", "eapi", "eapi-largest.json", 4),
          ("rails", "4", RAILS, 6), ("markup", "4", MARKUP, 6)]

SNAPSHOT = """const t = (e) => e && e.textContent, all = (s, n = document) => [...n.querySelectorAll(s)];
return {body: {...document.body.dataset}, title: document.title, board: t(document.getElementById("board")),
  alarms: t(document.getElementById("alarms")), live: all("[aria-live]").map((e) => e.id),
  focusable: all("a[href], button, input, select, textarea, summary, [tabindex]").map((e) => e.tagName),
  tags: all("script, img").map((e) => e.tagName), width: document.documentElement.scrollWidth,
  height: document.documentElement.scrollHeight,
  items: all(".item").map((n) => { const th = n.closest("tr").querySelector("th"), wide = n.closest("table.wide");
    return {id: +n.dataset.id, widget: n.dataset.widget, text: t(n.querySelector(".text")),
      alarm: n.classList.contains("alarm") && t(n.querySelector(".mark")) === "ALARM",
      name: t(wide ? wide.tHead.rows[0].cells[n.cellIndex] : th.firstChild), notes: all("small", th).map(t)}; }),
  charts: all(".chart").map((c) => ({id: +c.id.slice(6), shown: !c.closest("[hidden]"), points: +c.dataset.points,
    low: +c.dataset.low, high: +c.dataset.high, d: c.querySelector("path") && c.querySelector("path").getAttribute("d"),
    strip: all("rect", c).length, times: all(".times span", c).map(t),
    lines: Object.fromEntries(all("line", c).map((l) => [l.dataset.limit, l.style.display ? null : +l.getAttribute("y1")]))}))};"""


def fail(message):
    failures.append(message)
    print("FAIL:", message)


def check_items(page, board):
    """Every record of voractl list --json once, named, valued and drawn as voractl and the hints say."""
    shown = {i["id"]: i for i in page["items"]}
    if sorted(shown) != sorted(r["id"] for r in board["records"]) or len(shown) != len(page["items"]):
        return f"{len(page['items'])} items shown, voractl lists {len(board['records'])}"
    for r in board["records"]:
        item, line = shown[r["id"]], board["get"][r["id"]]
        if item["name"] != r["name"] or item["text"] + "  ALARM" * item["alarm"] != line:
            return f"{r['path']}: the page shows {item['name']} = {item['text']!r}, voractl {line!r}"
        if r.get("shares_id_with") and "id shared with " + ", ".join(r["shares_id_with"]) not in item["notes"]:
            return f"{r['path']}: shares its id unsaid"
        if item["widget"] != board["widgets"][r["id"]]:
            return f"{r['path']}: drawn as {item['widget']}, its hints ask for {board['widgets'][r['id']]}"


def check_charts(page, board):
    """An open chart's newest point is the reading, inside an axis that follows it, the limits in view
    drawn where they are; a two-state item is a strip; the times are clock times."""
    records = {r["id"]: r for r in board["records"]}
    for c in (c for c in page["charts"] if c["shown"]):
        r, low, high = records[c["id"]], c["low"], c["high"]
        if c["points"] < 2 or not all(re.fullmatch(r"\d\d:\d\d:\d\d", t) for t in c["times"]):
            return f"{r['path']}: {c['points']} points, times {c['times']}"
        if (board["widgets"][c["id"]] == "strip") != (c["d"] is None) or (c["d"] is None and not c["strip"]):
            return f"{r['path']}: drawn as a {'strip' if c['d'] is None else 'line'}"
        if c["d"] is None:
            continue
        at = lambda v: (high - v) / (high - low) * 100
        y = float(c["d"].replace("H100", "").split(",")[-1])
        if not (5 < y < 95 and abs(y - at(r["value"])) < 0.5):
            return f"{r['path']}: {r['value']} drawn at {y}% of {low}..{high}"
        for limit in ("min", "max"):
            drawn, expected = c["lines"][limit], at(r[limit]) if low <= r[limit] <= high else None
            if (drawn is None) != (expected is None) or (drawn is not None and abs(drawn - expected) > 0.5):
                return f"{r['path']}: the {limit} {r[limit]} drawn at {drawn} on {low}..{high}"


def check_alarms(page, board):
    """voractl's alarms and no other marked, and told in the only live region."""
    alarmed = sorted(r["id"] for r in board["records"] if r.get("alarm"))
    if sorted(i["id"] for i in page["items"] if i["alarm"]) != alarmed or page["live"] != ["alarms"] or \
            (alarmed and not page["alarms"].startswith(f"{len(alarmed)} reading")):
        return f"alarms {alarmed}, live regions {page['live']} telling {page['alarms']!r}"


def check_page(page, board):
    """The board in the title, text only, tab stops only where there is something to do, no error."""
    if page["body"].get("ready") != "1" or page["body"].get("errors") or board["console"]:
        return f"not ready or with errors: {page['body']} {board['console'][:3]}"
    if set(page["focusable"]) - {"A", "SUMMARY", "BUTTON"}:
        return f"tab stops {set(page['focusable'])}"
    if re.sub("[\x00-\x1f]", "", board["name"]) not in page["title"] or page["board"] != board["name"] or \
            page["tags"] != ["SCRIPT"]:
        return f"titled {page['title']!r}, headed {page['board']!r}, {page['tags']}"


def check_phone(page, board):
    """No sideways scrolling on a phone, and the board in a few screens."""
    if page["phone"]["width"] > PHONE[0] or page["phone"]["height"] > board["screens"] * PHONE[1]:
        return f"{page['phone']['width']}x{page['phone']['height']} pixels on a phone"


CHECKS = [check_items, check_charts, check_alarms, check_page, check_phone]


def view(driver, width, height=900, dark=False):
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})


def wait(driver, condition, seconds=20):
    for _ in range(seconds * 4):
        page = driver.execute_script(SNAPSHOT)
        if condition(page):
            return page
        time.sleep(0.25)


def shoot(driver, name, width):
    height = min(driver.execute_script("return document.documentElement.scrollHeight"), 2400)
    shot = driver.execute_cdp_cmd("Page.captureScreenshot", {
        "captureBeyondViewport": True, "clip": {"x": 0, "y": 0, "width": width, "height": height, "scale": 1}})
    with open(os.path.join(ARTIFACTS, name + ".png"), "wb") as f:
        f.write(base64.b64decode(shot["data"]))


class Exporter:
    def __init__(self, name, generation, profile, port=0, interval=0.5):
        if isinstance(profile, dict):
            with open(os.path.join(ARTIFACTS, name + ".json"), "w") as f:
                json.dump(profile, f)
            profile = f.name
        elif profile:
            profile = os.path.join(SOURCE, "sim", "profiles", profile)
        self.sim = ["--sim" + (f"={profile}" if profile else ""), "--sim-generation", generation, "--quiet"]
        self.env = dict(os.environ, VORA_SIM_STATE=os.path.join(ARTIFACTS, name + ".state.json"))
        self.process = subprocess.Popen([VORACTL, *self.sim, "serve", "--listen", f"127.0.0.1:{port}", "--interval",
                                         str(interval)], stderr=subprocess.PIPE, text=True, env=self.env)
        running.append(self.process)
        self.url = next(m for m in map(re.compile(r"https?://[0-9.:]+/").search, self.process.stderr) if m).group(0)

    def voractl(self, *args):
        return subprocess.run([VORACTL, *self.sim, *args], env=self.env, capture_output=True, text=True).stdout

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait(timeout=15)


def check_board(driver, name, generation, profile, screens):
    exporter = Exporter(name, generation, profile)
    try:
        records = json.loads(exporter.voractl("list", "--json"))
        lines = exporter.voractl("get", *[str(r["id"]) for r in records]).splitlines()
        hints = {}
        for block_name, block in json.loads(exporter.voractl("caps")).items():
            for group_name, group in [("", block)] if "e" in block else block.items():
                for e in group["e"] if isinstance(group, dict) else []:
                    hints[block_name, group_name, e["id"]] = e
        widgets = {r["id"]: (lambda e: ("strip" if r["unit"] in ("I/O", "H/L", "ON/OFF") else "chart")
                             if e.get("sui") == "Chart" else "textbox" if e.get("ui") == "TextBox" else "label")(
                                 hints[r["block"], r["group"], r["id"]]) for r in records}
        board = {"records": records, "widgets": widgets, "screens": screens,
                 "get": {r["id"]: line[len(r["path"]) + 2:] for r, line in zip(records, lines)},
                 "name": next(r["value"] for r in records if r["name"] == "Board name")}
        pages = {}
        for width, height in (PHONE, (1280, 900)):
            view(driver, width, height)
            driver.get(exporter.url)
            if width == PHONE[0]:
                driver.get_log("browser")
            pages[width] = wait(driver, lambda p: p["body"].get("ready") == "1" and int(p["body"].get("samples", 0)) >= 3)
            if pages[width] is None:
                return fail(f"{name}: the page is not ready at {width} pixels")
            shoot(driver, f"{name}-{width}", width)
        view(driver, 1280, dark=True)
        shoot(driver, f"{name}-1280-dark", 1280)
        page = dict(pages[1280], phone=pages[PHONE[0]])
        board["console"] = [e["message"] for e in driver.get_log("browser") if e["level"] == "SEVERE"]
        for check in CHECKS:
            problem = check(page, board)
            if problem:
                fail(f"{name}: {check.__name__}: {problem}")
        if page["charts"] and not page["charts"][0]["shown"]:
            check_keyboard(driver, name)
        print(f"{name}: {len(page['items'])} items, {sum(c['shown'] for c in page['charts'])} of "
              f"{len(page['charts'])} charts open, {page['phone']['height']} pixels tall on a phone")
    finally:
        driver.get("about:blank")
        exporter.stop()


def check_keyboard(driver, name):
    """Charts on demand, with the keyboard alone: Tab reaches a chart's button, Enter opens it."""
    driver.refresh()
    wait(driver, lambda p: p["body"].get("ready") == "1")
    for _ in range(20):
        ActionChains(driver).send_keys(Keys.TAB).perform()
        if driver.switch_to.active_element.tag_name == "button":
            break
    button = driver.switch_to.active_element
    if button.tag_name != "button":
        return fail(f"{name}: Tab does not reach a chart's button")
    ActionChains(driver).send_keys(Keys.ENTER).perform()
    page = wait(driver, lambda p: any(c["shown"] and c["points"] >= 2 for c in p["charts"]), 10)
    if button.get_attribute("aria-expanded") != "true" or not page or \
            [f"chart-{c['id']}" for c in page["charts"] if c["shown"]] != [button.get_attribute("aria-controls")]:
        fail(f"{name}: Tab and Enter do not open a chart")


def check_recovery(driver):
    """A page opened while the module is not up shows the board once it is; when the exporter
    restarts the page says its samples are stale, then goes on with the new one long before
    the new one's samples (every 2 s) are numbered past the old one's."""
    late = {"board": {"name": "VB-LATE"}, "sensors": {"temperature": [{"index": 0, "value": 40}]},
            "faults": [{"function": "VoraLibInitialize", "status": "0xFFFFF0FF", "times": 3}]}
    exporter = Exporter("late", "4", late)
    try:
        driver.get(exporter.url)
        if not wait(driver, lambda p: p["body"].get("ready") == "1" and not p["items"] and "not up" in p["title"]):
            fail("late: the page does not say the module is not up")
        if not wait(driver, lambda p: p["board"] == "VB-LATE" and any(c["points"] >= 2 for c in p["charts"])):
            fail("late: the page does not show the board once the module came up")
        before = wait(driver, lambda p: int(p["body"].get("samples", 0)) >= 20)["body"]["started"]
        exporter.stop()
        if not wait(driver, lambda p: p["body"].get("stale") == "1"):
            fail("restart: the page does not say its samples are stale")
        del late["faults"]
        late["sensors"]["temperature"][0]["value"] = 41
        exporter = Exporter("late", "4", late, int(exporter.url.split(":")[-1].strip("/")), interval=2)
        if not wait(driver, lambda p: p["body"].get("stale") == "0" and p["body"].get("started") != before
                    and any(i["text"] == "+41.0 °C" for i in p["items"])):
            fail("restart: the page does not go on with the restarted exporter")
        if [e for e in driver.get_log("browser") if e["level"] == "SEVERE" and "/api/" not in e["message"]]:
            fail("restart: console errors besides the exporter's absence")
    finally:
        exporter.stop()


def check_slow(driver):
    """A board whose reading hangs after two: the page says the board is slow, and how long
    its reading has taken, rather than that it is not read."""
    slow = {"board": {"name": "VB-SLOW"}, "sensors": {"temperature": [{"index": 0, "value": 40}]},
            "faults": [{"function": "VoraBoardGetValue", "arg": "0x20000", "hang": True, "after": 3}]}
    exporter = Exporter("slow", "4", slow)
    try:
        driver.get(exporter.url)
        if not wait(driver, lambda p: p["body"].get("waiting") == "1" and "is slow" in
                    driver.find_element("id", "stale").text, 20):
            fail("slow: the page does not say the board's reading is under way")
    finally:
        exporter.stop()


def main():
    os.makedirs(ARTIFACTS, exist_ok=True)
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars"):
        options.add_argument(argument)
    options.binary_location = "/usr/bin/chromium"
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    try:
        for board in BOARDS:
            check_board(driver, *board)
        check_recovery(driver)
        check_slow(driver)
    finally:
        driver.quit()
        for process in running:
            process.kill()
            process.wait()
    print(f"browser: {len(failures)} failures")
    return 1 if failures else 0


try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.keys import Keys
except ImportError:
    print("SKIP: Debian's python3-selenium is not installed")
    sys.exit(77)
if not os.path.exists("/usr/bin/chromedriver"):
    print("SKIP: Debian's chromium-driver is not installed")
    sys.exit(77)
sys.exit(main())
