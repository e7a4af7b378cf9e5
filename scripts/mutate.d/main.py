"""main.py N SEED: tries N changes of the library. Exits with 1 below 95 %."""

import collections
import glob
import os
import sys
import threading
import time

import draw
import explained
from worker import BaselineFailed, Worker

ENOUGH = 95  # per cent
KILLED = ("killed", "by time", "by memory")
NO_CHANGE = ("not compiled", "same program")


def sources():
    paths = glob.glob("OvMemCppBinding/*/*.cpp") + glob.glob("OvMemCppBinding/*/*.h")
    texts = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            texts[path] = file.read()
    return texts


class Session:
    """Hands out changes until so many of them were ones."""

    def __init__(self, changes, count, reasons):
        self.changes = changes
        self.count = count
        self.reasons = reasons
        self.results = []  # of (change, what became of it, by which entry)
        self.at_work = 0
        self.ready = threading.Condition()
        self.error = None

    def tried(self):
        return sum(result not in NO_CHANGE for _, result, _ in self.results)

    def next(self):
        with self.ready:
            # Another change only once it is known to be needed: so the same
            # ones are tried, however many work at it.
            while not self.error and self.at_work and \
                    self.tried() + self.at_work >= self.count:
                self.ready.wait()
            if self.error or self.tried() >= self.count:
                return None
            change = next(self.changes, None)
            if change:
                self.at_work += 1
            return change

    def done(self, change, result, entry):
        with self.ready:
            self.results.append((change, result, entry))
            self.at_work -= 1
            self.ready.notify_all()
            if result == "survived":
                print(described(change), " survived", flush=True)
            if os.environ.get("OVMEM_MUTATE_ALL"):
                print(described(change), result, entry, flush=True)

    def fail(self, error):
        with self.ready:
            self.error = error
            self.ready.notify_all()

    def work(self, worker):
        try:
            worker.prepare()
            while change := self.next():
                self.done(change, *worker.attempt(change.path, change.text))
        except Exception as error:  # pylint: disable=broad-except
            self.fail(error)


def described(change):
    return (f"{change.path}:{change.line}: {change.mutator}: "
            f"'{change.old}' -> '{change.new}'")


def report(session, seconds):
    counts = collections.Counter(result for _, result, _ in session.results)
    killed = sum(counts[k] for k in KILLED)
    tried = killed + counts["survived"]
    by = collections.Counter(entry for _, result, entry in session.results
                             if result in KILLED)
    print("\nWhich entry of CTest noticed:")
    for entry, count in by.most_common():
        print(f"{count:6} {entry}")
    print("\nSurvivors:")
    for change, result, _ in sorted(session.results,
                                    key=lambda r: (r[0].path, r[0].line)):
        if result == "survived":
            print(f"  {described(change)}\n    {change.source}")
            reason = session.reasons.get(explained.key(change))
            print(f"    explained: {reason}" if reason else "    not explained")
    percent = 100 * killed / tried if tried else 0
    print(f"\n{tried} changes in {seconds / 60:.0f} minutes: {killed} killed "
          f"({counts['by time']} of them by time, {counts['by memory']} by memory), "
          f"{counts['survived']} survived; {percent:.1f} % killed")
    print(f"drawn and left: {counts['not compiled']} that do not compile, "
          f"{counts['same program']} of the same program")
    return percent


def main(count, seed):
    start = time.monotonic()
    texts = sources()
    reasons = explained.load()
    for entry in explained.stale(reasons, draw.all_changes(texts)):
        print("scripts/mutate.d/explained.txt: matches no place any more:",
              " | ".join(entry))
    session = Session(draw.changes(texts, seed), count, reasons)
    root = os.getcwd()
    threads = []
    for number in range(1, (os.cpu_count() or 1) + 1):
        worker = Worker(root, os.path.join(root, "build/mutate", str(number)))
        threads.append(threading.Thread(target=session.work, args=[worker], daemon=True))
        threads[-1].start()
    for thread in threads:
        thread.join()
    if isinstance(session.error, BaselineFailed):
        print(f"scripts/mutate: {session.error}", file=sys.stderr)
        return 2
    if session.error:
        raise session.error
    return 0 if report(session, time.monotonic() - start) >= ENOUGH else 1


if __name__ == "__main__":
    sys.exit(main(int(sys.argv[1]), int(sys.argv[2])))
