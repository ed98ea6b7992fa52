"""Tests of the arguments: help, version, and what is wrong with them."""

from commandtest import CommandTest, main


class Help(CommandTest):

    def test_every_help_has_an_example_and_the_exit_codes(self):
        for subcommand in ([], ["convert"], ["tree"], ["check"], ["explain"], ["match"], ["view"],
                           ["dump"]):
            with self.subTest(subcommand=subcommand):
                result = self.run_command(*subcommand, "--help")
                self.assert_ends(result, 0)
                self.assertIn("\n  " + " ".join(["adexp", *subcommand]), result.stdout)
                for code in ("0 ", "1 ", "2 ", "64 ", "128+n "):
                    self.assertIn("\n  " + code, result.stdout)

    def test_explanations_of_options_fit_a_terminal(self):
        for subcommand in ("convert", "match"):
            lines = self.run_command(subcommand, "--help").stdout.split("\n\n")[2].splitlines()
            self.assertEqual("Options:", lines[0])
            self.assertLessEqual(max(map(len, lines)), 80)

    def test_help_that_cannot_be_written(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.run_command("--help", stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written")

    def test_version(self):
        result = self.run_command("--version")
        self.assert_ends(result, 0)
        self.assertRegex(result.stdout, r"^adexp \d+\.\d+\.\d+\n$")


class WrongArguments(CommandTest):

    def test_are_explained(self):
        cases = [
            ([], "subcommand is required; see adexp --help"),
            (["conver"], 'unknown subcommand "conver"; the nearest one is "convert"'),
            (["dmp", "ARCID"], 'unknown subcommand "dmp"; the nearest one is "dump"'),
            (["--versoin"], 'unknown option "--versoin"; the nearest one is "--version"'),
            (["--foo", "convert"], 'unknown option "--foo"; the nearest one is'),
            (["convert", "--sumary"], 'unknown option "--sumary"; the nearest one is "--summary"'),
            (["tree", "--seting=x", "a"], '"--seting"; the nearest one is "--settings"'),
            (["convert", "-x"], 'unknown option "-x"; the nearest one is "-'),
            (["tree"], "FILE is required; see adexp tree --help"),
            (["tree", "--", "a", "b"], '"b" is one argument too many; see adexp tree --help'),
            (["tree", "a", "--", "b"], 'unknown subcommand "b"'),
            (["tree", "a", "b"], '"b" is one argument too many; see adexp tree --help'),
            (["dump", "A", "B"], '"B" is one argument too many; see adexp dump --help'),
            (["convert", "--settings"], "--settings"),
            (["convert", "--settings", ""], "--settings: the name is empty"),
            (["convert", "-o", "", "a"], "--output: the name is empty"),
            (["convert", "-o", "a", "-o", "b"], "--output"),
            (["convert", "\n", "--x\n"], 'unknown option "--x\\n"'),
            (["conver\x85\u202e"], 'unknown subcommand "conver\\u0085\\u202E"'),
            (["convert", b"--x\x9b2J\xff"], 'unknown option "--x\\x9B2J\\xFF"'),
        ]
        for arguments, text in cases:
            with self.subTest(arguments=arguments):
                result = self.run_command(*arguments)
                self.assert_ends(result, 64, text)
                self.assertEqual(1, len(result.stderr.splitlines()))
                self.assertEqual("", result.stdout)


if __name__ == "__main__":
    main()
