#!/usr/bin/env python3
"""Tests of check_layers.py on small trees."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).with_name("check_layers.py")
LAYERS = "src/base:\nsrc/gentl: src/base\nsrc/capi: src/gentl src/base\ntests: *\n"


class CheckLayers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.write("src/base/lock.h", "#pragma once\n")
        self.write("src/gentl/port.h", '#pragma once\n#include "base/lock.h"\n')
        self.write("src/capi/port.cpp", '#include "gentl/port.h"\n\n#include <string>\n')
        self.write("tests/port_test.cpp", '#include "capi/port.cpp"\n')

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def check(self, layers=LAYERS):
        self.write("layers.txt", layers)
        command = [sys.executable, CHECK, self.root, self.root / "layers.txt"]
        return subprocess.run(command, capture_output=True, text=True, check=False)

    def expect_failure(self, text, layers=LAYERS):
        run = self.check(layers)
        self.assertEqual(run.returncode, 1, run.stdout)
        self.assertIn(text, run.stdout + run.stderr)

    def test_tree_without_upward_includes_passes(self):
        run = self.check()
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def test_include_upward_is_named_with_its_line(self):
        self.write("src/base/lock.h", '#pragma once\n#include "gentl/port.h"\n')
        self.expect_failure('src/base/lock.h:2: #include "gentl/port.h" (src/base may not include src/gentl)')

    def test_include_in_angle_brackets_counts_too(self):
        self.write("src/base/lock.h", "#  include <gentl/port.h>\n")
        self.expect_failure("src/base/lock.h:1: ")

    def test_include_by_a_path_upward_counts_too(self):
        self.write("src/base/lock.h", '#include "../gentl/port.h"\n')
        self.expect_failure("src/base/lock.h:1: ")

    def test_header_that_does_not_exist_is_named(self):
        self.write("src/base/lock.h", '#include "base/gone.h"\n')
        self.expect_failure('src/base/lock.h:1: #include "base/gone.h" (there is no such file)')

    def test_folder_that_is_not_listed_is_named(self):
        self.write("more/new.cpp", "\n")
        self.expect_failure("more/new.cpp: its folder is not listed")

    def test_listed_folder_that_does_not_exist_is_named(self):
        self.expect_failure("src/gone does not exist", LAYERS + "src/gone:\n")

    def test_list_that_allows_an_unknown_folder_is_refused(self):
        layers = LAYERS.replace("src/gentl: src/base", "src/gentl: src/bas")
        self.expect_failure("src/gentl may include src/bas, which is not listed", layers)


if __name__ == "__main__":
    unittest.main()
