"""On what was measured. Names no host and no user."""

import os
import subprocess

LIBRARIES = (("Xerces-C++", "xerces-c"), ("ICU", "icu-uc"), ("libxml2", "libxml-2.0"),
             ("expat", "expat"), ("pugixml", "pugixml"), ("SQLite", "sqlite3"))


def _said(*command):
    done = subprocess.run(command, text=True, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return done.stdout.split("\n")[0].strip()


def _value(path, key):
    with open(path, encoding="utf-8") as file:
        for line in file:
            if line.startswith(key):
                return line.split(":", 1)[1].strip()
    return "unknown"


def describe():
    flags = _value("/proc/cpuinfo", "flags").split()
    memory = int(_value("/proc/meminfo", "MemTotal").split()[0])
    return {
        "cores": f"{os.cpu_count()} of {_value('/proc/cpuinfo', 'model name')}",
        "kind": "virtual machine" if "hypervisor" in flags else "real machine",
        "memory": f"{memory / 1024 / 1024:.0f} GiB",
        "kernel": f"{os.uname().sysname} {os.uname().release}",
        "load before": f"{os.getloadavg()[0]:.1f}",
        "compiler": _said("g++", "--version"),
        "libraries": ", ".join(f"{name} {_said('pkg-config', '--modversion', module)}"
                               for name, module in LIBRARIES),
    }
