#!/usr/bin/python3
"""Every page of docs/ can be reached from docs/README.md, and every link of a page leads to a file that exists.

    check_links.py SOURCE_DIR
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1]).resolve()
pages = [root / "README.md", root / "CONTRIBUTING.md", *sorted((root / "docs").glob("*.md"))]
failures, links = [], {}
for page in pages:
    links[page] = set()
    for target in re.findall(r"\]\(([^)\s#]+)", page.read_text()):
        if re.match(r"https?:", target):
            continue
        file = (page.parent / target).resolve()
        links[page].add(file)
        if not file.exists():
            failures.append(f"{page.relative_to(root)}: {target} does not exist")

reached, open_pages = set(), [root / "docs" / "README.md"]
while open_pages:
    page = open_pages.pop()
    if page in reached:
        continue
    reached.add(page)
    open_pages += [file for file in links.get(page, ()) if file.suffix == ".md"]
failures += [f"{page.relative_to(root)} is reached from nowhere" for page in pages if page not in reached
             and page.parent.name == "docs"]
print("\n".join(failures) or f"{sum(map(len, links.values()))} links")
sys.exit(bool(failures))
