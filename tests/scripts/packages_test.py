"""scripts/install-packages: what is installed, what is said meanwhile, and what without rights."""

import unittest

from scripttest import ScriptTest

# Only ninja-build is there.
SOME_MISSING = '[ "$3" = ninja-build ] && echo installed'
# What apt-get install --print-uris prints.
FILES = """case " $* " in *" --print-uris "*)
    echo "'http://debian/g++.deb' g++.deb 1500000 SHA256:1"
    echo "'http://debian/cpp.deb' cpp.deb 2500000 SHA256:2" ;;
esac"""


class InstallPackages(ScriptTest):
    def install(self, *packages):
        return self.run_script("scripts/install-packages", *packages)

    def test_nothing_is_done_when_all_is_there(self):
        result = self.install("g++", "cmake")
        self.assertEqual((result.returncode, result.stderr, self.calls()), (0, "", []))

    def test_only_what_is_missing_is_installed(self):
        self.stand_in("dpkg-query", SOME_MISSING)
        self.stand_in("apt-get")
        self.assertEqual(self.install("g++", "ninja-build", "cmake").returncode, 0)
        update, *_, install = self.calls()
        self.assertEqual(update, "apt-get update -qq")
        self.assertEqual(install, "apt-get install -y --no-install-recommends g++ cmake -qq")

    def test_each_step_is_told_with_what_it_costs(self):
        self.stand_in("dpkg-query", SOME_MISSING)
        self.stand_in("apt-get", FILES)
        self.assertEqual(self.install("g++").stderr,
                         "Installing g++\n  reading the lists of packages ...\n"
                         "  downloading and unpacking 2 packages, 4 MB ...\n")

    def test_user_installs_through_sudo(self):
        self.stand_in("dpkg-query", SOME_MISSING)
        self.stand_in("id", "echo 1000")
        self.stand_in("sudo", 'exec "$@"')
        self.stand_in("apt-get")
        self.assertEqual(self.install("g++").returncode, 0)
        self.assertEqual([call.split()[0] for call in self.calls()],
                         ["sudo", "apt-get", "apt-get", "sudo", "apt-get"])

    def test_line_for_an_administrator_is_shown_without_sudo(self):
        self.stand_in("dpkg-query", SOME_MISSING)
        self.stand_in("id", "echo 1000")
        self.stand_in("apt-get")
        result = self.install("g++", "cmake")
        self.assertEqual((result.returncode, self.calls()), (1, []))
        self.assertEqual(result.stderr.splitlines()[1:],
                         ["  apt-get install -y --no-install-recommends g++ cmake"])

    def test_test_names_all_it_needs_in_one_line(self):
        self.stand_in("dpkg-query", "exit 1")
        self.stand_in("id", "echo 1000")
        self.stand_in("apt-get")
        (line,) = [line for line in self.run_script("test").stderr.splitlines()
                   if line.startswith("  apt-get install ")]
        for package in ("g++", "cmake", "qt6-base-dev", "libgtest-dev", "zsh"):
            self.assertIn(f" {package} ", f"{line} ")

    def test_why_it_failed_is_shown(self):
        self.stand_in("dpkg-query", SOME_MISSING)
        self.stand_in("apt-get", "echo no network >&2; exit 100")
        result = self.install("g++")
        self.assertEqual(result.returncode, 1)
        self.assertIn("no network", result.stderr)
        self.assertIn("\n  apt-get install -y --no-install-recommends g++\n", result.stderr)

    def test_system_without_apt_is_told_so(self):
        self.stand_in("dpkg-query", "exit 127")
        result = self.install("g++")
        self.assertEqual(result.returncode, 1)
        self.assertIn("no apt-get", result.stderr)


if __name__ == "__main__":
    unittest.main()
