"""The kinds of rows in the table."""

from collections import namedtuple

# `met` is None where nothing must be reached.
Line = namedtuple("Line", "subject size ours peer ratio must_reach met")


def duration(seconds):
    for unit, factor in (("s", 1), ("ms", 1e3), ("µs", 1e6)):
        if seconds * factor >= 1:
            return f"{seconds * factor:.3g} {unit}"
    return f"{seconds * 1e9:.0f} ns"


def number(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.2f}"


class Ratio:
    """The time of ours beside that of a peer.

    Of the limits at most one is given: `at_most` times the time of the peer;
    `faster`, so many times; `share`, that part of the peer's throughput.
    """

    same_work = True  # the checksums must agree

    def __init__(self, subject, size, ours, peer, peer_name,
                 at_most=None, faster=None, share=None, clock="cpu"):
        self.subject, self.size = subject, size
        self.names = (ours, peer)
        self.peer_name = peer_name
        self.at_most, self.faster, self.share = at_most, faster, share
        self.clock = clock

    def line(self, runs):
        ours, peer = (runs[name].seconds(self.clock) for name in self.names)
        if self.share:
            ratio, must = f"{peer / ours:.2f} of it", f"at least {self.share} of it"
            met = peer / ours >= self.share
        elif self.at_most:
            ratio, must = f"{ours / peer:.2f} times", f"at most {self.at_most} times"
            met = ours / peer <= self.at_most
        else:
            ratio = (f"{peer / ours:.2f} times faster" if peer >= ours
                     else f"{ours / peer:.2f} times slower")
            must = f"{self.faster} times faster" if self.faster else "-"
            met = peer / ours >= self.faster if self.faster else None
        return Line(self.subject, self.size, duration(ours),
                    f"{self.peer_name}: {duration(peer)}", ratio, must, met)


class Value:
    """A figure of ours alone, computed from its run."""

    same_work = False

    def __init__(self, subject, size, what, name, compute, at_most=None, at_least=None):
        self.subject, self.size, self.what = subject, size, what
        self.names = (name,)
        self.compute = compute
        self.at_most, self.at_least = at_most, at_least

    def line(self, runs):
        value = self.compute(runs[self.names[0]])
        if self.at_most is not None:
            must, met = f"at most {self.at_most}", value <= self.at_most
        else:
            must, met = f"at least {self.at_least:,}", value >= self.at_least
        return Line(self.subject, self.size, f"{number(value)} {self.what}", "-", "-", must, met)


class Growth:
    """The time of ours at sizes that double, each beside the one before."""

    same_work = False

    def __init__(self, subject, sizes, at_most=None):
        self.subject = subject
        self.size = f"{sizes[0][0]}, doubled {len(sizes) - 1} times"
        self.names = tuple(name for _, name in sizes)
        self.at_most = at_most

    def line(self, runs):
        times = [runs[name].seconds("cpu") for name in self.names]
        factors = [after / before for before, after in zip(times, times[1:])]
        must = f"each at most {self.at_most} times" if self.at_most else "-"
        met = max(factors) <= self.at_most if self.at_most else None
        return Line(self.subject, self.size, ", ".join(map(duration, times)), "-",
                    ", ".join(f"{factor:.2f}" for factor in factors) + " times", must, met)


class Steady:
    """The ratio of ours to a peer at several sizes, the largest beside the smallest.

    For what grows as the peer does, in step with the memory of the machine and
    not with the size alone.
    """

    same_work = False  # as one size has another result; a Ratio compares each

    def __init__(self, subject, size, pairs, peer_name, at_most):
        self.subject, self.size = subject, size
        self.pairs = pairs
        self.names = tuple(name for pair in pairs for name in pair)
        self.peer_name = peer_name
        self.at_most = at_most

    def line(self, runs):
        ratios = [runs[ours].seconds("cpu") / runs[peer].seconds("cpu")
                  for ours, peer in self.pairs]
        spread = max(ratios) / min(ratios)
        return Line(self.subject, self.size,
                    ", ".join(f"{ratio:.2f}" for ratio in ratios) + " times the peer",
                    self.peer_name, f"largest {spread:.2f} times the smallest",
                    f"at most {self.at_most} times", spread <= self.at_most)
