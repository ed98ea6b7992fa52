"""./run and ./test: their arguments, what they say, and what they start."""

import unittest

from scripttest import SAMPLE, ScriptTest


class Commands(ScriptTest):
    def setUp(self):
        super().setUp()
        self.stand_in("cmake")
        self.stand_in("ctest")
        self.built = self.root / "build/release/adexp"

    def has_been_built(self):
        self.stand_in("adexp", 'echo "the document"', self.built)


class Run(Commands):
    def test_help_is_shown_and_nothing_else_done(self):
        for option in ("--help", "-h"):
            result = self.run_script("run", option)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("./run [FILE]", result.stdout)
            self.assertEqual(self.calls(), [])

    def test_arguments_are_looked_at_before_anything_is_installed(self):
        (self.outside / "gone").symlink_to("nowhere")
        for arguments, status, reason in (
                (["--verbose"], 64, "--verbose is no option"),
                ([""], 64, "is empty"),
                (["a", "b"], 64, "one file"),
                (["--", "a", "b"], 64, "one file"),
                (["missing"], 2, "missing: there is no such file"),
                (["no/such/folder/file"], 2, "file: there is no such file"),
                (["gone"], 2, "there is no such file"),
                (["."], 2, "is a folder")):
            with self.subTest(arguments):
                self.assert_refused(self.run_script("run", *arguments), status, reason)

    def test_short_sample_is_shown_without_a_file(self):
        self.has_been_built()
        result = self.run_script("run")
        message = (self.root / SAMPLE).read_text(encoding="utf-8")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, f"== The message: {self.root / SAMPLE}\n{message}\n"
                         f"== The document: build/release/adexp convert {self.root / SAMPLE}\n"
                         "the document\n")
        self.assertEqual(self.calls()[-1], f"adexp convert -- {self.root / SAMPLE}")

    def test_file_is_found_from_where_the_user_is(self):
        self.has_been_built()
        for name in ("a message", "-odd"):
            (self.outside / name).write_text("-TITLE\n", encoding="utf-8")
            result = self.run_script("run", "--", name)
            self.assertEqual(result.returncode, 0)
            self.assertEqual(self.calls()[-1], f"adexp convert -- {self.outside / name}")

    def test_status_is_that_of_the_conversion(self):
        self.stand_in("adexp", "exit 1", self.built)
        self.assertEqual(self.run_script("run").returncode, 1)

    def test_cost_is_told_only_before_the_first_build(self):
        self.stand_in("cmake", "exit 1")
        first = self.run_script("run").stderr.splitlines()
        self.assertRegex(first[0], r" \d+ MB .* \d+ minutes")
        self.assertRegex(first[1], "^Building ")
        self.has_been_built()
        self.assertRegex(self.run_script("run").stderr.splitlines()[0], "^Building ")

    def test_nothing_is_converted_if_the_build_fails(self):
        self.has_been_built()
        self.stand_in("cmake", "echo the reason; exit 1")
        result = self.run_script("run")
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("the reason", result.stderr)


class Test(Commands):
    def test_help_is_shown_and_nothing_else_done(self):
        result = self.run_script("test", "--help")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertIn("./test [CTEST-ARGUMENT...]", result.stdout)
        self.assertEqual(self.calls(), [])

    def test_argument_that_ctest_would_overlook_is_refused(self):
        for argument in ("compiler", ""):
            with self.subTest(argument):
                self.assert_refused(self.run_script("test", argument), 64, f'"{argument}" is no option')

    def test_arguments_go_to_ctest(self):
        result = self.run_script("test", "-R", "two words")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertRegex(self.calls()[-1], "^ctest --preset release .*-R two words$")

    def test_status_is_that_of_the_tests(self):
        self.stand_in("ctest", "exit 8")
        self.assertEqual(self.run_script("test").returncode, 8)

    def test_cost_is_told_before_the_first_build(self):
        self.assertRegex(self.run_script("test").stderr.splitlines()[0], r" \d+ MB .* \d+ minutes")


if __name__ == "__main__":
    unittest.main()
