"""scripts/build: what it shows of a build."""

import os
import pty
import subprocess
import unittest

from scripttest import ScriptTest

# A build of 40 steps, the seventh with a warning.
STEPS = r"""[ "$1" = --build ] || { echo "-- Configuring done"; exit 0; }
step=0
while [ $step -lt 40 ]; do
    step=$((step + 1))
    printf "%s\n" "${NINJA_STATUS}Building file $step" | sed "s/%f/$step/; s/%t/40/"
    [ $step -ne 7 ] || printf "%s\n" "file.cpp:1:2: warning: C:\new"
done
"""


class Build(ScriptTest):
    def build(self, cmake, *arguments):
        self.stand_in("cmake", cmake)
        return self.run_script("scripts/build", *(arguments or ["release"]))

    def on_a_terminal(self):
        """What a user sees of a build."""
        reader, terminal = pty.openpty()
        process = subprocess.Popen([self.root / "scripts/build", "release"], stdin=terminal,
                                   stdout=terminal, stderr=terminal, env=self.environment(TERM="linux"))
        os.close(terminal)
        shown = b""
        try:
            while piece := os.read(reader, 4096):
                shown += piece
        except OSError: # the other end is closed
            pass
        os.close(reader)
        return process.wait(), shown.decode("utf-8").replace("\r\n", "\n")

    def test_a_log_gets_ten_steps_and_the_warnings(self):
        result = self.build(STEPS)
        self.assertEqual((result.returncode, result.stdout), (0, ""))
        tenths = [f"  {step} of 40" for step in range(4, 41, 4)]
        self.assertEqual(result.stderr.splitlines(),
                         [tenths[0], r"file.cpp:1:2: warning: C:\new", *tenths[1:]])

    def test_a_terminal_gets_one_line_that_goes_away(self):
        self.stand_in("cmake", STEPS)
        status, shown = self.on_a_terminal()
        self.assertEqual(status, 0)
        before, after = shown.split("file.cpp:1:2: warning: C:\\new\n")
        clear = "\r\x1b[K"
        self.assertEqual(before, "".join(f"\r  {step} of 40" for step in range(1, 8)) + clear)
        self.assertEqual(after, "".join(f"\r  {step} of 40" for step in range(8, 41)) + clear)

    def test_nothing_is_shown_when_nothing_is_to_be_built(self):
        result = self.build('[ "$1" != --build ] || echo "ninja: no work to do."')
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_failed_build_is_shown_and_fails(self):
        result = self.build('[ "$1" != --build ] || { echo "FAILED: file.o"; exit 3; }')
        self.assertEqual((result.returncode, result.stderr), (3, "FAILED: file.o\n"))

    def test_failed_configuration_is_shown_and_fails(self):
        result = self.build("echo no such preset; exit 1", "odd")
        self.assertEqual((result.returncode, result.stderr), (1, "no such preset\n"))
        self.assertEqual(self.calls(), ["cmake --preset odd"])

    def test_preset_must_be_named(self):
        result = self.run_script("scripts/build")
        self.assertEqual((result.returncode != 0, self.calls()), (True, []))
        self.assertIn("usage: scripts/build PRESET", result.stderr)


if __name__ == "__main__":
    unittest.main()
