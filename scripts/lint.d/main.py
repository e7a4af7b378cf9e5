"""Runs the checks over a tree: main.py ROOT [--tidy]. Exits with 1 on a finding."""

import sys

import clang_format
import documents
import headers
import include_graph
import layout
import links
import references
import scripts
import test_names
import tidy
from tree import Tree

CHECKS = [layout, references, headers, include_graph, links, scripts, test_names,
          documents, clang_format]


def main(root, with_tidy=False):
    tree = Tree(root)
    checks = CHECKS + ([tidy] if with_tidy else [])
    findings = [f for check in checks for f in check.check(tree)]
    for path, line, text in sorted(findings):
        print(f"{path}:{line}: {text}" if line else f"{path}: {text}")
    if findings:
        print(f"scripts/lint: {len(findings)} findings", file=sys.stderr)
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], "--tidy" in sys.argv[2:]))
