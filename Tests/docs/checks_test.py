# SPDX-License-Identifier: Apache-2.0
"""The checks of the manual find what they look for.  checks_test.py CC CXX INCLUDE..."""
import pathlib
import sys
import tempfile
import unittest

import examples
import facts
import links
import markdown

CC, CXX, INCLUDES = "cc", "c++", []


class Folder(unittest.TestCase):
    def setUp(self):
        held = tempfile.TemporaryDirectory()
        self.addCleanup(held.cleanup)
        self.root = pathlib.Path(held.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path


class Links(Folder):
    def test_a_page_whose_links_lead_somewhere_has_no_faults(self):
        self.write("docs/other.md", "# One `thing` & another\n\n## Same\n\n## Same\n")
        self.write("README.md", "[a](docs/other.md#one-thing--another) [b](docs/other.md#same-1) [c](#here) [d](https://x.invalid)\n\n# Here\n")
        self.assertEqual(links.faults(self.root), [])

    def test_a_missing_file_a_missing_heading_and_a_way_out_are_named(self):
        self.write("docs/other.md", "# One\n")
        self.write("README.md", "[a](docs/none.md)\n[b](docs/other.md#two)\n[c](../elsewhere.md)\n<img src=\"no.png\">\n")
        self.assertEqual(links.faults(self.root), [
            "README.md:1: docs/none.md does not exist",
            "README.md:2: docs/other.md#two names a heading that is not there",
            "README.md:3: ../elsewhere.md leads out of the repository",
            "README.md:4: no.png does not exist"])

    def test_what_stands_in_code_is_no_link(self):
        self.write("README.md", "`[a](none.md)`\n```text\n[b](none.md)\n```\n")
        self.assertEqual(links.faults(self.root), [])


class Examples(Folder):
    def faults(self, text):
        words = [str(self.write("page.md", text)), "--cc", CC, "--cxx", CXX, *[f"--include={path}" for path in INCLUDES]]
        given = examples.arguments(words)
        return examples.faults(given.page, given)

    def test_fragments_and_files_in_both_languages_compile(self):
        self.assertEqual(self.faults("```c\nglClear(GL_COLOR_BUFFER_BIT);\n```\n```cpp\nMTL::Device* d = nullptr;\n```\n"
                                     "```c\n#include <ZALMetal/ZALMetal.h>\nint f(void);\nint f(void) { return 0; }\n```\n"), [])

    def test_a_call_that_does_not_exist_is_found_at_its_line(self):
        found = self.faults("Text.\n\n```c\nglClear(GL_COLOR_BUFFER_BIT);\nglClearEverything();\n```\n")
        self.assertEqual(len(found), 1)
        self.assertIn("page.md:5:", found[0])

    def test_functions_at_the_top_of_a_fragment_stand_for_themselves(self):
        text = "```c\nstatic void f(void)\n{\n    glFinish();\n}\n\nf();\nif (context) {\n    f();\n}\n%s```\n"
        self.assertEqual(self.faults(text % ""), [])
        self.assertIn("page.md:11:", self.faults(text % "g();\n")[0])

    def test_c_is_compiled_as_c(self):
        self.assertEqual(self.faults("```cpp\nauto x = nullptr;\n```\n"), [])
        self.assertEqual(len(self.faults("```c\nvoid* x = nullptr;\n```\n")), 1)

    def test_a_block_without_a_language_is_a_fault(self):
        self.assertEqual(len(self.faults("```\nhello\n```\n")), 1)

    def test_commands_and_shell_are_looked_at(self):
        self.assertEqual(self.faults("```sh\n./dev test -R Clear\n```\n"), [])
        self.assertEqual(len(self.faults("```sh\n./dev tset\n```\n")), 1)
        self.assertEqual(len(self.faults("```sh\nif true; then\n```\n")), 1)

    def test_an_open_fence_is_a_fault(self):
        with self.assertRaises(ValueError):
            self.faults("```c\nint x;\n")


class Facts(Folder):
    WALK = "## Follow one glDrawElements\n\n| stop | file | function | what |\n| --- | --- | --- | --- |\n"

    def test_a_path_that_is_not_there_is_named(self):
        self.write("README.md", "`Src/There.cpp` `Src/Gone.cpp` `Src/` `build/x`\n")
        self.write("Src/There.cpp", "")
        self.assertEqual(facts.paths(self.root), ["README.md: Src/Gone.cpp does not exist"])

    def test_a_function_that_is_only_called_is_not_defined(self):
        self.write("Src/A.cpp", "void defined(int)\n{\n    called();\n}\n")
        walk = self.WALK + "| 1 | `Src/A.cpp` | `defined` | |\n" * 7
        self.assertEqual(facts.stops(walk + "| 8 | `Src/A.cpp` | `defined` | |\n", self.root), [])
        self.assertEqual(facts.stops(walk + "| 8 | `Src/A.cpp` | `called` | |\n", self.root),
                         ["docs/architecture.md: Src/A.cpp does not define called"])

    def test_what_is_left_out_and_what_is_made_up_are_told_apart(self):
        self.assertEqual(facts.differences("page", {"a", "c"}, {"a", "b"}), ["page: b is missing", "page: c is not in the code"])

    def test_a_table_that_is_not_there_is_a_fault(self):
        with self.assertRaises(ValueError):
            markdown.rows("# Heading\n\ntext\n", "Heading")


if __name__ == "__main__":
    CC, CXX, *INCLUDES = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
