"""main.py PART N SEED: tries N changes of it. Exits with 1 below 95 %."""

import collections
import os
import sys
import threading
import time

import draw
import explained
import parts
from session import Session, described
from worker import BaselineFailed, Worker

ENOUGH = 95  # per cent
KILLED = ("killed", "by time", "by memory")


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
            reason = explained.reason(session.reasons, change)
            print(f"    explained: {reason}" if reason else "    not explained")
    percent = 100 * killed / tried if tried else 0
    print(f"\n{tried} changes in {seconds / 60:.0f} minutes: {killed} killed "
          f"({counts['by time']} of them by time, {counts['by memory']} by memory), "
          f"{counts['survived']} survived; {percent:.1f} % killed")
    print(f"drawn and left: {counts['not compiled']} that do not compile, "
          f"{counts['same program']} of the same program")
    return percent


def main(of, count, seed):
    start = time.monotonic()
    part = parts.PARTS[of]
    texts = parts.sources(part)
    reasons = explained.load(folder=part.folder + "/")
    for entry in explained.stale(reasons, draw.all_changes(texts)):
        print("scripts/mutate.d/explained.txt: matches no place any more:",
              " | ".join(entry))
    session = Session(draw.changes(texts, seed), count, reasons)
    root = os.getcwd()
    threads = []
    for number in range(1, (os.cpu_count() or 1) + 1):
        worker = Worker(root, os.path.join(root, "build/mutate", str(number)), part)
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
    sys.exit(main(sys.argv[1], int(sys.argv[2]), int(sys.argv[3])))
