#!/usr/bin/python3
"""Opens the page of a batch in a headless browser, as a reader does.

    check_gallery.py OUT DEFINITIONS

Fails where the page or a report that it links to says something on the console, a picture does not
load, a definition is missing or doubled, a value is missing, or anything is fetched from elsewhere."""
import pathlib
import sys

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

VALUES = ["family", "samples", "duration", "peak", "least margin to the upper band",
          "least margin to the lower band", "peak velocity", "peak displacement",
          "velocity at the end", "displacement at the end"]


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


def check_row(row, out):
    """The values, pictures and link of a row; returns the name of its definition."""
    name = row.find_element(By.TAG_NAME, "a").text
    check("clean" in row.text, f"{name}: is not clean: {row.text}")
    cell = row.find_elements(By.TAG_NAME, "td")[1].text
    values = dict(line.split(": ", 1) for line in cell.splitlines())
    for label in VALUES:
        check(values.get(label, "-") not in ("-", "", "nan", "inf"), f"{name}: no {label}")
    pictures = [image.get_attribute("src") for image in row.find_elements(By.TAG_NAME, "img")]
    check([pathlib.Path(src).name for src in pictures] == [f"{name}.png", f"{name}.srs.png"],
          f"{name}: has the pictures {pictures}")
    link = row.find_element(By.TAG_NAME, "a").get_attribute("href")
    check(link == (out / f"{name}.html").resolve().as_uri(), f"{name}: links to {link}")
    return name


def main():
    out, definitions = (pathlib.Path(argument) for argument in sys.argv[1:3])
    expected = sorted(path.stem for path in definitions.glob("*.json"))
    check(len(expected) > 30, f"{definitions}: only {len(expected)} definitions")
    driver = browser()
    try:
        opened(driver, out / "index.html")
        rows = driver.find_elements(By.CSS_SELECTOR, "tbody tr")
        check([check_row(row, out) for row in rows] == expected, "a definition is missing or doubled")
        images = driver.execute_script(
            "return [...document.images].map(i => [i.src, i.complete && i.naturalWidth > 100])")
        check(len(images) == 2 * len(expected), f"{len(images)} pictures")
        for source, loaded in images:
            check(loaded, f"{source}: does not load")
        for name in expected:
            opened(driver, out / f"{name}.html")
            check(driver.find_element(By.TAG_NAME, "h1").text.startswith(name), f"{name}: heading")
            check(len(driver.find_elements(By.CSS_SELECTOR, "table tr")) >= 15, f"{name}: numbers")
            size = driver.find_element(By.TAG_NAME, "svg").size
            check(size["width"] > 300 and size["height"] > 300, f"{name}: plot of {size}")
    finally:
        driver.quit()
    print(f"{len(expected)} definitions, {len(images)} pictures, {len(expected)} reports")


if __name__ == "__main__":
    main()
