#!/usr/bin/python3
"""Opens the page of a batch in a headless browser, as a reader does.

    check_gallery.py OUT FOLDER...     folders that have a file NAME.json for each definition

Fails where the page, a report that it links to or the page of a verdict says something on the console, a picture does not
load, a definition is missing or doubled, a value or a file is missing, anything is fetched from
elsewhere, a page is wider than the window or stands at its edge, a text is too small to read or
broken within a word, a printed sheet has other than four definitions, or a sheet cuts a picture."""
import base64
import pathlib
import re
import sys

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

VALUES = ["family", "samples", "duration", "peak", "least margin to the upper band",
          "least margin to the lower band", "peak velocity", "peak displacement",
          "velocity at the end", "displacement at the end"]

WIDTHS = [400, 900, 1400]  # of the window, a telephone's first [CSS pixel]
# Their compensation takes more of the velocity change than the usual 10 %, and the page says so.
SLOWER = ("compensated_optimized", "compensated_sawtooth")
PER_SHEET = 4  # definitions


def browser():
    options = Options()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def check(condition, what):
    if not condition:
        sys.exit(f"gallery: {what}")


def opened(driver, page):
    """Opens a page and checks that it is quiet and stands alone."""
    driver.get(page.resolve().as_uri())
    said = driver.get_log("browser")
    check(not said, f"{page}: the console says {said}")
    fetched = driver.execute_script(
        "return performance.getEntriesByType('resource').map(e => e.name)")
    check(all(name.startswith("file:") for name in fetched), f"{page}: fetches {fetched}")


def check_layout(driver, page):
    """Opens a page at every width: nothing to scroll sideways, nothing at the edge, no small print."""
    for width in WIDTHS:
        driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 500})
        opened(driver, page)
        shown = driver.execute_script("""
            const seen = [...document.querySelectorAll("h1, h2, p, th, td, img, svg")].filter(
                e => e.getClientRects().length);
            const boxes = seen.filter(e => !e.closest(".wide")).map(e => e.getBoundingClientRect());
            const lines = e => { const range = document.createRange(); range.selectNodeContents(e);
                                 return new Set([...range.getClientRects()].map(b => b.top)).size; };
            const broken = seen.filter(e => e.matches("th") && !e.textContent.trim().match(/\\s/) &&
                                            lines(e) > 1);
            const texts = seen.filter(e => e.matches("h1, h2, p, th, td"));
            return {broken: broken.map(e => e.textContent), scroll: document.documentElement.scrollWidth, inner: window.innerWidth,
                    left: Math.min(...boxes.map(b => b.left)),
                    right: window.innerWidth - Math.max(...boxes.map(b => b.right)),
                    font: Math.min(...texts.map(e => parseFloat(getComputedStyle(e).fontSize))),
                    picture: Math.min(...seen.filter(e => e.matches("img, svg"))
                                            .map(e => e.getBoundingClientRect().width))}""")
        where = f"{page} at {width}"
        check(shown["inner"] == width and shown["scroll"] <= width, f"{where}: is {shown} wide")
        check(min(shown["left"], shown["right"]) >= 12, f"{where}: stands at the edge: {shown}")
        check(not shown["broken"], f"{where}: breaks {shown['broken']}")
        check(shown["font"] >= 11, f"{where}: has a text of {shown['font']} px")
        check(shown["picture"] >= min(width - 50, 260), f"{where}: has a small picture: {shown}")
    driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})


def sheets(driver):
    """How many sheets the page that is open prints on, with its own size of paper."""
    printed = driver.execute_cdp_cmd("Page.printToPDF", {"preferCSSPageSize": True})
    return len(re.findall(rb"/Type\s*/Page\b", base64.b64decode(printed["data"])))


PAPER = (186, 273)  # what the margins leave of A4 [mm]


def check_print(driver, page):
    """No sheet of A4 cuts a picture or the line above one: none is larger than a sheet, or broken."""
    width, height = (round(mm * 96 / 25.4) for mm in PAPER)
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
    opened(driver, page)
    figures = driver.execute_script("""
        return [...document.querySelectorAll("figure")].map(e => {
            const box = e.getBoundingClientRect(), before = e.previousElementSibling;
            return {right: box.right, height: box.height, inside: getComputedStyle(e).breakInside,
                    svg: e.firstElementChild.getBoundingClientRect().height,
                    before: before && before.matches("h2, .caption")
                        ? [before.getBoundingClientRect().height, getComputedStyle(before).breakAfter]
                        : [0, "avoid"]}})""")
    check(figures, f"{page}: prints no picture")
    for figure in figures:
        check(figure["inside"] == "avoid" and figure["before"][1] == "avoid",
              f"{page}: a sheet may end within {figure}")
        check(figure["right"] <= width and figure["height"] + figure["before"][0] < height and
              100 < figure["svg"] <= figure["height"], f"{page}: a sheet cuts {figure}")
    driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": ""})


def check_card(card, out):
    """The values, pictures and links of a card; returns the name of its definition."""
    name = card.find_element(By.CSS_SELECTOR, "h2 a").text
    clean = bool(card.find_elements(By.CSS_SELECTOR, "p.clean"))
    check(clean != (name in SLOWER), f"{name}: is clean or not: {card.text}")
    check(clean or "velocity change" in card.text, f"{name}: {card.text}")
    values = {row.find_element(By.TAG_NAME, "th").text: row.find_element(By.TAG_NAME, "td").text
              for row in card.find_elements(By.TAG_NAME, "tr")}
    for label in VALUES:
        check(values.get(label, "-") not in ("-", "", "nan", "inf"), f"{name}: no {label}")
    pictures = [image.get_attribute("src") for image in card.find_elements(By.TAG_NAME, "img")]
    check([pathlib.Path(src).name for src in pictures] == [f"{name}.png", f"{name}.srs.png"],
          f"{name}: has the pictures {pictures}")
    links = [link.get_attribute("href") for link in card.find_elements(By.TAG_NAME, "a")]
    for suffix in (".html", ".csv", ".rec", ".json", ".png", ".srs.png"):
        file = out / f"{name}{suffix}"
        check(file.resolve().as_uri() in links, f"{name}: does not link to {file.name}")
        check(file.stat().st_size > 100, f"{name}: has no {file.name}")
    return name


def check_report(driver, page, name):
    """What a report shows."""
    opened(driver, page)
    heading = driver.find_element(By.TAG_NAME, "h1").text
    check(heading.startswith(f"{name}: "), f"{name}: heading {heading}")
    whole = driver.execute_script("return document.body.textContent")
    check(whole.count(heading) == 1, f"{name}: states its heading {whole.count(heading)} times")
    check(len(driver.find_elements(By.CSS_SELECTOR, "table tr")) >= 15, f"{name}: numbers")
    pictures = driver.find_elements(By.TAG_NAME, "svg")
    check(len(pictures) == 2, f"{name}: {len(pictures)} pictures")
    for picture in pictures:
        size = picture.size
        check(size["width"] > 300 and size["height"] > 300, f"{name}: picture of {size}")
    indents = driver.execute_script("""
        const left = e => { const range = document.createRange(); range.selectNodeContents(e);
                            return range.getBoundingClientRect().left; };
        const rows = [...document.querySelectorAll("th")];
        return rows.filter(e => e.matches(".part")).map(e => left(e) - left(rows[0]))""")
    check(len(indents) >= 2 and min(indents) > 10, f"{name}: its parts are moved by {indents}")


def check_verdict(driver, page):
    """What the page of a verdict shows."""
    opened(driver, page)
    heading = driver.find_element(By.TAG_NAME, "h1").text
    check(heading.startswith("Shock verdict: "), f"{page}: heading {heading}")
    shocks = driver.find_elements(By.CSS_SELECTOR, ".wide tr")[1:]
    pictures = driver.find_elements(By.TAG_NAME, "svg")
    check(shocks and len(pictures) == 2 * len(shocks),
          f"{page}: {len(pictures)} pictures of {len(shocks)} shocks")
    for number, names in enumerate((("before the steps", "measured", "upper band", "reference"),
                                    ("required", "tolerance", "shock, Q 10"))):
        for picture in pictures[number::2]:
            texts = driver.execute_script(
                "return [...arguments[0].querySelectorAll('text')].map(e => e.textContent.trim())", picture)
            for name in names:
                check(name in texts, f"{page}: picture {number} does not name {name}: {texts}")
    # Neither the legend nor an axis's name stands on another text.
    over = driver.execute_script("""
        const boxes = [...document.querySelectorAll("svg text")].map(e => e.getBoundingClientRect());
        const over = (a, b) => Math.min(a.right, b.right) - Math.max(a.left, b.left) > 1 &&
                               Math.min(a.bottom, b.bottom) - Math.max(a.top, b.top) > 0.3 * a.height;
        let count = 0;
        for (let i = 0; i < boxes.length; ++i)
            for (let k = 0; k < i; ++k) if (over(boxes[i], boxes[k])) ++count;
        return count""")
    check(over == 0, f"{page}: {over} texts of its pictures stand on one another")


def main():
    out, *folders = (pathlib.Path(argument) for argument in sys.argv[1:])
    expected = sorted(path.stem for folder in folders for path in folder.glob("*.json"))
    check(len(expected) > 30, f"only {len(expected)} definitions")
    driver = browser()
    try:
        opened(driver, out / "index.html")
        cards = driver.find_elements(By.CSS_SELECTOR, "article.card")
        check([check_card(card, out) for card in cards] == expected,
              "a definition is missing or doubled")
        images = driver.execute_script(
            "return [...document.images].map(i => [i.src, i.complete && i.naturalWidth > 100])")
        check(len(images) == 2 * len(expected), f"{len(images)} pictures")
        for source, loaded in images:
            check(loaded, f"{source}: does not load")
        count = sheets(driver)
        check(count == -(-len(expected) // PER_SHEET), f"the page prints on {count} sheets")
        check_layout(driver, out / "index.html")
        for name in expected:
            check_report(driver, out / f"{name}.html", name)
        for name in ("half_sine_fixed", "compensated_optimized", "measured"):
            check_layout(driver, out / f"{name}.html")
        check_print(driver, out / "half_sine_fixed.html")
        check_verdict(driver, out / "verdict.html")
        check_layout(driver, out / "verdict.html")
        check_print(driver, out / "verdict.html")
    finally:
        driver.quit()
    print(f"{len(expected)} definitions, {len(images)} pictures, {len(expected)} reports, a verdict")


if __name__ == "__main__":
    main()
