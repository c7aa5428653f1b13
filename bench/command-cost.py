#!/usr/bin/env python3
"""Whole-process cost of the command line: CPU time (user + system) and wall
time of `zonara line`, `list` and `search`, each run N times (default 30)
against a throw-away configuration with three pinned cities and no running
Zonara on the session bus (run it in a session, or under dbus-run-session, so
that asking the bus is part of the cost). The medians are printed; `line`
should stay under 15 ms of CPU.

    bench/command-cost.py [ZONARA_BINARY] [RUNS]
"""
import os
import resource
import statistics
import subprocess
import sys
import tempfile
import time

binary = sys.argv[1] if len(sys.argv) > 1 else "build/release/bin/zonara"
if not os.access(binary, os.X_OK):
    binary = "build/dev/bin/zonara"
runs = int(sys.argv[2]) if len(sys.argv) > 2 else 30

with tempfile.TemporaryDirectory() as home:
    env = dict(os.environ, XDG_CONFIG_HOME=home, TZ="UTC")
    for zone in ("Europe/Stockholm", "Asia/Tokyo", "America/New_York"):
        subprocess.run([binary, "add", zone, "--pin"], env=env, check=True,
                       stdout=subprocess.DEVNULL)

    def measure(arguments):
        cpu, wall = [], []
        for _ in range(runs):
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            start = time.perf_counter()
            subprocess.run([binary] + arguments, env=env, check=True,
                           stdout=subprocess.DEVNULL)
            wall.append(time.perf_counter() - start)
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            cpu.append(after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime)
        return statistics.median(cpu) * 1000, statistics.median(wall) * 1000

    print(f"{'command':<22}{'CPU ms':>10}{'wall ms':>10}   (median of {runs})")
    for arguments in (["line"], ["list"], ["search", "stockholm"]):
        cpu, wall = measure(arguments)
        print(f"{' '.join(arguments):<22}{cpu:>10.1f}{wall:>10.1f}")
