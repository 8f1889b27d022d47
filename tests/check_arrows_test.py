#!/usr/bin/env python3
"""Shows that check_arrows.py finds what it is for: each forbidden include is reported, each allowed one is not."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # a test run leaves nothing behind in the sources
import check_arrows  # noqa: E402

FORBIDDEN = [
    ("pegasus/src/wire/reader.cpp", "orvane/log.h"),
    ("pegasus/src/wire/reader.cpp", "orvane/simulator/simulator.h"),
    ("simulator/wire/reader.cpp", "Pegasus/Common/String.h"),
    ("simulator/wire/reader.cpp", "testing/cim_server.h"),
    ("simulator/wire/reader.cpp", "transport/connection.h"),
    ("cmm/inventory_update/imp.cpp", "pegasus/src/base/utf8.h"),
    ("cmm/inventory_update/imp.cpp", "wire/request.h"),
    ("cmm/inventory_update/imp.cpp", "cli/text.h"),
    ("cmm/inventory_update/imp.cpp", "testing/scoped_log.h"),
    ("cli/app.cpp", "Pegasus/Client/CIMClient.h"),
    ("cli/app.cpp", "cmm/inventory_update/cmm_peg_client.h"),
    ("logger/src/log.cpp", "platform/sleep.h"),
    ("platform/src/sleep.cpp", "orvane/log.h"),
    ("include/orvane/cmm.h", "pegasus/src/base/utf8.h"),
    ("include/orvane/cmm.h", "orvane/log.h"),
]

ALLOWED = [
    ("include/orvane/cmm.h", "Pegasus/Common/CIMInstance.h"),
    ("cli/app.cpp", "orvane/cmm.h"),
    ("cli/app.cpp", "orvane/simulator/simulator.h"),
    ("cmm/inventory_update/imp.cpp", "Pegasus/Client/CIMClient.h"),
    ("cmm/inventory_update/imp.cpp", "platform/sleep.h"),
    ("cmm/tests/imp_test.cpp", "testing/cim_server.h"),
    ("pegasus/src/wire/reader.cpp", "wire/xml_reader.h"),
    ("simulator/wire/reader.cpp", "wire/xml_reader.h"),
    ("simulator/wire/reader.cpp", "vector"),
]


class CheckArrows(unittest.TestCase):
    def violations(self, file, include):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / file
            path.parent.mkdir(parents=True)
            path.write_text(f"#  include <{include}>\n", encoding="utf-8")
            return check_arrows.violations_of(pathlib.Path(folder))

    def test_forbidden_includes_are_reported(self):
        for file, include in FORBIDDEN:
            with self.subTest(file=file, include=include):
                self.assertEqual(len(self.violations(file, include)), 1)

    def test_allowed_includes_are_not_reported(self):
        for file, include in ALLOWED:
            with self.subTest(file=file, include=include):
                self.assertEqual(self.violations(file, include), [])

    def test_a_folder_of_the_rooms_own_tests_may_be_called_as_one_of_another_room(self):
        with tempfile.TemporaryDirectory() as folder:
            tests = pathlib.Path(folder) / "pegasus/tests"
            (tests / "faults").mkdir(parents=True)
            (tests / "faults/row.h").write_text("", encoding="utf-8")
            (tests / "faults/row_test.cpp").write_text("#include \"faults/row.h\"\n", encoding="utf-8")
            self.assertEqual(check_arrows.violations_of(pathlib.Path(folder)), [])
            (tests / "faults/row_test.cpp").write_text("#include \"faults/injector.h\"\n", encoding="utf-8")
            self.assertEqual(len(check_arrows.violations_of(pathlib.Path(folder))), 1)


if __name__ == "__main__":
    unittest.main()
