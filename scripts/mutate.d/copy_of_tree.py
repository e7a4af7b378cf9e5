"""A copy of the working tree, in which only the files that differ are rewritten."""

import os
import shutil
import subprocess


def update(root, copy):
    """Makes the folder `copy` what git tracks, or would, of the tree `root`."""
    listed = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=root, stdout=subprocess.PIPE, check=True)
    paths = {p for p in listed.stdout.decode().split("\0")[:-1]
             if os.path.isfile(os.path.join(root, p))}
    for folder, _, names in os.walk(copy):
        for name in names:
            if os.path.relpath(os.path.join(folder, name), copy) not in paths:
                os.remove(os.path.join(folder, name))
    for path in paths:
        _update_file(os.path.join(root, path), os.path.join(copy, path))


def _update_file(source, target):
    with open(source, "rb") as file:
        wanted = file.read()
    if os.path.isfile(target):
        with open(target, "rb") as file:
            if file.read() == wanted:
                return
    os.makedirs(os.path.dirname(target), exist_ok=True)
    with open(target, "wb") as file:
        file.write(wanted)
    shutil.copymode(source, target)
