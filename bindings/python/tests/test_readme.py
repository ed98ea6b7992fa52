"""What the README of the module shows is run."""
import re
from pathlib import Path

import pytest

README = (Path(__file__).resolve().parents[1] / "README.md").read_text(encoding="utf-8")
MESSAGES = "-TITLE RFI -ARCID OAL271\nX -TITLE RFI\n"


@pytest.mark.parametrize("begin, printed", [
    ("RuleSet", r"RFI OAL271\n1 26 unknown-field rule NOTE for RFI not found\n<ADEXP_XML (.|\n)*\n"),
    ("result =", r"BEPAN F350\nLIFFY F330\n"),
    ("itertools", r"RFI 0\nRFI 1\n"),
    ("Converter", r"""\['"rule NOTE for RFI not found"'\]\n"""),
])
def test_example_prints_what_it_says(begin, printed, capsys, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "archive.txt").write_text(MESSAGES)
    examples = re.findall(r"```python\n(.*?)```", README, re.DOTALL)
    assert len(examples) == 4
    example = examples[["RuleSet", "result =", "itertools", "Converter"].index(begin)]
    assert begin in example
    exec(compile(example, "README.md", "exec"), {})
    assert re.fullmatch(printed, capsys.readouterr().out)
