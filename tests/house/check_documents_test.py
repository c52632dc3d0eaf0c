#!/usr/bin/env python3
"""The check of the pages has to be able to fail: small trees with one thing wrong in each."""

import pathlib
import tempfile
import unittest

from check_documents import MOST_PICTURE_BYTES, check

CODE = "int main()\n{\n    return 0;\n}\n"


class Documents(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.write("docs/main.cpp", CODE)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def found(self, page):
        self.write("docs/page.md", page)
        return "; ".join(check(self.root))

    def quote(self, how, code, name="docs/main.cpp"):
        return self.found(f"Text.\n\n<!-- {how} {name} -->\n```cpp\n{code}```\n")

    def test_a_whole_file_passes(self):
        self.assertEqual(self.quote("all of", CODE), "")

    def test_lines_that_stand_together_pass(self):
        self.assertEqual(self.quote("from", "{\n    return 0;\n"), "")

    def test_a_changed_line_is_refused(self):
        self.assertIn("other than it is", self.quote("all of", CODE.replace("0", "1")))

    def test_a_missing_last_line_is_refused(self):
        self.assertIn("other than it is", self.quote("all of", CODE[:-2]))

    def test_lines_with_a_gap_are_refused(self):
        self.assertIn("other than it is", self.quote("from", "int main()\n    return 0;\n"))

    def test_an_empty_quotation_is_refused(self):
        self.assertIn("other than it is", self.quote("from", ""))

    def test_another_indent_is_refused(self):
        self.assertIn("other than it is", self.quote("from", "return 0;\n"))

    def test_a_file_that_is_not_there_is_refused(self):
        self.assertIn("not there", self.quote("all of", CODE, "docs/other.cpp"))

    def test_a_mark_without_code_is_refused(self):
        self.assertIn("no code", self.found("<!-- all of docs/main.cpp -->\n\nText.\n"))

    def test_a_link_to_a_file_and_a_place_in_it_passes(self):
        self.assertEqual(self.found("[a](main.cpp#place) [b](https://example.org/x) [c](#here) `[d](e)`\n"), "")

    def test_a_link_to_nothing_is_refused(self):
        self.assertIn("missing.md", self.found("[a](missing.md)\n"))

    def test_a_picture_that_is_shown_passes(self):
        self.write("docs/pictures/a.png", "small")
        self.assertEqual(self.found("![a](pictures/a.png)\n"), "")

    def test_a_picture_that_nobody_shows_is_refused(self):
        self.write("docs/pictures/a.png", "small")
        self.assertIn("no page", self.found("Text.\n"))

    def test_a_large_picture_is_refused(self):
        self.write("docs/pictures/a.png", "x" * (MOST_PICTURE_BYTES + 1))
        self.assertIn("bytes", self.found("![a](pictures/a.png)\n"))

    def test_a_tree_without_pages_is_refused(self):
        self.assertEqual(check(self.root), ["no pages"])


if __name__ == "__main__":
    unittest.main()
