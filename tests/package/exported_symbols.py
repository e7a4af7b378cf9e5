#!/usr/bin/env python3
"""Compares what the library exports with the list beside this file, and both
with what the installed headers declare.

Usage: exported_symbols.py LIBRARY INCLUDE [--update]

LIBRARY is libOvMemCppBinding.so, INCLUDE the folder of the installed headers.
--update rewrites the list; look at the difference before you commit it: a
line gone is an application that no longer starts.
"""

import difflib
import os
import re
import subprocess
import sys

import declarations

LIST = os.path.join(os.path.dirname(os.path.abspath(__file__)),
                    "exported_symbols.txt")
STRING = ("std::__cxx11::basic_string<char, std::char_traits<char>, "
          "std::allocator<char> >")

# What the compiler makes of a class, and of a virtual function.
OF_CLASS = re.compile(r"(?:typeinfo|typeinfo name|vtable|VTT) for (.*?)\*?$"
                      r"|construction vtable for .*-in-(.*)$")
THUNK = re.compile(r"(?:non-)?virtual thunk to ")


def run(*command):
    return subprocess.run(command, check=True, text=True,
                          stdout=subprocess.PIPE).stdout


def demangled(names):
    text = subprocess.run(["c++filt"], input="\n".join(names), check=True,
                          text=True, stdout=subprocess.PIPE).stdout
    return {line.replace(STRING, "std::string").replace("[abi:cxx11]", "")
            for line in text.splitlines()}


def exported(library):
    """The demangled names; the variants of a constructor have the same."""
    lines = run("nm", "-D", "--defined-only", "--format=posix", library).splitlines()
    return demangled({line.split()[0] for line in lines})


def undeclared(symbols, functions, classes):
    """The symbols that no installed header declares."""
    for symbol in symbols:
        of_class = OF_CLASS.match(symbol)
        if of_class:
            known = (of_class.group(1) or of_class.group(2)) in classes
        else:
            known = THUNK.sub("", symbol) in functions
        if not known:
            yield symbol


def main(library, include, update):
    symbols = exported(library)
    text = "".join(line + "\n" for line in sorted(symbols))
    if update:
        with open(LIST, "w", encoding="utf-8") as file:
            file.write(text)
    with open(LIST, encoding="utf-8") as file:
        listed = file.read()

    problems = list(difflib.unified_diff(
        listed.splitlines(), text.splitlines(), "exported_symbols.txt",
        os.path.basename(library), lineterm="", n=0))
    if problems:
        problems.append("Meant so? Then: tests/package/exported_symbols.py "
                        f"{library} {include} --update")
    functions, classes = declarations.read(include)
    functions = demangled(functions)
    problems += [f"exported, but no installed header declares it: {name}"
                 for name in sorted(undeclared(symbols, functions, classes))]
    problems += [f"declared in an installed header, but not exported: {name}"
                 for name in sorted(functions - symbols)]

    print("\n".join(problems) or f"{len(symbols)} symbols")
    return 1 if problems or not symbols else 0


if __name__ == "__main__":
    if len(sys.argv) < 3 or sys.argv[3:] not in ([], ["--update"]):
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2], len(sys.argv) > 3))
