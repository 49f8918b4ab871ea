"""The tutorial is a program that runs from top to bottom."""
import pathlib
import re

from matplotlib import image, pyplot

from conftest import SOURCE

TUTORIAL = pathlib.Path(SOURCE, "docs/tutorial_python.md")
PROGRAM = re.compile(r"^```python\n(.*?)^```$", re.S | re.M)


def test_the_tutorial_runs_and_its_pictures_show_something(tmp_path, monkeypatch, capsys):
    (tmp_path / "examples").symlink_to(pathlib.Path(SOURCE, "examples"))
    monkeypatch.chdir(tmp_path)
    text = TUTORIAL.read_text()
    blocks = PROGRAM.findall(text)
    assert len(blocks) >= 8 and len(blocks) == text.count("```python")
    names = {"__name__": "tutorial"}
    for number, block in enumerate(blocks):
        exec(compile(block, f"{TUTORIAL.name}, block {number}", "exec"), names)
    pyplot.close("all")
    printed = capsys.readouterr().out
    for shown in ("half-sine 50 g, 11 ms", "MainWidth is 0.512 samples, fewer than 2", "m/s with it", "pass\n"):
        assert shown in printed
    pictures = re.findall(r'savefig\("(.*?)"\)', text)
    assert pictures == ["shock.png", "spectrum.png", "verdict.png"]
    for picture in pictures:
        pixels = image.imread(tmp_path / picture)[:, :, :3]
        coloured = (pixels.max(axis=2) - pixels.min(axis=2) > 0.3).mean()
        assert 0.002 < coloured < 0.5, f"{picture}: {coloured:.4f} of it is coloured"
