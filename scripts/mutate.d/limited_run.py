"""Runs a program with limits on its time and its memory."""

import os
import signal
import subprocess
import threading

MEMORY_LIMIT = 4 << 30  # bytes of address space
MUCH_MEMORY = 2 << 30   # bytes in use: with these, a failure is one of memory


def run(command, folder, timeout, log):
    """How it ended: passed, failed, time or memory."""
    with open(log, "wb") as output:
        program = subprocess.Popen(
            ["prlimit", f"--as={MEMORY_LIMIT}", "--core=0"] + command, cwd=folder,
            stdin=subprocess.DEVNULL, stdout=output, stderr=output,
            start_new_session=True)
    late = threading.Event()

    def end():
        late.set()
        _kill(program.pid)

    timer = threading.Timer(timeout, end)
    timer.start()
    _, status, usage = os.wait4(program.pid, 0)
    program.returncode = os.waitstatus_to_exitcode(status)
    timer.cancel()
    timer.join()
    _kill(program.pid)  # what it started and left behind
    if late.is_set():
        return "time"
    if status == 0:
        return "passed"
    return "memory" if usage.ru_maxrss * 1024 > MUCH_MEMORY else "failed"


def _kill(group):
    try:
        os.killpg(group, signal.SIGKILL)
    except ProcessLookupError:
        pass
