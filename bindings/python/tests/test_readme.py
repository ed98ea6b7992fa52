"""What the README of the module shows is run."""
import re
from pathlib import Path

README = (Path(__file__).resolve().parents[1] / "README.md").read_text(encoding="utf-8")


def test_example_prints_what_its_comment_says(capsys):
    example, = re.findall(r"```python\n(.*?)```", README, re.DOTALL)
    exec(compile(example, "README.md", "exec"), {})
    document, _, diagnostics = capsys.readouterr().out.rstrip("\n").rpartition("\n")
    assert document.startswith("<ADEXP_XML ")
    expected, = re.findall(r"print\(converter\.diagnostics\) +# (.*)", example)
    assert diagnostics == expected
