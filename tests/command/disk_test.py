"""Tests of "adexp convert -o FOLDER" onto a disk that is full or read-only.

The disks are mounted in a mount namespace of this process alone, which a user without rights gets by a
user namespace. A system that allows neither cannot run these tests; the exit status says so.
"""

import os
import subprocess
import sys

from commandtest import GOOD, main
from faults_test import LARGE, FaultsTest

SKIPPED = 77 # as CMakeLists.txt knows it


class Disk(FaultsTest):

    def mount(self, options):
        """Makes "out" a disk of its own."""
        subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", self.path("out")], check=True)
        self.addCleanup(subprocess.run, ["umount", self.path("out")], check=True)

    def test_full_disk(self):
        self.mount("size=64k")
        for name, text in (("a", GOOD), ("large", LARGE), ("c", GOOD)):
            self.write(name, text)
        self.assert_ends(self.convert("-o", "out", "a", "large", "c"), 2,
                         "out/large.xml: cannot be written: No space left on device; check")
        self.assert_documents("a", "c")

    def test_full_disk_keeps_the_document_of_before(self):
        self.mount("size=64k")
        self.write("large", LARGE)
        self.write("out/large.xml", "old")
        self.assert_ends(self.convert("-o", "out", "large"), 2, "No space left on device")
        self.assertEqual(["large.xml"], self.files("out"))
        self.assertEqual("old", self.read("out/large.xml"))

    def test_disk_without_room_for_another_file(self):
        self.mount("nr_inodes=2") # one is the folder itself
        for name in ("a", "b"):
            self.write(name, GOOD)
        self.assert_ends(self.convert("-o", "out", "a", "b"), 2,
                         "out/b.xml: cannot be written: ")
        self.assert_documents("a")

    def test_read_only_disk(self):
        self.mount("ro")
        self.assert_ends(self.convert("-o", "out", self.write("a", GOOD)), 2,
                         "out/a.xml: cannot be written: Read-only file system")


def mount_namespace():
    """The command that runs another one in a mount namespace; empty if this system has none for us."""
    for command in (["unshare", "--mount"], ["unshare", "--mount", "--user", "--map-root-user"]):
        if subprocess.run([*command, "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0:
            return command
    return []


if __name__ == "__main__":
    if "ADEXP_IN_MOUNT_NAMESPACE" not in os.environ:
        NAMESPACE = mount_namespace()
        if not NAMESPACE:
            print("Skipped: this system lets this user mount no disk, not even in a user namespace.")
            sys.exit(SKIPPED)
        os.environ["ADEXP_IN_MOUNT_NAMESPACE"] = "1"
        os.execvp(NAMESPACE[0], [*NAMESPACE, sys.executable, "-B", *sys.argv])
    main()
