#!/usr/bin/env python3
"""The board page in a real browser: headless Chromium, driven by Selenium
through chromedriver (Debian's chromium, chromium-driver, python3-selenium),
on voractl --sim serve.

  browser_test.py VORACTL SOURCE_DIR ARTIFACT_DIR

Each board of BOARDS is served with samples every half second and its page
opened after two intervals, at 1280 pixels wide and on a 360-pixel phone;
the page is held to what voractl reads of the same board by every check of
CHECKS. Screenshots (360, 1280, 1280 dark) are kept in ARTIFACT_DIR. Then
the page of a module that comes up late, and of an exporter restarted under
it, must catch up by itself, and the page works with the keyboard alone.
"""
import base64, json, os, re, signal, socket, subprocess, sys, time

VORACTL, SOURCE, ARTIFACTS = sys.argv[1:4]
PROFILES = os.path.join(SOURCE, "sim", "profiles")
PHONE = (360, 740)
failures = []
running = []  # exporters, stopped at the end whatever happens

# Readings at, just over and far outside their limits, negative rails, a
# sensor answering all ones, a case switch.
RAILS = {"board": {"name": "VB-RAILS"}, "sensors": {
    "temperature": [{"index": 0, "value": 100}, {"index": 1, "value": 100.1},
                    {"index": 2, "value": -25}, {"index": 3, "raw": "0xFFFFFFFF"}],
    "voltage": [{"index": 0, "value": 0}, {"index": 9, "name": "VN50", "value": -5},
                {"index": 10, "name": "VN120", "value": -12}],
    "fan": [{"index": 0, "value": 8000}], "current": [{"index": 0, "value": -0.5}],
    "case_open": [{"index": 0, "name": "Intrusion", "value": 1}]}}
MARKUP = '<script>alert(1)</script>"\'&\u0007'

# name, generation, profile (a file, a board of our own, or None: the
# library's own), the most screens of a phone its page may take.
BOARDS = [("vora4", "4", None, 6), ("vora4-largest", "4", "vora4-largest.json", 4),
          ("vora3", "3", None, 6), ("vora3-largest", "3", "vora3-largest.json", 4),
          ("eapi", "eapi", None, 6), ("eapi-largest", "eapi", "eapi-largest.json", 4),
          ("rails", "4", RAILS, 6), ("markup", "4", "markup", 6)]

SNAPSHOT = """
const text = (e) => e ? e.textContent : null;
return {
  body: {...document.body.dataset}, title: document.title, board: text(document.getElementById("board")),
  alarms: text(document.getElementById("alarms")), live: [...document.querySelectorAll("[aria-live]")].map((e) => e.id),
  focusable: [...document.querySelectorAll("a[href], button, input, select, textarea, summary, [tabindex]")].map((e) => e.tagName),
  tags: [...document.querySelectorAll("script, img")].map((e) => e.tagName),
  width: document.documentElement.scrollWidth, height: document.documentElement.scrollHeight,
  items: [...document.querySelectorAll(".item")].map((n) => {
    const th = n.closest("tr").querySelector("th");
    return {id: +n.dataset.id, widget: n.dataset.widget, text: text(n.querySelector(".text")),
            alarm: n.classList.contains("alarm") && text(n.querySelector(".mark")) === "ALARM",
            name: n.closest("table.wide") ? text(n.closest("table").tHead.rows[0].cells[n.cellIndex]) : text(th.firstChild),
            notes: [...th.querySelectorAll("small")].map(text)};
  }),
  charts: [...document.querySelectorAll(".chart")].map((c) => ({
    id: +c.id.slice(6), shown: !c.closest("[hidden]"), points: +c.dataset.points, low: +c.dataset.low,
    high: +c.dataset.high, d: c.querySelector("path") && c.querySelector("path").getAttribute("d"),
    strip: c.querySelectorAll("rect").length, times: [...c.querySelectorAll(".times span")].map(text),
    lines: Object.fromEntries([...c.querySelectorAll("line")].map((l) =>
      [l.dataset.limit, l.style.display === "none" ? null : +l.getAttribute("y1")]))})),
};"""


def fail(message):
    failures.append(message)
    print("FAIL:", message)


def close(a, b, span):
    return abs(a - b) <= 0.005 * span


def check_items(page, board):
    """Every record of voractl list --json, once, named and valued as voractl shows it."""
    shown = {i["id"]: i for i in page["items"]}
    if sorted(shown) != sorted(r["id"] for r in board["records"]) or len(shown) != len(page["items"]):
        return f"{len(page['items'])} items shown, voractl lists {len(board['records'])}"
    for r in board["records"]:
        item, line = shown[r["id"]], board["get"][r["path"]]
        if item["name"] != r["name"] or item["text"] + ("  ALARM" if item["alarm"] else "") != line:
            return f"{r['path']}: the page shows {item['name']} = {item['text']!r}, voractl {line!r}"
        if r.get("shares_id_with") and "id shared with " + ", ".join(r["shares_id_with"]) not in item["notes"]:
            return f"{r['path']}: shares its id unsaid"
        if item["widget"] != board["widgets"][r["id"]]:
            return f"{r['path']}: drawn as {item['widget']}, its hints ask for {board['widgets'][r['id']]}"


def check_charts(page, board):
    """Open charts are drawn where the readings are, on an axis that follows
    them, with the limits in view as lines; a two-state item is a strip."""
    records = {r["id"]: r for r in board["records"]}
    for c in (c for c in page["charts"] if c["shown"]):
        r = records[c["id"]]
        if c["points"] < 2 or not all(re.fullmatch(r"\d\d:\d\d:\d\d", t) for t in c["times"]):
            return f"{r['path']}: {c['points']} points, times {c['times']}"
        if board["widgets"][c["id"]] == "strip":
            if not c["strip"] or c["d"] is not None:
                return f"{r['path']}: a two-state item not drawn as a strip"
            continue
        low, high = c["low"], c["high"]
        y = float(c["d"].replace("H100", "").split(",")[-1])
        if not (5 < y < 95 and close(high - y / 100 * (high - low), r["value"], high - low)):
            return f"{r['path']}: {r['value']} drawn at {y}% of {low}..{high}"
        for limit in ("min", "max"):
            seen = low <= r[limit] <= high
            if (c["lines"][limit] is not None) != seen or (seen and not close(c["lines"][limit], (high - r[limit]) / (high - low) * 100, 100)):
                return f"{r['path']}: the {limit} {r[limit]} drawn at {c['lines'][limit]} on {low}..{high}"


def check_alarms(page, board):
    """Alarms as voractl sees them, coloured and marked, and only they told to screen readers."""
    alarmed = sorted(r["id"] for r in board["records"] if r.get("alarm"))
    if sorted(i["id"] for i in page["items"] if i["alarm"]) != alarmed:
        return "the alarms differ from voractl's"
    if page["live"] != ["alarms"] or (alarmed and not page["alarms"].startswith(f"{len(alarmed)} reading")):
        return f"live regions {page['live']}, telling {page['alarms']!r}"


def check_page(page, board):
    """Text only, the board in the title, nothing wrong in the console."""
    if page["body"].get("ready") != "1" or page["body"].get("errors") or board["console"]:
        return f"not ready or with errors: {page['body']} {board['console'][:3]}"
    if set(page["focusable"]) - {"A", "SUMMARY", "BUTTON"}:
        return f"tab stops other than links, block titles and chart buttons: {set(page['focusable'])}"
    if re.sub("[\x00-\x1f]", "", board["name"]) not in page["title"] or page["board"] != board["name"] or \
            page["tags"] != ["SCRIPT"]:
        return f"titled {page['title']!r}, headed {page['board']!r}, {page['tags']}"


def check_phone(page, board):
    """On a 360-pixel phone: no sideways scrolling, the board in a few screens."""
    if page["phone"]["width"] > PHONE[0] or page["phone"]["height"] > board["screens"] * PHONE[1]:
        return f"{page['phone']['width']}x{page['phone']['height']} pixels on a phone"


CHECKS = [check_items, check_charts, check_alarms, check_page, check_phone]


def browser():
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars"):
        options.add_argument(argument)
    options.binary_location = "/usr/bin/chromium"
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def view(driver, width, height=900, dark=False):
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})


def wait(driver, condition, seconds=20):
    end = time.time() + seconds
    while time.time() < end:
        page = driver.execute_script(SNAPSHOT)
        if condition(page):
            return page
        time.sleep(0.25)
    return None


def shoot(driver, path, width):
    height = min(driver.execute_script("return document.documentElement.scrollHeight"), 2400)
    shot = driver.execute_cdp_cmd("Page.captureScreenshot", {
        "captureBeyondViewport": True, "clip": {"x": 0, "y": 0, "width": width, "height": height, "scale": 1}})
    with open(path, "wb") as f:
        f.write(base64.b64decode(shot["data"]))


class Exporter:
    def __init__(self, name, generation, profile, port=0, interval=0.5):
        self.sim = ["--sim" + (f"={profile}" if profile else ""), "--sim-generation", generation, "--quiet"]
        self.env = dict(os.environ, VORA_SIM_STATE=os.path.join(ARTIFACTS, f"{name}.state.json"))
        self.process = subprocess.Popen([VORACTL, *self.sim, "serve", "--listen", f"127.0.0.1:{port}",
                                         "--interval", str(interval)], stderr=subprocess.PIPE, text=True, env=self.env)
        running.append(self.process)
        for line in self.process.stderr:
            if re.search(r"https?://[0-9.:]+", line):
                self.url = re.search(r"https?://[0-9.:]+", line).group(0) + "/"
                break

    def voractl(self, *args):
        return subprocess.run([VORACTL, *self.sim, *args], env=self.env, capture_output=True, text=True).stdout

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait(timeout=15)


def profile_of(name, profile):
    if isinstance(profile, str) and profile != "markup":
        return os.path.join(PROFILES, profile)
    if profile == "markup":
        with open(os.path.join(PROFILES, "vora4.json")) as f:
            profile = json.load(f)
        profile["board"]["name"] = MARKUP
        profile["sensors"]["temperature"][0]["name"] = '<img src=x onerror="alert(2)">'
    if profile is None:
        return None
    path = os.path.join(ARTIFACTS, name + ".json")
    with open(path, "w") as f:
        json.dump(profile, f)
    return path


def check_board(driver, name, generation, profile, screens):
    exporter = Exporter(name, generation, profile_of(name, profile))
    try:
        records = json.loads(exporter.voractl("list", "--json"))
        lines = exporter.voractl("get", *[str(r["id"]) for r in records]).splitlines()
        document = json.loads(exporter.voractl("caps"))
        hints = {}
        for block_name, block in document.items():
            groups = [("", block)] if "e" in block else [(g, v) for g, v in block.items() if isinstance(v, dict)]
            for group_name, group in groups:
                for e in group["e"]:
                    hints[(block_name, group_name, e["id"])] = e
        widgets = {}
        for r in records:
            e = hints[(r["block"], r["group"], r["id"])]
            widgets[r["id"]] = ("strip" if r["unit"] in ("I/O", "H/L", "ON/OFF") else "chart") if e.get("sui") == "Chart" \
                else "textbox" if e.get("ui") == "TextBox" else "label"
        board = {"records": records, "widgets": widgets, "screens": screens,
                 "get": {r["path"]: l[len(r["path"]) + 2:] for r, l in zip(records, lines)},
                 "name": next(r["value"] for r in records if r["name"] == "Board name")}
        pages = {}
        for width, height in (PHONE, (1280, 900)):
            view(driver, width, height)
            driver.get(exporter.url)
            driver.get_log("browser") if width == PHONE[0] else None
            pages[width] = wait(driver, lambda p: p["body"].get("ready") == "1" and int(p["body"].get("samples", 0)) >= 3)
            if pages[width] is None:
                return fail(f"{name}: the page is not ready at {width} pixels")
            shoot(driver, os.path.join(ARTIFACTS, f"{name}-{width}.png"), width)
        view(driver, 1280, dark=True)
        shoot(driver, os.path.join(ARTIFACTS, f"{name}-1280-dark.png"), 1280)
        page = pages[1280]
        page["phone"] = pages[PHONE[0]]
        board["console"] = [e["message"] for e in driver.get_log("browser") if e["level"] == "SEVERE"]
        for check in CHECKS:
            problem = check(page, board)
            if problem:
                fail(f"{name}: {check.__name__}: {problem}")
        print(f"{name}: {len(page['items'])} items, {sum(c['shown'] for c in page['charts'])} of "
              f"{len(page['charts'])} charts open, {page['phone']['height']} pixels tall on a phone")
    finally:
        driver.get("about:blank")
        exporter.stop()


def check_keyboard(driver):
    """The largest board with the keyboard alone: Tab reaches a chart's button, Enter opens it."""
    exporter = Exporter("keyboard", "4", os.path.join(PROFILES, "vora4-largest.json"))
    try:
        view(driver, 1280)
        driver.get(exporter.url)
        wait(driver, lambda p: p["body"].get("ready") == "1")
        for _ in range(20):
            ActionChains(driver).send_keys(Keys.TAB).perform()
            if driver.switch_to.active_element.tag_name == "button":
                break
        button = driver.switch_to.active_element
        ActionChains(driver).send_keys(Keys.ENTER).perform()
        chart = button.get_attribute("aria-controls")
        page = wait(driver, lambda p: any(c["shown"] and c["points"] >= 2 for c in p["charts"]), 10)
        if button.get_attribute("aria-expanded") != "true" or not page or \
                [c["id"] for c in page["charts"] if c["shown"]] != [int(chart[6:])]:
            fail("keyboard: Tab and Enter do not open a chart")
    finally:
        driver.get("about:blank")
        exporter.stop()


def check_recovery(driver):
    """A page opened while the module is not up shows the board once it comes
    up; after the exporter restarts it says its samples are stale until the
    new one answers, and then goes on by itself (long before the new one's
    samples, every 2 s, are numbered past the old one's)."""
    late = {"board": {"name": "VB-LATE"}, "sensors": {"temperature": [{"index": 0, "value": 40}]},
            "faults": [{"function": "VoraLibInitialize", "status": "0xFFFFF0FF", "times": 3}]}
    exporter = Exporter("late", "4", profile_of("late", late))
    try:
        view(driver, 1280)
        driver.get(exporter.url)
        if not wait(driver, lambda p: p["body"].get("ready") == "1" and not p["items"] and "not up" in p["title"]):
            fail("late: the page does not say the module is not up")
        if not wait(driver, lambda p: p["board"] == "VB-LATE" and any(c["points"] >= 2 for c in p["charts"])):
            fail("late: the page does not show the board once the module came up")
        port = int(exporter.url.rsplit(":", 1)[1].strip("/"))
        before = wait(driver, lambda p: int(p["body"].get("samples", 0)) >= 20)["body"]["started"]
        exporter.stop()
        if not wait(driver, lambda p: p["body"].get("stale") == "1"):
            fail("restart: the page does not say its samples are stale")
        del late["faults"]
        late["sensors"]["temperature"][0]["value"] = 41
        exporter = Exporter("late", "4", profile_of("late", late), port, interval=2)
        if not wait(driver, lambda p: p["body"].get("stale") == "0" and p["body"].get("started") != before
                    and any(i["text"] == "+41.0 °C" for i in p["items"])):
            fail("restart: the page does not go on with the restarted exporter")
        if [e for e in driver.get_log("browser") if e["level"] == "SEVERE" and "/api/" not in e["message"]]:
            fail("restart: console errors besides the exporter's absence")
    finally:
        exporter.stop()


def main():
    os.makedirs(ARTIFACTS, exist_ok=True)
    driver = browser()
    try:
        for name, generation, profile, screens in BOARDS:
            check_board(driver, name, generation, profile, screens)
        check_keyboard(driver)
        check_recovery(driver)
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
if not (os.path.exists("/usr/bin/chromium") and os.path.exists("/usr/bin/chromedriver")):
    print("SKIP: Debian's chromium and chromium-driver are not installed")
    sys.exit(77)
sys.exit(main())
