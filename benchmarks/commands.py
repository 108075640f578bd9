"""What a whole command costs: for the measurements of benchmarks/."""
import os
import subprocess
import sys
import time


def measure(command, folder):
    """Wall seconds, processor seconds with those of all processes that it started, and the most memory, MB, of a
    command that reads nothing and whose standard output nobody wants. Ends the program when it fails."""
    start = time.perf_counter()
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - start
    if status != 0:
        sys.exit(f"{' '.join(map(str, command))}: status {status}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024
