"""What is compared with what, and what must come of it.

A benchmark's name is subject/who/size, as the sources of this folder give it.
"""

from rows import Growth, Ratio, Steady, Value

KIB = 1024
MIB = 1024 * KIB

PARSE = "parse a reply and bind it"
RECEIVE = "take in a reply"
ESCAPE = "`escape`"
UNESCAPE = "`unescape`"
WRITE = "write with `outputXML`"
UTF8 = "`toUtf8`"
REGISTER = "a whole `registerClient`"
PUT = "put an event of 1 KiB"
GET = "get events of 1 KiB"


def ids(count):
    return f"{count:,} identifier" + ("s" if count > 1 else "")


def bytes_of(size):
    return f"{size // MIB} MiB" if size >= MIB else f"{size // KIB} KiB"


def parse():
    for count, limit in ((1, 1.25), (100, 2.4), (10000, 3.0), (100000, 3.4)):
        yield Ratio(PARSE, ids(count), f"parse/ours/{count}", f"parse/sax2_empty/{count}",
                    "Xerces SAX2, empty handler", at_most=limit)
    for count, limit in ((1, None), (100, 1.4), (10000, 1.6), (100000, 1.4)):
        yield Ratio(PARSE, ids(count), f"parse/ours/{count}", f"parse/dom/{count}",
                    "Xerces DOM", faster=limit)
    for peer in ("libxml2", "expat", "pugixml"):
        for count in (1, 100, 10000, 100000):
            yield Ratio(PARSE, ids(count), f"parse/ours/{count}", f"parse/{peer}/{count}", peer)
    for count in (10000, 100000):
        yield Value(PARSE, ids(count), "allocations an element", f"parse/ours/{count}",
                    lambda run, n=count: run.counter("allocations") / n, at_most=8.05)
    yield Growth(PARSE, [(ids(n), f"parse/ours/{n}") for n in (12500, 25000, 50000, 100000)])


def receive():
    sizes = (64 * KIB, MIB, 4 * MIB, 64 * MIB)
    chunks = ((16 * KIB, "16 KiB"), (4 * KIB, "4 KiB"), (512, "512 B"))
    peer = "append to a reserved string"

    def pair(size, chunk):
        return f"receive/ours/{size}/{chunk}", f"receive/reserved/{size}/{chunk}"

    for size in sizes:
        for chunk, name in chunks:
            yield Ratio(RECEIVE, f"{bytes_of(size)} in {name}", *pair(size, chunk), peer,
                        at_most=3.0)
    for chunk, name in chunks:
        yield Steady(RECEIVE, f"{', '.join(map(bytes_of, sizes))} in {name}",
                     [pair(size, chunk) for size in sizes], peer, at_most=2.0)
    yield Value(RECEIVE, "512 MiB in 16 KiB", "seconds", f"receive/ours/{512 * MIB}/{16 * KIB}",
                lambda run: run.seconds("cpu"), at_most=3)
    yield Growth(RECEIVE, [(bytes_of(n), f"receive/ours/{n}/{16 * KIB}")
                           for n in (8 * MIB, 16 * MIB, 32 * MIB, 64 * MIB)])


def escape():
    for percent, limit in ((0, 3), (1, 1.3), (10, 1.3), (100, 2)):
        yield Ratio(ESCAPE, f"1 MiB, {percent} % special", f"escape/ours/{MIB}/{percent}",
                    f"escape/libxml2/{MIB}/{percent}", "libxml2 `xmlEncodeSpecialChars`",
                    faster=limit)
    for percent in (0, 1, 10, 100):
        yield Growth(ESCAPE, [(f"{bytes_of(n)}, {percent} %", f"escape/ours/{n}/{percent}")
                              for n in (MIB, 2 * MIB, 4 * MIB)], at_most=2.4)
    for percent, limit in ((0, 3), (1, 12), (10, 40), (100, 50)):
        yield Ratio(UNESCAPE, f"1 MiB, {percent} % special", f"unescape/ours/{MIB}/{percent}",
                    f"unescape/copy/{MIB}/{percent}", "a plain copy", at_most=limit)
    yield Steady(UNESCAPE, "1 MiB, 2 MiB, 4 MiB, 0 % special",
                 [(f"unescape/ours/{n}/0", f"unescape/copy/{n}/0")
                  for n in (MIB, 2 * MIB, 4 * MIB)], "a plain copy", at_most=2.0)
    for percent in (1, 10, 100):
        yield Growth(UNESCAPE, [(f"{bytes_of(n)}, {percent} %", f"unescape/ours/{n}/{percent}")
                                for n in (MIB, 2 * MIB, 4 * MIB)], at_most=2.4)


def write():
    for count, limit in ((100, 3), (100000, 2)):
        yield Ratio(WRITE, ids(count), f"write/ours/{count}", f"write/libxml2/{count}",
                    "libxml2 `xmlTextWriter`", faster=limit)
    yield Growth(WRITE, [(ids(n), f"write/ours/{n}") for n in (25000, 50000, 100000)])


def utf8():
    for size, name, limit in ((300, "300 B", 2.1), (MIB, "1 MiB", 1.2)):
        yield Ratio(UTF8, name, f"utf8/ours/{size}", f"utf8/kept/{size}",
                    "the same, converters kept open", at_most=limit)
        yield Ratio(UTF8, name, f"utf8/ours/{size}", f"utf8/one_call/{size}",
                    "ICU `ucnv_convert`")
    yield Growth(UTF8, [(bytes_of(n), f"utf8/ours/{n}") for n in (MIB, 2 * MIB, 4 * MIB)])


def register_client():
    for count, limit in ((1, 1.5), (10, 1.8), (100, 2.4), (10000, 2.7)):
        yield Ratio(REGISTER, ids(count), f"register_client/ours/{count}",
                    f"register_client/by_hand/{count}", "the same by hand", at_most=limit)
    yield Value(REGISTER, ids(1), "allocations outside the XML library",
                "register_client/ours/1",
                lambda run: run.counter("allocations_outside_xml"), at_most=35)
    yield Growth(REGISTER, [(ids(n), f"register_client/ours/{n}") for n in (2500, 5000, 10000)])


def store():
    for name, key, limit in (("FULL", 1, 0.5), ("NORMAL", 0, 0.15)):
        yield Ratio(PUT, f"`synchronous={name}`", f"store/put/{key}/1", f"store/put_raw/{key}",
                    "a raw SQLite insert", share=limit, clock="real")
    for count in (10, 1000):
        yield Ratio(PUT, f"{count:,} clients", f"store/put/0/{count}", "store/put/0/1",
                    "ours, 1 client", at_most=1.2)
    yield Ratio(PUT, "400,000 events waiting", "store/put_waiting/400000", "store/put/0/2",
                "ours, none waiting", at_most=1.2)
    for name, key in (("FULL", 1), ("NORMAL", 0)):
        yield Value(GET, f"10,000 events, `{name}`", "events a second", f"store/get/{key}/10000",
                    lambda run: run.counter("events") / run.seconds("real"), at_least=200000)
        yield Ratio(GET, f"10,000 events, `{name}`", f"store/get/{key}/10000",
                    "store/get_raw/10000", "a raw SQLite select", clock="real")
    yield Growth(GET, [(f"{n:,} events, `NORMAL`", f"store/get/0/{n}")
                       for n in (5000, 10000, 20000)], at_most=3.0)


SUBJECTS = {
    "parse": parse,
    "receive": receive,
    "escape": escape,
    "write": write,
    "utf8": utf8,
    "register_client": register_client,
    "store": store,
}


def rows(subjects):
    for subject in subjects:
        yield from SUBJECTS[subject]()
