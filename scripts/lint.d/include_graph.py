"""Who may include whom.

client/Exceptions.h and platform/ are the ground; then util, then schemas, then
client. The emulator never looks at the client. The tool ovmem and the examples
prove that the installed headers suffice.
"""

import re

import includes
from tree import Finding

LIBRARY = "OvMemCppBinding"
EXPORT = f"{LIBRARY}/Export.h"
CLI_EMULATOR = r"cli/(ovmem-)?emulator"

# The first rule whose pattern matches a file says what the file may include.
# INSTALLED stands for all installed headers.
INSTALLED = "installed headers"
RULES = [(re.compile(pattern), allowed) for pattern, allowed in [
    (f"{LIBRARY}/Export\\.h$", []),
    (f"{LIBRARY}/client/Exceptions\\.h$", [EXPORT]),
    (f"{LIBRARY}/platform/", [EXPORT]),
    (f"{LIBRARY}/util/Utf8Conversion\\.cpp$",
     [EXPORT, f"{LIBRARY}/util/", f"{LIBRARY}/client/Utf8ConversionException.h"]),
    (f"{LIBRARY}/util/", [EXPORT, f"{LIBRARY}/util/"]),
    (f"{LIBRARY}/schemas/", [EXPORT, f"{LIBRARY}/util/", f"{LIBRARY}/schemas/"]),
    (f"{LIBRARY}/", [f"{LIBRARY}/"]),
    ("emulator/", [EXPORT, f"{LIBRARY}/platform/", f"{LIBRARY}/util/",
                   f"{LIBRARY}/schemas/", "emulator/"]),
    (CLI_EMULATOR, [INSTALLED, "cli/", "emulator/"]),
    ("cli/", [INSTALLED, "cli/"]),
    ("examples/", [INSTALLED, "examples/"]),
]]

XML_LIBRARIES = re.compile(r"(xercesc|unicode)/")


def check(tree):
    installed = installed_headers(tree)
    for path in tree.of_kind("cpp"):
        for rule, allowed in RULES:
            if rule.match(path):
                yield from _allowed(tree, path, allowed, installed)
                break
        if path in installed:
            yield from _installed(tree, path, installed)


def installed_headers(tree):
    """As the library's list of installed headers says."""
    lists = f"{LIBRARY}/CMakeLists.txt"
    if lists not in tree.paths:
        return set()
    match = re.search(r"FILE_SET HEADERS.*?FILES((?:\s+[\w/]+\.h)+)",
                      tree.text(lists), re.S)
    return {f"{LIBRARY}/{name}" for name in match.group(1).split()} if match else set()


def _allowed(tree, path, allowed, installed):
    for number, target in includes.ours(tree, path):
        if INSTALLED in allowed and target in installed:
            continue
        if re.match(CLI_EMULATOR, target) and not re.match(CLI_EMULATOR, path):
            allowed_here = False
        else:
            allowed_here = any(target == a or a.endswith("/") and target.startswith(a)
                               for a in allowed)
        if not allowed_here:
            yield Finding(path, number,
                          f"may not include {target}, only: {', '.join(allowed) or '-'}")


def _installed(tree, path, installed):
    for number, _, target in includes.of(tree, path):
        if XML_LIBRARIES.match(target):
            yield Finding(path, number, f"an installed header may not include {target}")
        if target.startswith(f"{LIBRARY}/") and target not in installed:
            yield Finding(path, number,
                          f"is installed and includes {target}, which is not")
