"""The report page as a person sees it: reports of the log tool's golden logs and of synthesised
runs, loaded from file:// in a real browser, clicked and typed into, with their console and
network watched. Each view is kept as a screenshot in $KVT_REPORT_SCREENSHOTS; the times of the
big comparison are written beside them (timings.txt), measured, not asserted."""
import json
import os
import subprocess
import tempfile
import time
from pathlib import Path

import pytest
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

LOG_TOOL = os.environ["KVT_LOG_TOOL"]
GOLDEN = Path(os.environ["KVT_TOOL_GOLDEN_DIR"])
SCREENSHOTS = Path(os.environ["KVT_REPORT_SCREENSHOTS"])
HOSTILE_GRAPH = "</script><img src=x onerror=alert(1)>"
HOSTILE_TITLE = "</title><script>alert(2)</script>"
# The new run of the synthesised comparison: one step far slower, one a little, one faster.
PLANTED = {"Mul_0": 2.55, "Pad_2": 1.065, "Relu6_6": 0.804}


def tool(*args, cwd=None):
    subprocess.run([LOG_TOOL, *map(str, args)], check=True, cwd=cwd)


@pytest.fixture(scope="module")
def reports():
    """Builds the golden logs, a synthesised run and a synthesised pair, and their reports."""
    folder = Path(tempfile.mkdtemp(prefix="kvt-report-"))
    for case, name in [("compare-200", "base"), ("compare-200", "new"), ("report", "input"),
                       ("percentiles", "input"), ("step-keys", "input")]:
        tool("build", "--chunks", GOLDEN / case / f"{name}.json", "-o", folder / f"{case}-{name}.log")
    # Relative paths, so that the pages (and the README's pictures of them) name no temporary folder.
    tool("synth", "-o", "synth.log", "--graphs", 2, "--executions", 600, "--steps", 12, "--noise", "heavy",
         cwd=folder)
    tool("report", "synth.log", "-o", "synth.html", "--skip-first", 3, cwd=folder)
    tool("report", folder / "compare-200-new.log", "--base", folder / "compare-200-base.log",
         "-o", folder / "compare.html", "--title", "compare-200")
    tool("report", folder / "report-input.log", "-o", folder / "hostile.html", "--title", HOSTILE_TITLE)
    tool("build", "--chunks", GOLDEN / "without-steps" / "input.json", "-o", folder / "bare.log")
    tool("build", "--chunks", GOLDEN / "without-steps" / "no-executions.json", "-o", folder / "empty.log")
    tool("report", folder / "bare.log", "-o", folder / "bare.html")
    tool("report", folder / "empty.log", "--base", folder / "empty.log", "-o", folder / "empty.html")
    tool("report", folder / "percentiles-input.log", "-o", folder / "percentiles.html")
    tool("report", folder / "step-keys-input.log", "-o", folder / "steps.html", "--skip-first", "1")
    shape = ["--graphs", 4, "--executions", 100, "--steps", 40, "--seed", 3]
    tool("synth", "-o", "base.log", *shape, cwd=folder)
    scales = [argument for name, factor in PLANTED.items() for argument in ("--scale", f"{name}={factor}")]
    tool("synth", "-o", "new.log", *shape, "--noise-seed", 4, *scales, cwd=folder)
    tool("report", "new.log", "--base", "base.log", "-o", "pair.html", cwd=folder)
    runs = sorted((GOLDEN / "history-step").glob("run*.json"))
    for run in runs:
        tool("build", "--chunks", run, "-o", folder / f"{run.stem}.log")
    tool("report", "--history", *[f"{run.stem}.log" for run in runs], "-o", "history.html", cwd=folder)
    tool("report", "--history", "report-input.log", "report-input.log", "-o", "hostile-history.html",
         cwd=folder)
    return folder


@pytest.fixture(scope="module")
def browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                     "--no-first-run", "--disable-background-networking",
                     "--disable-component-update", "--disable-sync", "--window-size=1280,960",
                     "--user-data-dir=" + tempfile.mkdtemp(prefix="kvt-chromium-")]:
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    SCREENSHOTS.mkdir(parents=True, exist_ok=True)
    yield driver
    driver.quit()


def open_page(driver, page, fragment=""):
    driver.get("about:blank")
    driver.get_log("browser")  # what came before the page is not the page's
    driver.get_log("performance")
    driver.get(page.as_uri() + fragment)
    assert driver.execute_script("return document.readyState") == "complete"
    expect_quiet(driver, page)


def expect_quiet(driver, page):
    """No console error (a refused script or style reports one) and no request but the page."""
    errors = [entry["message"] for entry in driver.get_log("browser") if entry["level"] == "SEVERE"]
    assert errors == []
    requests = [json.loads(entry["message"])["message"] for entry in driver.get_log("performance")]
    urls = [m["params"]["request"]["url"] for m in requests if m["method"] == "Network.requestWillBeSent"]
    assert [url for url in urls if not url.startswith(page.as_uri())] == []
    assert driver.execute_script("return performance.getEntriesByType('resource').length") == 0


def rows(driver, table="steps"):
    """The rows the table shows, without hidden ones and without an open detail."""
    return driver.find_elements(By.CSS_SELECTOR, f"#{table} tbody tr[data-index]:not([hidden])")


def column(driver, index, table="steps"):
    """The text of a column's cells, also of rows the browser has not laid out yet."""
    return driver.execute_script(
        "return [...arguments[0]].map((row) => row.children[arguments[1]].textContent)",
        rows(driver, table), index)


def number(text):
    return float(text.replace(",", "").replace("\u2212", "-").replace("\u00b1", ""))


def sort_by(driver, key):
    driver.find_element(By.CSS_SELECTOR, f"th[data-key='{key}'] button").click()


def shoot(driver, name):
    driver.save_screenshot(str(SCREENSHOTS / f"{name}.png"))


def test_sorting_reorders_the_rows(browser, reports):
    page = reports / "percentiles.html"
    open_page(browser, page)
    shoot(browser, "steps")
    sort_by(browser, "p50")
    values = [number(text) for text in column(browser, 6)]
    assert values == sorted(values, reverse=True)
    sort_by(browser, "p50")
    values = [number(text) for text in column(browser, 6)]
    assert values == sorted(values)
    sort_by(browser, "name")
    names = column(browser, 0)
    assert names == sorted(names, key=str.lower)
    expect_quiet(browser, page)


def test_the_filter_hides_rows_and_keeps_its_input(browser, reports):
    page = reports / "steps.html"
    open_page(browser, page)
    everything = column(browser, 0)
    browser.execute_script("document.getElementById('filter').dataset.mark = 'same element'")
    browser.find_element(By.TAG_NAME, "body").send_keys("/")
    browser.switch_to.active_element.send_keys("oo")
    assert column(browser, 0) == [name for name in everything if "oo" in name.lower()]
    assert 0 < len(rows(browser)) < len(everything)
    typed = browser.switch_to.active_element
    assert typed.get_attribute("data-mark") == "same element"  # never rebuilt, so no lost caret
    assert browser.execute_script("return arguments[0].selectionStart", typed) == 2
    status = browser.find_elements(By.CSS_SELECTOR, "[role='status'], [aria-live]")
    assert [element.text for element in status if element.is_displayed()] == \
        [f"{len(rows(browser))} of {len(everything)} steps"]


def test_a_step_opens_under_its_row_with_both_pictures(browser, reports):
    page = reports / "synth.html"
    open_page(browser, page)
    clicked = rows(browser)[2]
    clicked.click()
    detail = browser.find_element(By.ID, "detail")
    assert detail.is_displayed()
    assert browser.execute_script(
        "return arguments[0].nextElementSibling.contains(arguments[1])", clicked, detail)
    assert detail.find_elements(By.CSS_SELECTOR, "#histogram svg rect.bar")
    assert detail.find_elements(By.CSS_SELECTOR, "#executions svg circle.point")
    assert detail.find_elements(By.CSS_SELECTOR, "#executions svg circle.first")
    assert detail.find_elements(By.CSS_SELECTOR, "#executions svg line.cut")  # --skip-first 3
    expect_labels_apart(browser, detail)
    browser.set_window_size(1280, 1180)
    browser.execute_script("window.scrollTo(0, 0)")
    shoot(browser, "steps-and-detail")
    browser.set_window_size(1280, 960)
    browser.find_element(By.TAG_NAME, "body").send_keys(Keys.ESCAPE)
    assert browser.find_elements(By.ID, "detail") == [] or not browser.find_element(By.ID, "detail").is_displayed()
    assert browser.switch_to.active_element == clicked
    expect_quiet(browser, page)


def test_the_wait_switch_shows_the_waits(browser, reports):
    page = reports / "synth.html"
    open_page(browser, page)
    spans = column(browser, 6)
    browser.find_element(By.CSS_SELECTOR, "button[data-measure='wait']").click()
    assert "measure=wait" in browser.current_url
    assert "waits, log axis" in browser.find_element(By.CSS_SELECTOR, "#steps th.picture").text
    assert column(browser, 6) != spans
    url = browser.current_url
    open_page(browser, reports / "steps.html")
    assert "queue wait p50" in browser.find_element(By.ID, "graph").text
    assert " us" in browser.find_element(By.ID, "graph").text
    browser.find_element(By.ID, "queue-detail").click()
    assert "queueWait" in browser.find_element(By.CSS_SELECTOR, "#detail h2").text
    assert browser.find_elements(By.CSS_SELECTOR, "#detail #histogram svg rect.bar")
    open_page(browser, page, url[url.index("#"):])
    assert browser.find_element(By.CSS_SELECTOR, "button[data-measure='wait']").get_attribute("aria-pressed") == "true"
    assert column(browser, 6) != spans


def test_the_planted_regression_shows_as_slower(browser, reports):
    page = reports / "compare.html"
    open_page(browser, page)  # a comparison with a slower row opens on the comparison
    def verdicts():
        return {f"{cells[3].text} {cells[2].text}": cells[0].text
                for cells in (row.find_elements(By.TAG_NAME, "td") for row in rows(browser, "comparison-table"))}
    assert verdicts()["Conv span"] == "\u25b2 slower"
    assert "Pool span" not in verdicts()  # same rows are folded behind their count
    browser.find_element(By.ID, "show-same").click()
    assert verdicts()["Pool span"] == "= same"
    browser.find_element(By.CSS_SELECTOR, "#views button").click()
    conv = next(row for row in rows(browser) if row.text.startswith("Conv"))
    assert conv.find_elements(By.TAG_NAME, "td")[12].text == "+30.0"  # change beside the step
    expect_quiet(browser, page)


def test_the_comparison_sorts_filters_and_pages(browser, reports):
    page = reports / "pair.html"
    open_page(browser, page)
    table = "comparison-table"
    total = browser.execute_script(
        "return JSON.parse(document.getElementById('report-data').textContent).comparison.rows.length")
    assert browser.find_element(By.ID, "comparison-status").text.startswith("50 of")
    assert set(column(browser, 0, table)) & {"= same"} == set()
    browser.find_element(By.ID, "show-same").click()
    browser.find_element(By.ID, "show-all-rows").click()
    assert len(rows(browser, table)) == total
    sort_by(browser, "change")
    changes = [number(text) for text in column(browser, 7, table) if text != "-"]
    assert changes == sorted(changes, reverse=True)
    sort_by(browser, "p")
    ps = [number(text) for text in column(browser, 9, table) if text != "-"]
    assert ps == sorted(ps)
    browser.find_element(By.TAG_NAME, "body").send_keys("/")
    browser.switch_to.active_element.send_keys("relu6_6")
    names = column(browser, 3, table)
    assert names and all(name == "Relu6_6" for name in names)
    url = browser.current_url
    open_page(browser, reports / "percentiles.html")
    open_page(browser, page, url[url.index("#"):])
    assert column(browser, 3, table) == names
    assert browser.find_element(By.ID, "comparison-filter").get_attribute("value") == "relu6_6"
    assert browser.find_element(By.CSS_SELECTOR, f"#{table} th[data-key='p']").get_attribute("aria-sort") == "ascending"
    expect_quiet(browser, page)


def test_a_comparison_row_opens_under_itself_in_view(browser, reports):
    page = reports / "pair.html"
    open_page(browser, page)
    browser.execute_script("window.scrollTo(0, 200)")
    clicked = rows(browser, "comparison-table")[1]
    before = browser.execute_script("return [window.scrollY, arguments[0].getBoundingClientRect().top]", clicked)
    clicked.click()
    overlay = browser.find_element(By.ID, "overlay")
    assert browser.execute_script(
        "return arguments[0].nextElementSibling.contains(arguments[1])", clicked, overlay)
    assert browser.execute_script("return [window.scrollY, arguments[0].getBoundingClientRect().top]", clicked) == before
    assert browser.execute_script(
        "const r = arguments[0].getBoundingClientRect(); return r.top >= 0 && r.bottom <= innerHeight", overlay)
    assert overlay.find_elements(By.CSS_SELECTOR, "svg path.base")
    assert overlay.find_elements(By.CSS_SELECTOR, "figure.row-change svg rect.band")
    assert overlay.find_elements(By.CSS_SELECTOR, "figure.row-change svg line.interval")
    expect_labels_apart(browser, overlay)
    browser.find_element(By.TAG_NAME, "body").send_keys(Keys.ESCAPE)
    assert browser.find_elements(By.ID, "overlay") == [] or not browser.find_element(By.ID, "overlay").is_displayed()
    assert browser.switch_to.active_element == clicked
    expect_quiet(browser, page)


def expect_labels_apart(driver, container):
    boxes = driver.execute_script(
        "return [...arguments[0].querySelectorAll('svg text.label')].map((t) => {"
        " const b = t.getBoundingClientRect(); return [b.left, b.top, b.right, b.bottom]; })", container)
    for i, a in enumerate(boxes):
        for b in boxes[i + 1:]:
            assert a[2] <= b[0] or b[2] <= a[0] or a[3] <= b[1] or b[3] <= a[1], (a, b)


def test_an_outlier_leaves_the_band_readable(browser, reports):
    page = reports / "pair.html"
    open_page(browser, page, "#view=comparison&csort=change&cdir=desc")
    band = browser.execute_script(
        "return document.querySelector('#comparison-table tbody tr[data-index] svg rect.band').getBoundingClientRect().width")
    assert band > 40
    top = rows(browser, "comparison-table")[0]
    assert top.find_elements(By.TAG_NAME, "td")[3].text == "Mul_0"
    assert top.find_elements(By.CSS_SELECTOR, "svg path.beyond")
    assert top.find_element(By.CSS_SELECTOR, "svg text.beyond-label").text.startswith("+15")
    browser.execute_script("document.querySelector('#comparison').scrollIntoView()")
    browser.set_window_size(1280, 1100)
    open_page(browser, page, "#view=comparison&row=" + top.get_attribute("data-index"))
    shoot(browser, "comparison")
    browser.set_window_size(1280, 960)


def with_data(source, target, change):
    """target: the page of source with its data changed by change, as data the program does not
    write yet would arrive."""
    text = source.read_text()
    start = text.index('<script id="report-data" type="application/json">') + len(
        '<script id="report-data" type="application/json">')
    end = text.index("</script>", start)
    data = json.loads(text[start:end])
    change(data)
    target.write_text(text[:start] + json.dumps(data).replace("<", "\\u003c") + text[end:])
    return target


def test_data_yet_to_come_shows(browser, reports):
    """A cut log's banner at the top, as text; needed per run where the runs differ."""
    def change(data):
        data["run"]["partial"] = {"chunksRead": 3, "bytesRead": 4096, "reason": "<b>cut</b> at 4096"}
        data["comparison"]["rows"][0].update(verdict="unsure", needed={"base": 120, "new": 340})
    page = with_data(reports / "pair.html", reports / "partial.html", change)
    open_page(browser, page, "#view=comparison")
    banner = browser.find_element(By.ID, "banner")
    assert banner.is_displayed() and banner.get_attribute("role") == "alert"
    assert "<b>cut</b> at 4096" in banner.text and browser.find_elements(By.TAG_NAME, "b") == []
    assert banner.location["y"] < browser.find_element(By.TAG_NAME, "h1").location["y"]
    needed = browser.find_element(By.CSS_SELECTOR, "#comparison-table tr[data-index='0'] td.c-needed")
    assert needed.get_attribute("textContent") == "120/340"


def test_hostile_names_show_as_text(browser, reports):
    page = reports / "hostile.html"
    open_page(browser, page)
    assert HOSTILE_GRAPH in browser.find_element(By.CSS_SELECTOR, "#graph h2").text
    assert "<b>Pool</b>" in column(browser, 0)
    assert browser.find_elements(By.TAG_NAME, "img") == []
    assert browser.find_elements(By.TAG_NAME, "b") == []
    assert browser.execute_script("return document.scripts.length") == 2
    assert browser.title == HOSTILE_TITLE
    browser.find_element(By.ID, "copy-csv").click()
    assert browser.find_element(By.ID, "status").text == "Copied 2 rows as CSV"


def test_hostile_names_in_a_history_show_as_text(browser, reports):
    page = reports / "hostile-history.html"
    open_page(browser, page)
    assert HOSTILE_GRAPH in column(browser, 1, "history-table")
    rows(browser, "history-table")[0].click()
    assert browser.find_element(By.ID, "series-detail").is_displayed()
    assert browser.find_elements(By.TAG_NAME, "img") == []
    assert "Too few runs" in browser.find_element(By.ID, "history").text
    expect_quiet(browser, page)


def test_the_url_keeps_the_view(browser, reports):
    page = reports / "steps.html"
    open_page(browser, page)
    sort_by(browser, "mean")
    browser.find_element(By.ID, "filter").send_keys("conv")
    rows(browser)[1].click()
    shown = (column(browser, 0), browser.find_element(By.CSS_SELECTOR, "#detail h2").text)
    url = browser.current_url
    open_page(browser, reports / "percentiles.html")
    open_page(browser, page, url[url.index("#"):])
    assert browser.find_element(By.ID, "filter").get_attribute("value") == "conv"
    assert browser.find_element(By.CSS_SELECTOR, "th[data-key='mean']").get_attribute("aria-sort") == "descending"
    assert (column(browser, 0), browser.find_element(By.CSS_SELECTOR, "#detail h2").text) == shown
    shoot(browser, "detail")
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                            {"features": [{"name": "prefers-color-scheme", "value": "dark"}]})
    shoot(browser, "detail-dark")
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})


def test_a_history_sorts_by_latest_change_and_opens_a_chart(browser, reports):
    page = reports / "history.html"
    open_page(browser, page)
    assert browser.find_element(By.CSS_SELECTOR, ".logs").text == (
        "run00.log (2023-11-14 22:13 UTC) to run19.log (2023-12-03 22:13 UTC)")
    latest = [text.split("at run ")[-1] for text in column(browser, 0, "history-table")]
    changed = [int(run) for run in latest if run != "-"]
    assert changed and changed == sorted(changed, reverse=True)
    assert latest[len(changed):] == ["-"] * (len(latest) - len(changed))
    first = browser.find_element(By.CSS_SELECTOR, "#history-table tr.slower")
    marks = first.find_elements(By.CSS_SELECTOR, "svg.sparkline .change-mark")
    assert marks and all(m.find_element(By.CSS_SELECTOR, "path.shape") for m in marks)
    first.click()
    detail = browser.find_element(By.ID, "series-detail")
    assert detail.is_displayed()
    assert browser.execute_script(
        "return arguments[0].nextElementSibling.contains(arguments[1])", first, detail)
    points = detail.find_elements(By.CSS_SELECTOR, "circle.point")
    sources = [point.get_attribute("textContent").split(",")[0].split(": ") for point in points]
    assert len(points) > 1 and all(f"run{int(run[4:]):02}.log" == source for run, source in sources)
    assert len(detail.find_elements(By.CSS_SELECTOR, ".change-mark")) == len(marks)
    url = browser.current_url
    assert "series=" in url
    shoot(browser, "history")
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                            {"features": [{"name": "prefers-color-scheme", "value": "dark"}]})
    shoot(browser, "history-dark")
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})
    open_page(browser, page, url[url.index("#"):])
    assert browser.find_element(By.ID, "series-detail").is_displayed()
    browser.find_element(By.TAG_NAME, "body").send_keys(Keys.ESCAPE)
    assert browser.find_elements(By.ID, "series-detail") == [] and "series=" not in browser.current_url
    browser.find_element(By.TAG_NAME, "body").send_keys("/", "conv")
    assert browser.find_element(By.ID, "history-filter").get_attribute("value") == "conv"
    assert set(column(browser, 3, "history-table")) == {"Conv"}
    expect_quiet(browser, page)


def test_runs_without_steps_or_executions_say_so(browser, reports):
    open_page(browser, reports / "bare.html")
    assert "have no steps" in browser.find_element(By.ID, "table-section").text
    open_page(browser, reports / "empty.html")
    assert "no executions" in browser.find_element(By.ID, "graph").text


def timed(driver, script, *args):
    """Milliseconds of script, a click or an input, until the page has been laid out again."""
    return driver.execute_script(
        "const t = performance.now();" + script + "; document.body.getBoundingClientRect();"
        " return performance.now() - t;", *args)


def test_a_big_comparison_is_timed(browser, reports):
    """Two runs of one graph of 2,000 steps: the times are reported in timings.txt, not judged."""
    shape = ["--graphs", 1, "--executions", 60, "--steps", 2000, "--seed", 7]
    tool("synth", "-o", "big-base.log", *shape, cwd=reports)
    tool("synth", "-o", "big-new.log", *shape, "--noise-seed", 8, cwd=reports)
    tool("report", "big-new.log", "--base", "big-base.log", "-o", "big.html", cwd=reports)
    page = reports / "big.html"
    started = time.perf_counter()
    open_page(browser, page, "#view=comparison")
    opened = browser.execute_script(
        "const n = performance.getEntriesByType('navigation')[0]; return n.loadEventEnd - n.startTime")
    wall = time.perf_counter() - started
    figures = {"page MB": page.stat().st_size / 1e6, "open ms (load event)": opened,
               "open s (wall, with the driver)": wall}
    figures["sort ms"] = timed(browser, "document.querySelector(\"#comparison-table th[data-key='change'] button\").click()")
    figures["filter ms"] = timed(
        browser, "const f = document.getElementById('comparison-filter'); f.value = 'Mul';"
        " f.dispatchEvent(new Event('input'))")
    timed(browser, "const f = document.getElementById('comparison-filter'); f.value = '';"
          " f.dispatchEvent(new Event('input'))")
    figures["show same ms"] = timed(browser, "document.getElementById('show-same').click()")
    figures["show all ms"] = timed(browser, "document.getElementById('show-all-rows').click()")
    assert len(rows(browser, "comparison-table")) > 4000
    figures["open a row ms"] = timed(
        browser, "document.querySelectorAll('#comparison-table tbody tr[data-index]')[3000].click()")
    figures["steps show all ms"] = timed(
        browser, "document.querySelector('#views button').click(); document.getElementById('show-all').click()")
    figures["steps sort ms"] = timed(browser, "document.querySelector(\"#steps th[data-key='p99'] button\").click()")
    load = os.getloadavg()
    lines = [f"{name}: {value:.3f}" for name, value in figures.items()]
    lines.append("load average: " + " ".join(f"{value:.2f}" for value in load))
    (SCREENSHOTS / "timings.txt").write_text("\n".join(lines) + "\n")
    print("\n".join(lines))
    expect_quiet(browser, page)
