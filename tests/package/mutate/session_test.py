import contextlib
import io
import itertools
import threading
import unittest

import scripts  # noqa: F401  (for the path)
from draw import Change
from session import Session
from worker import BaselineFailed


def change(number):
    return Change("a.cpp", number, "number", str(number), "0", "", "")


class Player:
    """In place of a worker: what becomes of a change, its line decides."""

    RESULTS = ["killed", "not compiled", "survived", "same program", "by time"]

    def prepare(self):
        pass

    def attempt(self, _, text):
        return text, "entry"


def session_of(count, changes):
    return Session(changes, count, {})


def played(count, workers):
    changes = (change(n)._replace(text=Player.RESULTS[n % 5]) for n in itertools.count())
    session = session_of(count, changes)
    threads = [threading.Thread(target=session.work, args=[Player()])
               for _ in range(workers)]
    with contextlib.redirect_stdout(io.StringIO()) as said:
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    return session, said.getvalue()


class SessionTest(unittest.TestCase):
    def test_what_is_no_change_is_drawn_in_addition(self):
        session, _ = played(6, 1)
        self.assertEqual(
            [(0, "killed"), (1, "not compiled"), (2, "survived"), (3, "same program"),
             (4, "by time"), (5, "killed"), (6, "not compiled"), (7, "survived"),
             (8, "same program"), (9, "by time")],
            [(c.line, result) for c, result, _ in session.results])

    def test_any_number_of_workers_tries_the_same_changes(self):
        for count in (1, 2, 5, 50):
            for workers in (2, 7):
                with self.subTest(count=count, workers=workers):
                    self.assertEqual(sorted(played(count, 1)[0].results),
                                     sorted(played(count, workers)[0].results))

    def test_survivors_are_told_at_once(self):
        self.assertEqual("a.cpp:2: number: '2' -> '0'  survived\n", played(3, 1)[1])

    def test_it_ends_when_there_are_no_more_places(self):
        session = session_of(5, iter([change(0)._replace(text="killed")]))
        session.work(Player())
        self.assertEqual(1, session.tried())

    def test_a_tree_that_fails_by_itself_ends_it(self):
        class Failing(Player):
            def prepare(self):
                raise BaselineFailed("ninja fails")

        session = session_of(5, itertools.repeat(change(0)._replace(text="killed")))
        session.work(Failing())
        session.work(Player())
        self.assertEqual(("ninja fails", []), (str(session.error), session.results))


if __name__ == "__main__":
    unittest.main()
