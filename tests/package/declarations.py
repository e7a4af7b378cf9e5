"""What the installed headers declare, as clang reads them."""

import json
import os
import subprocess

# The platform's own libraries define what is declared below this namespace.
PLATFORM = "Orvane::Common"
FUNCTIONS = ("FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl",
             "CXXDestructorDecl")
SCOPES = ("NamespaceDecl", "CXXRecordDecl", "LinkageSpecDecl")


def read(include):
    """Mangled names of functions to be exported; qualified names of classes."""
    functions, classes = set(), set()
    for declaration in _documents(_dump(include)):
        _visit(declaration, "", functions, classes)
    return functions, classes


def headers(include):
    """The headers below a folder, as they are written in include lines."""
    return sorted(os.path.relpath(os.path.join(folder, name), include)
                  for folder, _, names in os.walk(include) for name in names)


def _dump(include):
    source = "".join(f"#include <{header}>\n" for header in headers(include))
    return subprocess.run(
        ["clang++-14", "-std=c++11", "-fsyntax-only", "-I", include, "-x", "c++",
         "-Xclang", "-ast-dump=json", "-Xclang", "-ast-dump-filter=Orvane", "-"],
        input=source, check=True, text=True, stdout=subprocess.PIPE).stdout


def _documents(text):
    """The declarations at the outermost level, each a JSON text of its own."""
    decoder, position = json.JSONDecoder(), text.find("{")
    while position >= 0:
        document, position = decoder.raw_decode(text, position)
        yield document
        position = text.find("{", position)


def _visit(declaration, scope, functions, classes):
    kind = declaration.get("kind")
    if declaration.get("isImplicit") or declaration.get("explicitlyDeleted"):
        return
    if kind in FUNCTIONS and not declaration.get("pure"):
        functions.add(declaration["mangledName"])
    if kind not in SCOPES:
        return
    name = "::".join(filter(None, [scope, declaration.get("name")]))
    if name == PLATFORM:
        return
    if kind == "CXXRecordDecl" and declaration.get("completeDefinition"):
        classes.add(name)
    for inner in declaration.get("inner", []):
        _visit(inner, name, functions, classes)
