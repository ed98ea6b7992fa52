#!/usr/bin/env python3
"""Follows the links of all pages, and looks for the files that they name."""
import re
import unittest

import pages

PICTURE = pages.ROOT / "docs/view.png"


def target(page, file):
    return (page.parent / file).resolve() if file else page


class Links(unittest.TestCase):

    def test_all_pages_are_known(self):
        found = {path for folder in ("", "bench", "bindings/python", "docs", "examples", "fuzz", "tests/*")
                 for path in pages.ROOT.glob(f"{folder}/*.md".lstrip("/"))}
        self.assertEqual(found - {pages.REFERENCE}, set(pages.ALL))

    def test_links_lead_somewhere(self):
        for page in pages.ALL:
            for file, anchor in pages.links(page):
                with self.subTest(page=pages.name(page), file=file, anchor=anchor):
                    self.assertTrue(target(page, file).exists())
                    if anchor:
                        self.assertIn(anchor, pages.anchors(target(page, file)))

    def test_no_link_leads_to_what_is_made_when_installing(self):
        for page in pages.ALL:
            for file, _ in pages.links(page):
                with self.subTest(page=pages.name(page), file=file):
                    self.assertNotEqual(target(page, file), pages.REFERENCE)

    def test_files_that_are_named_exist(self):
        folders = [path.name for path in pages.ROOT.iterdir() if path.is_dir() and path.name != "build"]
        pattern = rf"`((?:{'|'.join(map(re.escape, folders))})/[\w./-]*)(?: [^`]*)?`"
        for page in pages.ALL:
            if page.name == "CHANGELOG.md":  # tells of files that are gone, too
                continue
            for file in re.findall(pattern, pages.read(page)):
                with self.subTest(page=pages.name(page), file=file):
                    self.assertTrue((pages.ROOT / file).exists() or (page.parent / file).exists() or
                                    pages.ROOT / file == pages.REFERENCE)

    def test_readme_is_short_and_its_picture_small(self):
        self.assertLessEqual(len(pages.read(pages.README).splitlines()), 120)
        self.assertLess(PICTURE.stat().st_size, 150_000)


if __name__ == "__main__":
    unittest.main()
