"""Follows a page: writes its files, and hands its commands to whoever runs them."""
import re


def follow(page, folder, prompt, run):
    """Writes the files of the page into the folder; gives run(line, expected) each command with what the page shows behind it.

    A ```json block below a line that ends in `NAME.json`: is that file.  In a ```console block a line that begins with the
    prompt is a command, and the lines behind it are what it prints.  Returns what is wrong with the page itself.
    """
    wrong = []
    for before, kind, body in re.findall(r"([^\n]*)\n\n```(\w+)\n(.*?)^```$", page, re.M | re.S):
        if kind == "json":
            file = re.search(r"`([\w.]+\.json)`:$", before)
            if file:
                (folder / file[1]).write_text(body)
            else:
                wrong.append(f"a file without a name: {before}")
        elif kind == "console":
            begin = re.escape(prompt)
            for line, expected in re.findall(rf"^{begin}(.*)\n((?:(?!{begin}).*\n)*)", body, re.M):
                run(line, expected)
    return wrong
