"""The tree refers only to what its reader has.

Papers that are not in the repository, parts and issues known by a number, and
folders of somebody's machine mean nothing to whoever cloned it.
"""

import re

from tree import Finding

# Brackets keep the patterns from matching themselves.
FORBIDDEN = [
    (r"(?<!XML )(?<!XML-)\b[Ss]pecificatio[n]s?\b", "say what holds, not who asked for it"),
    (r"\b[P]arts? \d+\.\d+", "not in the repository"),
    (r"\b[Ii]ssues? #?[0-9]", "name the matter, not its number"),
    (r"(?<![\w.$}])/(?:work|home|root|Users)[/]\w", "a folder of one machine"),
]


def check(tree):
    rules = [(re.compile(pattern), why) for pattern, why in FORBIDDEN]
    for path in tree.paths:
        for number, line in tree.lines(path):
            for rule, why in rules:
                match = rule.search(line)
                if match:
                    yield Finding(path, number, f"'{match.group()}': {why}")
