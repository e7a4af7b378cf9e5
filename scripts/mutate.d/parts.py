"""The parts of the product, each with the tests that are to notice its changes."""

import glob
from collections import namedtuple

# `sources` are patterns of paths; `labels` those of CTest whose entries are run,
# and after them the entries `last`, which look at the same from farther away.
Part = namedtuple("Part", "folder sources labels last")

PARTS = {
    "library": Part("OvMemCppBinding", ["OvMemCppBinding/*/*.cpp", "OvMemCppBinding/*/*.h"],
                    ["unit"],
                    ["ovmem.faults.EndlessHandshake", "ovmem.faults.PlatformStart",
                     "ovmem.faults.GuardedPlatformStart", "ovmem.faults.FaultMatrix",
                     "ovmem.lifetime.LongOrders", "ovmem.faults.HeapLoss",
                     "ovmem.faults.AllocationSweep"]),
    "emulator": Part("emulator", ["emulator/*/*.cpp", "emulator/*/*.h"], ["emulator"],
                     ["ovmem.process.KilledGetter", "ovmem.process.ConcurrentPutters"]),
    "cli": Part("cli", ["cli/*.cpp", "cli/*.h"], ["cli"], []),
}


def sources(part):
    texts = {}
    for path in (p for pattern in part.sources for p in glob.glob(pattern)):
        with open(path, encoding="utf-8") as file:
            texts[path] = file.read()
    return texts
