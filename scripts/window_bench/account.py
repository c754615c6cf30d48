"""What a process has used, as the kernel counts it."""
import os
import time


def overThreads(pid, count):
    """The sum of what `count` says of each thread's folder; threads may end meanwhile."""
    total = 0
    for thread in os.listdir(f"/proc/{pid}/task"):
        try:
            total += count(f"{pid}/task/{thread}")
        except (FileNotFoundError, ProcessLookupError):
            pass
    return total


def waitedForProcessor(thread):
    """Seconds that the thread has waited for a processor that others had."""
    with open(f"/proc/{thread}/schedstat", encoding="ascii") as file:
        return int(file.read().split()[1]) / 1e9


def processorTime(pid):
    """Seconds, of all threads, those too that have ended."""
    return time.clock_gettime(~pid << 3 | 2)  # the kernel's number for that clock


def wakeups(pid):
    """How often its threads have gone to sleep."""
    return overThreads(pid, lambda thread: status(thread, "voluntary_ctxt_switches"))


def resident(pid):
    """MiB."""
    return status(pid, "VmRSS") / 1024


def status(process, field):
    with open(f"/proc/{process}/status", encoding="utf-8") as file:
        for line in file:
            if line.startswith(field + ":"):
                return int(line.split()[1])
    raise KeyError(field)
