#!/usr/bin/env python3
"""Installs the build into an empty folder and uses it from there.

    install_test.py CMAKE GENERATOR BUILD_FOLDER C_COMPILER SANITIZERS LIBDIR

SANITIZERS is what the library was built with ("address,undefined" or nothing): a program that uses it
has to be built with the same. LIBDIR is where the library goes in the folder, "lib" or the like.
"""
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
EXAMPLE = ROOT / "examples" / "convert.c"
SAMPLE = ROOT / "samples" / "ifpl-dublin-madrid.adexp"
DOCUMENT = ROOT / "tests" / "golden" / "samples" / "ifpl-dublin-madrid.xml"

PROJECT = """\
cmake_minimum_required(VERSION 3.16)
project(stranger LANGUAGES C)
find_package(adexp {version} REQUIRED)
add_executable(convert "{example}")
target_link_libraries(convert PRIVATE adexp::adexp)
"""


def run(*command, **options):
    """What the command prints; it must succeed."""
    # pkg-config quotes each byte of a letter.
    result = subprocess.run(command, text=True, encoding="utf-8", errors="surrogateescape",
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False, **options)
    assert result.returncode == 0, result.stdout
    return result.stdout


class Installed(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp(prefix="adexp-install-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        first = cls.folder / "first"
        run(CMAKE, "--install", BUILD, "--prefix", first)
        # What is installed must not know where: it is used from another place.
        cls.prefix = first.rename(cls.folder / "a place (1) für alle")
        cls.library_folder = cls.prefix / LIBDIR

    def setUp(self):
        self.work = Path(tempfile.mkdtemp(dir=self.folder))
        flags = [f"-fsanitize={SANITIZERS}"] if SANITIZERS else []
        self.flags = flags
        self.environment = dict(os.environ, CFLAGS=" ".join(flags))

    def assert_converts(self, *command, **options):
        with open(SAMPLE, "rb") as message:
            result = subprocess.run(command, stdin=message, capture_output=True, check=False, **options)
        self.assertEqual(result.stderr, b"")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, DOCUMENT.read_bytes())

    def configure(self, version):
        (self.work / "CMakeLists.txt").write_text(PROJECT.format(version=version, example=EXAMPLE),
                                                  encoding="utf-8")
        return subprocess.run(
            [CMAKE, "-G", GENERATOR, "-S", self.work, "-B", self.work / "build", f"-DCMAKE_PREFIX_PATH={self.prefix}",
             f"-DCMAKE_C_COMPILER={COMPILER}"],
            env=self.environment, text=True, capture_output=True, check=False)

    def test_the_library_has_its_names(self):
        names = {path.name: path.is_symlink() for path in self.library_folder.glob("libadexp*")}
        self.assertEqual(names, {"libadexp.so": True, "libadexp.so.1": True,
                                 "libadexp.so.1.1.0": False})

    def test_what_is_there(self):
        for name in ("include/adexp.h", "bin/adexp",
                     "share/man/man1/adexp.1", "share/man/man1/adexp-convert.1",
                     "share/man/man3/libadexp.3", "share/man/man3/init_adexp.3",
                     "share/bash-completion/completions/adexp", "share/zsh/site-functions/_adexp",
                     "share/fish/vendor_completions.d/adexp.fish",
                     "share/doc/adexp/docs/reference.md", "share/doc/adexp/LICENSE", "share/doc/adexp/README.md",
                     "share/doc/adexp/docs/guide.md", "share/doc/adexp/examples/convert.c",
                     "share/doc/adexp/examples/findings.cpp", "share/doc/adexp/examples/table.py",
                     "share/doc/adexp/bindings/python/README.md", "share/doc/adexp/SECURITY.md",
                     "share/doc/adexp/samples/ifpl-dublin-madrid.adexp"):
            with self.subTest(name):
                self.assertTrue((self.prefix / name).is_file())

    def test_a_c_program_by_cmake(self):
        result = self.configure("1.0")
        self.assertEqual(result.returncode, 0, result.stderr)
        run(CMAKE, "--build", self.work / "build")
        self.assert_converts(self.work / "build" / "convert")

    def test_another_major_version_is_refused(self):
        for version in ("0.9", "1.2", "2.0"):
            with self.subTest(version):
                self.assertIn(f'compatible with requested version "{version}"',
                              " ".join(self.configure(version).stderr.split()))

    def test_a_c_program_by_pkg_config(self):
        found = run("pkg-config", "--cflags", "--libs", "adexp >= 1.0", env=dict(
            os.environ, PKG_CONFIG_PATH=str(self.library_folder / "pkgconfig")))
        program = self.work / "convert"
        run(COMPILER, *self.flags, EXAMPLE, "-o", program, *shlex.split(found))
        self.assert_converts(program, env=dict(os.environ, LD_LIBRARY_PATH=str(self.library_folder)))

    def test_pkg_config_knows_the_version(self):
        version = run("pkg-config", "--modversion", "adexp", env=dict(
            os.environ, PKG_CONFIG_PATH=str(self.library_folder / "pkgconfig")))
        self.assertEqual(run(self.prefix / "bin" / "adexp", "--version"), f"adexp {version}")

    def test_the_python_module(self):
        if SANITIZERS:
            self.skipTest("a library built with sanitizers cannot be loaded into Python")
        (folder,) = self.prefix.glob("lib/python3.*/site-packages")
        self.assertEqual([path.name for path in folder.rglob("*.pyc")], [])
        program = ("import adexp, sys\n"
                   "with adexp.Converter() as converter:\n"
                   "    sys.stdout.buffer.write(converter.convert(sys.stdin.buffer.read()))")
        environment = dict(os.environ, PYTHONPATH=str(folder),
                           LD_LIBRARY_PATH=str(self.library_folder))
        self.assert_converts(sys.executable, "-B", "-c", program, cwd=self.work, env=environment)

    def test_the_python_module_goes_where_python_looks(self):
        version = run("/usr/bin/python3", "-c", "import sys; print('%s.%s' % sys.version_info[:2])").strip()
        for prefix, folder in (("/usr", "lib/python3/dist-packages"),
                               ("/usr/local", f"lib/python{version}/dist-packages"),
                               (Path.home() / ".local", f"lib/python{version}/site-packages"),
                               (self.prefix, f"lib/python{version}/site-packages")):
            with self.subTest(prefix):
                self.assertEqual(run("/usr/bin/python3", "-B", ROOT / "cmake" / "pythonfolder.py", prefix),
                                 f"{folder}\n")

    def test_module_and_packages_have_the_version_of_the_library(self):
        for file, pattern in (("bindings/python/pyproject.toml", r'^version = "(.*)"$'),
                              ("debian/changelog", r"\Aadexp \((.*)\) ")):
            with self.subTest(file):
                text = (ROOT / file).read_text(encoding="utf-8")
                version = re.search(pattern, text, re.MULTILINE)[1]
                self.assertEqual(run(self.prefix / "bin" / "adexp", "--version"), f"adexp {version}\n")

    def test_the_command(self):
        self.assert_converts(self.prefix / "bin" / "adexp", "convert")

    def test_the_rules_can_be_copied_and_changed(self):
        rules = shutil.copytree(self.prefix / "share" / "adexp" / "rules", self.work / "rules")
        command = [self.prefix / "bin" / "adexp", "convert", "--settings", "adexp.ini"]
        self.assert_converts(*command, cwd=rules)
        messages = rules / "msgrules.xml"
        text = messages.read_text(encoding="utf-8")
        messages.write_text(text.replace('title="IFPL"', 'title="OTHER"'), encoding="utf-8")
        with open(SAMPLE, "rb") as message:
            result = subprocess.run(command, cwd=rules, stdin=message, capture_output=True, check=False)
        self.assertEqual(result.returncode, 2)

    def test_the_rules_name_the_schemas(self):
        rules = self.prefix / "share" / "adexp" / "rules"
        for file in ("simpleterms", "subfields", "primaryfields", "msgrules"):
            with self.subTest(file):
                text = (rules / f"{file}.xml").read_text(encoding="utf-8")
                schema = re.search(r'noNamespaceSchemaLocation="(.*?)"', text)[1]
                self.assertEqual((rules / schema).resolve().read_text(encoding="utf-8"),
                                 (ROOT / "schemas" / f"{file}.xsd").read_text(encoding="utf-8"))


if __name__ == "__main__":
    CMAKE, GENERATOR, BUILD, COMPILER, SANITIZERS, LIBDIR = sys.argv[1:7]
    unittest.main(argv=sys.argv[:1] + sys.argv[7:])
