"""The checks of the sources: in a folder that git knows nothing of they look at the same files."""

import unittest

from scripttest import ScriptTest


class ListFiles(ScriptTest):
    def test_files_match_in_all_folders_but_those_of_the_build_and_of_git(self):
        for name in ("src/a.cpp", "tools/deep/b.cpp", "src/c.h", "build/release/d.cpp", ".git/e.cpp",
                     ".ci/run", "tests/__pycache__/f.cpp"):
            self.write(name, "")
        result = self.run_script("scripts/list-files", "*.cpp", ".ci/*")
        self.assertEqual((result.returncode, result.stdout), (0, ".ci/run\nsrc/a.cpp\ntools/deep/b.cpp\n"))

    def test_no_file_is_a_failure(self):
        result = self.run_script("scripts/list-files", "*.cpp")
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("*.cpp", result.stderr)


class Checks(ScriptTest):
    """Each check calls its program with the sources, fails if that fails, and fails without sources."""

    def setUp(self):
        super().setUp()
        self.write("a.py", "")
        self.write("made", "#!/usr/bin/env python3\n")

    def check(self, name, program, body=""):
        self.stand_in(program, body)
        self.stand_in("cmake")
        return self.run_script(f"scripts/{name}")

    def test_format(self):
        self.assertNotEqual(self.check("check-format", "clang-format").returncode, 0)
        self.write("src/a.cpp", "")
        self.assertEqual(self.check("check-format", "clang-format").returncode, 0)
        self.assertEqual(self.calls(), ["clang-format --dry-run --Werror src/a.cpp"])
        self.assertNotEqual(self.check("check-format", "clang-format", "exit 1").returncode, 0)

    def test_tidy(self):
        self.assertNotEqual(self.check("check-tidy", "clang-tidy").returncode, 0)
        self.write("src/a.cpp", "")
        self.write("tests/b.cpp", "")
        self.assertEqual(self.check("check-tidy", "clang-tidy").returncode, 0)
        self.assertRegex(self.calls()[-1], "^clang-tidy .* src/a.cpp$")
        self.assertNotEqual(self.check("check-tidy", "clang-tidy", "exit 1").returncode, 0)

    def test_scripts(self):
        self.stand_in("pyflakes3")
        self.assertEqual(self.check("check-scripts", "shellcheck").returncode, 0)
        shell, python = self.calls()
        self.assertRegex(shell, "^shellcheck -x run scripts/.* test$")
        self.assertEqual(python.split()[:3], ["pyflakes3", "a.py", "made"])
        self.assertNotEqual(self.check("check-scripts", "shellcheck", "exit 1").returncode, 0)
        self.stand_in("pyflakes3", "exit 1")
        self.assertNotEqual(self.check("check-scripts", "shellcheck").returncode, 0)


if __name__ == "__main__":
    unittest.main()
