"""Scripts can be started and parse."""

import os
import subprocess

from tree import Finding


def check(tree):
    for path in tree.of_kind("shell", "python"):
        shebang = tree.text(path).startswith("#!")
        executable = os.access(tree.file(path), os.X_OK)
        if shebang and not executable:
            yield Finding(path, 0, "has a '#!' line but is not executable")
        if executable and not shebang:
            yield Finding(path, 0, "is executable but has no '#!' line")
        if tree.kind(path) == "python":
            yield from _python(tree, path)
        else:
            yield from _shell(tree, path)


def _python(tree, path):
    try:
        compile(tree.text(path), path, "exec")
    except SyntaxError as error:
        yield Finding(path, error.lineno, error.msg)


def _shell(tree, path):
    parsed = subprocess.run(["bash", "-n", tree.file(path)], text=True,
                            stderr=subprocess.PIPE)
    if parsed.returncode:
        yield Finding(path, 0, parsed.stderr.strip())
    if tree.text(path).startswith("#!") and "set -e" not in tree.text(path):
        yield Finding(path, 0, "does not 'set -e': a failing command would pass")
