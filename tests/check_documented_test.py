#!/usr/bin/env python3
"""Shows that check_documented.py finds what it is for: each declaration without a comment, and no other."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # a test run leaves nothing behind in the sources
import check_documented  # noqa: E402

# Text of a header, and the declarations in it that lack a comment.
HEADERS = [
    ("namespace P {\nint Free(int x = 0);\n}\n", ["int Free(int x = 0)"]),
    ("namespace P {\n/// What it does.\nint Free();\n}\n", []),
    ("/// Far away.\n\nint Free();\n", ["int Free()"]),
    ("class C {\n public:\n  /// One.\n  int One() { return 1; }\n  int Two() { return 2; }\n};\n",
     ["class C", "int Two()"]),
    ("/// C.\nclass C {\n public:\n  C();\n  C(const C& other);\n  C(C&&) = default;\n  ~C();\n"
     "  C& operator=(const C&) = delete;\n};\n", ["C()"]),
    ("/// C.\nclass EXPORT_LINKAGE C : public B {\n  int hidden;\n protected:\n  int inner;\n public:\n  int shown;\n};\n",
     ["int shown"]),
    ("/// S.\nstruct S {\n  int shown = 0;\n private:\n  int hidden;\n};\n", ["int shown = 0"]),
    ("/// C.\nclass C {\n public:\n  /// @{ All of them.\n  int One();\n  int Two();\n  /// @}\n  int Three();\n};\n",
     ["int Three()"]),
    ("/// C.\nclass C {\n public:\n  explicit C(int x)\n      : x_(x) {}\n private:\n  int x_{0};\n};\nint After();\n",
     ["explicit C(int x) : x_(x)", "int After()"]),
    ("enum E { kOne };\n/// F.\nenum F { kTwo };\n", ["enum E"]),
    ("class Forward;\nnamespace P::internal {\nint Hidden();\n}\n#define M(x) \\\n  int x();\n", []),
    ('/// T.\ntemplate <typename T>\nclass A {\n public:\n  static const char* Text() { return "};"; }  // };\n'
     "  T Get();\n};\n", ["static const char* Text()", "T Get()"]),
]


class CheckDocumented(unittest.TestCase):
    def test_what_lacks_a_comment_is_reported(self):
        for text, expected in HEADERS:
            with self.subTest(text=text):
                found = check_documented.Reader(text).read()
                self.assertEqual([statement for _, statement in found], expected)

    def test_folders_are_searched_and_lines_counted(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "inner" / "a.h"
            path.parent.mkdir()
            path.write_text("// Top.\n\nint Free();\n", encoding="utf-8")
            self.assertEqual(check_documented.undocumented(pathlib.Path(folder)), [f"{path}:3: int Free()"])


if __name__ == "__main__":
    unittest.main()
