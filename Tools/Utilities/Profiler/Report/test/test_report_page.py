"""The report page as a person sees it: reports of the log tool's golden logs, loaded from file://
in a real browser, clicked and typed into, with their console and network watched. Each view is
kept as a screenshot in $KVT_REPORT_SCREENSHOTS."""
import json
import os
import subprocess
import tempfile
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


def tool(*args):
    subprocess.run([LOG_TOOL, *map(str, args)], check=True)


@pytest.fixture(scope="module")
def reports():
    """Builds the golden logs and their reports; the comparison planted in compare-200 included."""
    folder = Path(tempfile.mkdtemp(prefix="kvt-report-"))
    for case, name in [("compare-200", "base"), ("compare-200", "new"), ("report", "input"),
                       ("percentiles", "input"), ("step-keys", "input")]:
        tool("build", "--chunks", GOLDEN / case / f"{name}.json", "-o", folder / f"{case}-{name}.log")
    tool("synth", "-o", folder / "synth.log", "--graphs", 2, "--executions", 600, "--steps", 12,
         "--noise", "heavy")
    tool("report", folder / "synth.log", "-o", folder / "synth.html", "--skip-first", 3)
    tool("report", folder / "compare-200-new.log", "--base", folder / "compare-200-base.log",
         "-o", folder / "compare.html", "--title", "compare-200")
    tool("report", folder / "report-input.log", "-o", folder / "hostile.html", "--title", HOSTILE_TITLE)
    tool("build", "--chunks", GOLDEN / "without-steps" / "input.json", "-o", folder / "bare.log")
    tool("build", "--chunks", GOLDEN / "without-steps" / "no-executions.json", "-o", folder / "empty.log")
    tool("report", folder / "bare.log", "-o", folder / "bare.html")
    tool("report", folder / "empty.log", "--base", folder / "empty.log", "-o", folder / "empty.html")
    tool("report", folder / "percentiles-input.log", "-o", folder / "percentiles.html")
    tool("report", folder / "step-keys-input.log", "-o", folder / "steps.html", "--skip-first", "1")
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
    return driver.find_elements(By.CSS_SELECTOR, f"#{table} tbody tr")


def column(driver, index):
    return [row.find_elements(By.TAG_NAME, "td")[index].text for row in rows(driver)]


def shoot(driver, name):
    driver.save_screenshot(str(SCREENSHOTS / f"{name}.png"))


def test_sorting_reorders_the_rows(browser, reports):
    page = reports / "percentiles.html"
    open_page(browser, page)
    shoot(browser, "steps")
    browser.find_element(By.CSS_SELECTOR, "th[data-key='p50'] button").click()
    values = [float(text.replace(",", "")) for text in column(browser, 6)]
    assert values == sorted(values, reverse=True)
    browser.find_element(By.CSS_SELECTOR, "th[data-key='p50'] button").click()
    values = [float(text.replace(",", "")) for text in column(browser, 6)]
    assert values == sorted(values)
    browser.find_element(By.CSS_SELECTOR, "th[data-key='name'] button").click()
    names = column(browser, 0)
    assert names == sorted(names, key=str.lower)
    expect_quiet(browser, page)


def test_the_filter_hides_rows(browser, reports):
    page = reports / "steps.html"
    open_page(browser, page)
    everything = column(browser, 0)
    browser.find_element(By.ID, "filter").send_keys("oo")
    assert column(browser, 0) == [name for name in everything if "oo" in name.lower()]
    assert 0 < len(rows(browser)) < len(everything)


def test_a_step_opens_its_detail_with_both_pictures(browser, reports):
    page = reports / "synth.html"
    open_page(browser, page)
    rows(browser)[0].click()
    detail = browser.find_element(By.ID, "detail")
    assert detail.is_displayed()
    assert detail.find_elements(By.CSS_SELECTOR, "#histogram svg rect.bar")
    assert detail.find_elements(By.CSS_SELECTOR, "#executions svg circle.point")
    assert detail.find_elements(By.CSS_SELECTOR, "#executions svg circle.first")
    assert detail.find_elements(By.CSS_SELECTOR, "#executions svg line.cut")  # --skip-first 3
    browser.set_window_size(1280, 1180)
    browser.execute_script("window.scrollTo(0, 0)")
    shoot(browser, "steps-and-detail")
    browser.set_window_size(1280, 960)
    browser.find_element(By.TAG_NAME, "body").send_keys(Keys.ESCAPE)
    assert not browser.find_element(By.ID, "detail").is_displayed()
    expect_quiet(browser, page)


def test_the_planted_regression_shows_as_slower(browser, reports):
    page = reports / "compare.html"
    open_page(browser, page)
    browser.find_element(By.ID, "comparison-view").click()
    verdicts = {row.find_elements(By.TAG_NAME, "td")[3].text + " " + row.find_elements(By.TAG_NAME, "td")[2].text:
                row.find_elements(By.TAG_NAME, "td")[0].text for row in rows(browser, "comparison-table")}
    assert verdicts["Conv span"] == "\u25b2 slower"
    assert verdicts["Pool span"] == "= same"
    next(row for row in rows(browser, "comparison-table") if "Conv" in row.text).click()
    assert browser.find_elements(By.CSS_SELECTOR, "#overlay svg path.base")
    shoot(browser, "comparison")
    expect_quiet(browser, page)


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


def test_the_url_keeps_the_view(browser, reports):
    page = reports / "steps.html"
    open_page(browser, page)
    browser.find_element(By.CSS_SELECTOR, "th[data-key='mean'] button").click()
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


def test_runs_without_steps_or_executions_say_so(browser, reports):
    open_page(browser, reports / "bare.html")
    assert "have no steps" in browser.find_element(By.ID, "table-section").text
    open_page(browser, reports / "empty.html")
    assert "no executions" in browser.find_element(By.ID, "graph").text
