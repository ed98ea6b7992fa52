"""The protections that cmake/hardening.cmake asks for, as the built files show them.

Usage: hardening_test.py READELF OBJDUMP LIBRARY COMMAND FORTIFIED X86 OBJECTS
FORTIFIED and X86 are 0 or 1: copies are checked in optimised builds without sanitizer only, and two
protections are of x86-64 only. OBJECTS is the list of object files of both, parted by ";".
"""

import re
import subprocess
import sys
import unittest


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


class BuiltFiles(unittest.TestCase):

    def assert_shown(self, pattern, *command):
        """Each of the files has what the pattern looks for in the output of the command."""
        for file in (LIBRARY, COMMAND):
            with self.subTest(file=file):
                text = output_of(*command, file)
                self.assertTrue(re.search(pattern, text, re.MULTILINE), text[-4000:])

    def test_stack_is_guarded(self):
        self.assert_shown(r"UND __stack_chk_fail(@|$)", READELF, "-W", "--dyn-syms")

    def test_relocations_are_read_only_once_done(self):
        self.assert_shown(r"^ +GNU_RELRO ", READELF, "-Wl")

    def test_relocations_are_done_at_the_start(self):
        self.assert_shown(r"\(FLAGS\) +BIND_NOW", READELF, "-Wd")

    def test_stack_is_not_executable(self):
        self.assert_shown(r"^ +GNU_STACK .* RW +0x", READELF, "-Wl")

    def test_nothing_is_both_writable_and_executable(self):
        for file in (LIBRARY, COMMAND):
            with self.subTest(file=file):
                self.assertNotIn(" RWE ", output_of(READELF, "-Wl", file))
                self.assertNotIn("TEXTREL", output_of(READELF, "-Wd", file))

    def test_command_lies_at_another_address_in_each_run(self):
        self.assertRegex(output_of(READELF, "-Wd", COMMAND), r"\(FLAGS_1\).* PIE")

    def test_copies_are_checked(self):
        if not FORTIFIED:
            self.skipTest("not in this build: not optimised, or with a sanitizer")
        self.assert_shown(r"UND __mem\w+_chk(@|$)", READELF, "-W", "--dyn-syms")

    def test_large_frames_are_probed(self):
        if not X86:
            self.skipTest("of another processor")
        # What GCC, or Clang, touches each page of a frame with: a function that passed over the page
        # below the stack would write into memory that is not its own.
        self.assert_shown(r"\bor[lq]? +\$0x0,(0x[0-9a-f]+)?\(%rsp\)"
                          r"|\bsub +\$0x1000,%rsp\n.*\bmovq +\$0x0,\(%rsp\)", OBJDUMP, "-d")

    def test_jumps_have_marked_aims(self):
        if not X86:
            self.skipTest("of another processor")
        # Of the objects, since the start files of some systems take the mark from what is linked.
        for file in OBJECTS:
            with self.subTest(file=file):
                self.assertIn("IBT, SHSTK", output_of(READELF, "-Wn", file))


if __name__ == "__main__":
    if len(sys.argv) < 8:
        sys.exit(__doc__)
    READELF, OBJDUMP, LIBRARY, COMMAND = sys.argv[1:5]
    FORTIFIED, X86 = (argument == "1" for argument in sys.argv[5:7])
    OBJECTS = sys.argv[7].split(";")
    unittest.main(argv=sys.argv[:1] + sys.argv[8:])
