#!/usr/bin/env python3
"""Installs the build as docs/install.md says, types the commands of the pages, and runs their programs.

    programs_test.py BUILD_FOLDER

The commands of a "sh" block are typed in a copy of what they need of the sources. Those that take long,
or need the system's administrator or the network, are not run; that the scripts exist is tested.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import pages

INSTALL_PAGE = pages.ROOT / "docs/install.md"
COMMAND_PAGE = pages.ROOT / "docs/command.md"
LIBRARY_PAGE = pages.ROOT / "docs/library.md"
PYTHON_PAGE = pages.ROOT / "bindings/python/README.md"
# The words that lines begin with that are not run.
SCRIPTS = ("./run", "./test", ".ci/", "scripts/", "fuzz/", "bench/")
NOT_RUN = (*SCRIPTS, "cmake --preset", "cmake --build --preset", "ctest --preset", "perf", "sudo")
MESSAGE = b"-TITLE RFI -ARCID OAL271"


def commands(text):
    """The lines of the sh blocks that are run."""
    return "".join(f"{line}\n" for block in pages.blocks(text, "sh") for line in block.splitlines()
                   if not line.startswith(NOT_RUN))


def headings(page):
    return re.findall(r"^## (.*)$", pages.read(page), re.MULTILINE)


class Programs(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp(prefix="adexp-programs-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.home = cls.folder / "home"
        cls.sources = cls.folder / "sources"
        (cls.sources / "build").mkdir(parents=True)
        cls.home.mkdir()
        (cls.sources / "build/release").symlink_to(BUILD)
        for name in ("bindings", "examples", "samples"):
            shutil.copytree(pages.ROOT / name, cls.sources / name,
                            ignore=shutil.ignore_patterns("__pycache__"))
        from_sources = pages.section(pages.read(INSTALL_PAGE), "From the sources")
        cls.exports = "".join(f"{line}\n" for line in commands(from_sources).splitlines()
                              if line.startswith("export "))
        cls.installed = cls.run_shell(commands(from_sources), cls.sources)

    @classmethod
    def run_shell(cls, script, folder, **variables):
        """Types a script; a new shell has what a user sets in it. None of the developer's settings count."""
        for place in ("doc/adexp-tools", "adexp"):
            installed = cls.home / ".local/share" / place.replace("doc/adexp-tools", "doc/adexp")
            script = script.replace(f"/usr/share/{place}", f"'{installed}'")
        # The Python of Debian; its pip takes what it needs from packages of the system.
        path = f"/usr/bin{os.pathsep}{os.environ['PATH']}"
        environment = dict(HOME=str(cls.home), PATH=path, LANG="C.UTF-8", PYTHONDONTWRITEBYTECODE="1",
                           PIP_NO_INDEX="1", PIP_FIND_LINKS="/usr/share/python-wheels", **variables)
        result = subprocess.run(["sh", "-eu", "-c", script], cwd=folder, env=environment, text=True,
                                encoding="utf-8", stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                check=False)
        assert result.returncode == 0, f"{script}\n{result.stdout}"
        return result.stdout

    def type_section(self, heading, folder=None):
        text = commands(pages.section(pages.read(INSTALL_PAGE), heading))
        self.assertTrue(text)
        return self.run_shell(self.exports + text, folder or self.sources)

    def document_of(self, arguments, message=None):
        return subprocess.run([BUILD / "adexp", "convert", *arguments], input=message,
                              capture_output=True, check=True).stdout.decode()

    def write_program(self, source):
        """Writes a program under the name in its first line."""
        folder = Path(tempfile.mkdtemp(dir=self.folder))
        (folder / re.search(r"\w+\.\w+", source)[0]).write_text(source, encoding="utf-8")
        return folder, source

    def program(self, kind):
        """Writes the program of the README."""
        source, = pages.blocks(pages.read(pages.README), kind)
        return self.write_program(source)

    def run_compiled(self, folder, source):
        """Types the command in the first line of a program, and runs what it builds."""
        # The compiler searches the folders of the packages by itself, so it is told of these.
        local = self.home / ".local"
        folders = {"CPATH": str(local / "include"), "LIBRARY_PATH": str(local / "lib"),
                   "LD_LIBRARY_PATH": str(local / "lib")}
        build = re.search(r"To build it: (.*?)(?: \*/)?\n", source)[1]
        built = re.search(r" -o (\w+)", build)[1]
        return self.run_shell(f"{build} -Wall -Wextra -Werror\n./{built}", folder, **folders)

    def test_all_sections_of_the_page_are_typed(self):
        self.assertEqual(headings(INSTALL_PAGE),
                         ["From packages, on Debian 12", "From the sources", "A program with pkg-config",
                          "A program with CMake", "A program in Python", "Rule files to change"])

    def test_only_these_pages_have_commands_to_type(self):
        typed = [pages.name(page) for page in pages.ALL if commands(pages.read(page))]
        self.assertEqual(typed, ["docs/command.md", "docs/install.md", "bindings/python/README.md"])

    def test_scripts_exist(self):
        for page in pages.ALL:
            for block in pages.blocks(pages.read(page), "sh"):
                for line in block.splitlines():
                    if line.startswith(SCRIPTS):
                        with self.subTest(line, page=pages.name(page)):
                            self.assertTrue(os.access(pages.ROOT / line.split()[0], os.X_OK))

    def test_presets_exist(self):
        presets = json.loads((pages.ROOT / "CMakePresets.json").read_text(encoding="utf-8"))
        names = {preset["name"] for preset in presets["configurePresets"]}
        for page in pages.ALL:
            for name in re.findall(r"--preset (\w+)", pages.read(page)):
                with self.subTest(name, page=pages.name(page)):
                    self.assertIn(name, names)

    def test_installing_puts_the_command_into_the_path(self):
        self.assertRegex(self.installed, r"(?m)^adexp \d+\.\d+\.\d+$")
        self.assertEqual(self.run_shell(f"{self.exports}command -v adexp", self.sources),
                         f"{self.home}/.local/bin/adexp\n")

    def test_links_hold_where_the_pages_are_installed(self):
        installed = list((self.home / ".local/share/doc/adexp").rglob("*.md"))
        self.assertIn("guide.md", [page.name for page in installed])
        for page in installed:
            for file, _ in pages.links(page):
                with self.subTest(page=page.name, file=file):
                    self.assertTrue((page.parent / file).exists())

    def test_a_program_with_pkg_config(self):
        self.assertEqual(self.type_section("A program with pkg-config"),
                         self.document_of([pages.ROOT / "samples/rfi-ready-for-improvement.adexp"]))

    def test_a_program_with_cmake(self):
        folder, _ = self.program("c")
        for name, content in pages.named_files(pages.read(INSTALL_PAGE)).items():
            (folder / name).write_text(content, encoding="utf-8")
        self.assertTrue(self.type_section("A program with CMake", folder)
                        .endswith(self.document_of([], MESSAGE)))

    def test_a_program_in_python(self):
        self.assertIn("Successfully installed adexp-", self.type_section("A program in Python"))

    def test_rule_files_to_change(self):
        self.assertRegex(self.type_section("Rule files to change"), "^0 errors, 0 warnings; ")

    def test_commands_of_other_pages(self):
        self.run_shell(commands(pages.read(COMMAND_PAGE)) + "adexp --version", self.sources)
        table = self.run_shell(commands(pages.read(PYTHON_PAGE)), self.sources)
        self.assertIn("rfi-ready-for-improvement.adexp,RFI,OAL271,LGAV,LIRF,261121,0525,\n", table)

    def test_compiled_programs_of_the_readme(self):
        for kind in ("c", "cpp"):
            with self.subTest(kind):
                self.assertEqual(self.run_compiled(*self.program(kind)), self.document_of([], MESSAGE))

    def test_programs_of_the_library_print_what_stands_below_them(self):
        blocks = pages.blocks(pages.read(LIBRARY_PAGE))
        self.assertEqual([kind for kind, _ in blocks], ["cpp", "output"] * 4 + ["c", "output"])
        for (_, source), (_, output) in zip(blocks[::2], blocks[1::2]):
            with self.subTest(source.splitlines()[0]):
                self.assertEqual(self.run_compiled(*self.write_program(source)), output)

    def test_python_program_of_the_readme(self):
        folder, source = self.program("python")
        command = re.search(r"To run it: (.*)\n", source)[1]
        self.assertEqual(self.run_shell(f"{self.exports}{command}", folder).rstrip("\n"),
                         self.document_of([], MESSAGE).rstrip("\n"))


if __name__ == "__main__":
    BUILD = Path(sys.argv.pop())
    unittest.main()
