"""A copy of the tree with a build of its own, in which changes are tried."""

import os
import shutil
import subprocess
import time

import copy_of_tree
import entries
import limited_run

LEAST_SECONDS = 15  # that a test may take, however short it was
TIMES_AS_LONG = 6   # as without a change


class BaselineFailed(Exception):
    """Without any change the tree does not build, or a test fails."""


class Worker:
    def __init__(self, root, folder, part):
        self.root = root
        self.part = part
        self.tree = os.path.join(folder, "tree")
        self.build = os.path.join(folder, "build")
        self.original = os.path.join(folder, "original")
        self.log = os.path.join(folder, "log")

    def prepare(self):
        """Builds and tests the tree as it is, and keeps what was built."""
        os.makedirs(self.build, exist_ok=True)
        copy_of_tree.update(self.root, self.tree)
        self._must(["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build,
                    "-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=-O0",
                    "-DOVMEM_TEST_PRECOMPILE=ON", "-DOVMEM_TEST_UNITY=ON",
                    "-DCMAKE_PROJECT_OvMemCppBinding_INCLUDE="
                    f"{self.tree}/scripts/mutate.d/flags.cmake"])
        self.entries = entries.entries(self.build, self.part)
        self._must(["ninja", "-j1"] + sorted({e.target for e in self.entries}))
        self._note_dependencies()
        self._keep()
        self.seconds = {}
        for entry in self.entries:
            start = time.monotonic()
            if self._run(entry, 600) != "passed":
                raise BaselineFailed(f"{entry.name} fails; see {self.log}")
            self.seconds[entry.name] = time.monotonic() - start

    def attempt(self, path, text):
        """What becomes of the file `path` with this text, and who noticed."""
        file = os.path.join(self.tree, path)
        times = os.stat(file)
        with open(file, encoding="utf-8") as source:
            before = source.read()
        try:
            with open(file, "w", encoding="utf-8") as source:
                source.write(text)
            return self._judge(path)
        finally:
            with open(file, "w", encoding="utf-8") as source:
                source.write(before)
            os.utime(file, ns=(times.st_atime_ns, times.st_mtime_ns))
            self._restore()

    def _judge(self, path):
        # A header first in its part, and in the tests only if that is needed to
        # tell whether it makes a difference: mostly the first test notices.
        objects = self.objects.get(path, [])
        product = [o for o in objects if o.startswith(self.part.folder + "/")]
        for some in filter(None, (product, objects)):
            if not self._ninja(some):
                return "not compiled", ""
            if not all(self._is_original(o) for o in some):
                break
        else:
            return "same program", ""
        for entry in entries.ordered(self.entries, path, self.part, self.seconds):
            if not self._ninja([entry.target]):
                return "not compiled", entry.name
            seconds = max(LEAST_SECONDS, TIMES_AS_LONG * self.seconds[entry.name])
            end = self._run(entry, seconds)
            if end != "passed":
                return "by " + end if end != "failed" else "killed", entry.name
        return "survived", ""

    def _run(self, entry, seconds):
        return limited_run.run(entry.command, self.build, seconds, self.log)

    def _ninja(self, targets):
        with open(self.log, "wb") as log:
            return not subprocess.run(["ninja", "-j1"] + targets, cwd=self.build,
                                      stdout=log, stderr=log).returncode

    def _must(self, command):
        with open(self.log, "wb") as log:
            if subprocess.run(command, cwd=self.build, stdout=log,
                              stderr=log).returncode:
                raise BaselineFailed(f"{command[0]} fails; see {self.log}")

    def _note_dependencies(self):
        """self.objects: by source or header, the objects it is part of."""
        self.objects = {}
        listed = subprocess.run(["ninja", "-t", "deps"], cwd=self.build, check=True,
                                stdout=subprocess.PIPE, text=True)
        wanted = self._needed_objects()
        prefix = self.tree + "/"
        for block in listed.stdout.split("\n\n"):
            head, *files = block.strip().split("\n")
            name = head.split(":")[0]
            for file in files if name in wanted else []:
                # A compiler cache may have made it relative.
                file = os.path.normpath(os.path.join(self.build, file.strip()))
                if file.startswith(prefix):
                    self.objects.setdefault(file[len(prefix):], []).append(name)

    def _needed_objects(self):
        listed = subprocess.run(
            ["ninja", "-t", "inputs"] + sorted({e.target for e in self.entries}),
            cwd=self.build, check=True, stdout=subprocess.PIPE, text=True)
        return {line.strip() for line in listed.stdout.split("\n")
                if line.endswith(".o")}

    def _keep(self):
        """Copies what was built, so that every change begins from there."""
        shutil.rmtree(self.original, ignore_errors=True)
        self.times = {}
        for path in self._built():
            kept = os.path.join(self.original, path)
            os.makedirs(os.path.dirname(kept), exist_ok=True)
            shutil.copy2(os.path.join(self.build, path), kept)
            self.times[path] = self._time(path)

    def _restore(self):
        for path, time_ in self.times.items():
            if self._time(path) != time_:
                shutil.copy2(os.path.join(self.original, path),
                             os.path.join(self.build, path))

    def _built(self):
        for folder, _, names in os.walk(self.build):
            for name in names:
                file = os.path.join(folder, name)
                path = os.path.relpath(file, self.build)
                if not os.path.islink(file) and (
                        name.endswith((".o", ".a")) or path.startswith(("bin/", "lib/"))):
                    yield path

    def _time(self, path):
        file = os.path.join(self.build, path)
        return os.stat(file).st_mtime_ns if os.path.exists(file) else None

    def _is_original(self, path):
        with open(os.path.join(self.build, path), "rb") as built, \
                open(os.path.join(self.original, path), "rb") as kept:
            return built.read() == kept.read()
