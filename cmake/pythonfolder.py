"""Prints the folder below PREFIX for a Python module, as a path relative to PREFIX.

    pythonfolder.py PREFIX

It is the first one there that this Python searches by itself: in /usr and /usr/local Debian has names of
its own for it. For any other prefix it is the folder of a virtual environment.
"""
import site
import sys
from pathlib import Path


def main(prefix):
    for folder in map(Path, [*site.getsitepackages(), site.getusersitepackages()]):
        if folder.is_relative_to(prefix / "lib"):
            return folder.relative_to(prefix)
    return f"lib/python{sys.version_info.major}.{sys.version_info.minor}/site-packages"


if __name__ == "__main__":
    print(main(Path(sys.argv[1])))
