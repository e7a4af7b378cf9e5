"""C++ is formatted as .clang-format says."""

import re
import subprocess

from tree import Finding

TOOL = "clang-format-14"


def check(tree):
    paths = tree.of_kind("cpp")
    if not paths:
        return
    result = subprocess.run([TOOL, "--dry-run", "--style=file", *paths],
                            cwd=tree.root, text=True, stderr=subprocess.PIPE)
    if result.returncode:
        yield Finding(".clang-format", 0, result.stderr.strip())
    seen = set()
    for path, line in re.findall(r"^(\S+?):(\d+):\d+: warning", result.stderr, re.M):
        if path not in seen:
            yield Finding(path, int(line), f"not formatted; run '{TOOL} -i {path}'")
        seen.add(path)
