import unittest

from bad_tree import findings
import include_graph

LIST = ("target_sources(OvMemCppBinding PUBLIC\n  FILE_SET HEADERS\n"
        "  BASE_DIRS .\n  FILES\n    Export.h\n    client/Exceptions.h\n"
        "    util/XMLNode.h)\n")


def graph(path, include):
    return findings(include_graph, {"OvMemCppBinding/CMakeLists.txt": LIST,
                                    path: f"// A file.\n#include {include}\n"})


class IncludeGraph(unittest.TestCase):
    def test_every_look_upward_is_found(self):
        util = "OvMemCppBinding/Export.h, OvMemCppBinding/util/"
        for path, target, allowed in [
                ("client/Exceptions.h", "util/XMLNode.h", "OvMemCppBinding/Export.h"),
                ("platform/LogCorrelation.h", "client/Exceptions.h",
                 "OvMemCppBinding/Export.h"),
                ("util/XMLNode.cpp", "client/Exceptions.h", util),
                ("util/XMLNode.cpp", "schemas/SharedClientIDs.h", util),
                ("util/Utf8Conversion.h", "client/Utf8ConversionException.h", util),
                ("schemas/SharedClientIDs.cpp", "client/OvMEMConnection.h",
                 util + ", OvMemCppBinding/schemas/"),
                ("Export.h", "util/XMLNode.h", "-")]:
            with self.subTest(path=path, target=target):
                self.assertIn(f"OvMemCppBinding/{path}:2: may not include "
                              f"OvMemCppBinding/{target}, only: {allowed}",
                              graph(f"OvMemCppBinding/{path}",
                                    f'"OvMemCppBinding/{target}"'))

    def test_the_looks_that_are_meant_pass(self):
        for path, target in [
                ("OvMemCppBinding/util/Utf8Conversion.cpp",
                 '"OvMemCppBinding/client/Utf8ConversionException.h"'),
                ("OvMemCppBinding/client/OvMEMRequest.cpp",
                 '"OvMemCppBinding/util/Utf8Conversion.h"'),
                ("emulator/manager/Manager.cpp", '"OvMemCppBinding/util/XmlStream.h"'),
                ("cli/emulator/main.cpp", '"emulator/store/EventStore.h"'),
                ("examples/poll.cpp", "<OvMemCppBinding/client/Exceptions.h>"),
                ("tests/client/A_test.cpp", '"OvMemCppBinding/client/OvMEMRequest.h"')]:
            with self.subTest(path=path):
                self.assertEqual([], graph(path, target))

    def test_the_emulator_never_looks_at_the_client(self):
        self.assertEqual(
            ["emulator/manager/A.cpp:2: may not include OvMemCppBinding/client/Exceptions.h,"
             " only: OvMemCppBinding/Export.h, OvMemCppBinding/platform/,"
             " OvMemCppBinding/util/, OvMemCppBinding/schemas/, emulator/"],
            graph("emulator/manager/A.cpp", '"OvMemCppBinding/client/Exceptions.h"'))

    def test_tool_and_examples_use_installed_headers_only(self):
        for path, target, own in [
                ("cli/ovmem/main.cpp", "OvMemCppBinding/util/Utf8Conversion.h", "cli/"),
                ("cli/ovmem/main.cpp", "emulator/store/EventStore.h", "cli/"),
                ("cli/ovmem/main.cpp", "cli/emulator/Inspect.h", "cli/"),
                ("examples/poll.cpp", "OvMemCppBinding/client/OvMEMRequest.h",
                 "examples/")]:
            with self.subTest(path=path, target=target):
                self.assertEqual([f"{path}:2: may not include {target}, "
                                  f"only: installed headers, {own}"],
                                 graph(path, f"<{target}>"))

    def test_an_installed_header_includes_neither_internals_nor_xml_libraries(self):
        path = "OvMemCppBinding/util/XMLNode.h"
        self.assertEqual([f"{path}:2: is installed and includes "
                          "OvMemCppBinding/util/Utf8Conversion.h, which is not"],
                         graph(path, '"OvMemCppBinding/util/Utf8Conversion.h"'))
        self.assertEqual([f"{path}:2: an installed header may not include "
                          "xercesc/util/XMLString.hpp"],
                         graph(path, "<xercesc/util/XMLString.hpp>"))
        self.assertEqual([f"{path}:2: an installed header may not include unicode/ucnv.h"],
                         graph(path, "<unicode/ucnv.h>"))


if __name__ == "__main__":
    unittest.main()
