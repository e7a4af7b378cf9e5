"""Hands the changes to the workers, and collects what became of them."""

import threading

NO_CHANGE = ("not compiled", "same program")


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
