#!/usr/bin/env python3
"""Whole-process cost of the command line: CPU time (user + system) and wall
time of `zonara line`, `list` and `search`, each run N times (default 30)
against a throw-away configuration with three pinned cities and no running
Zonara on the session bus (run it in a session, or under dbus-run-session, so
that asking the bus is part of the cost). The medians are printed; `line`
should stay under 15 ms of CPU. Beside them, the same for a program that only
starts QtCore (zonara_bench_bare, built next to zonara), run in turn with the
commands so that a busy machine weighs on both alike.

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

    bare = os.path.join(os.path.dirname(binary), "zonara_bench_bare")
    commands = [[binary, "line"], [binary, "list"], [binary, "search", "stockholm"]]
    if os.access(bare, os.X_OK):
        commands.append([bare])
    cpu = {i: [] for i in range(len(commands))}
    wall = {i: [] for i in range(len(commands))}
    for _ in range(runs):
        for i, command in enumerate(commands):
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            start = time.perf_counter()
            subprocess.run(command, env=env, check=True, stdout=subprocess.DEVNULL)
            wall[i].append(time.perf_counter() - start)
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            cpu[i].append(after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime)

    print(f"{'command':<22}{'CPU ms':>10}{'wall ms':>10}   (median of {runs})")
    for i, command in enumerate(commands):
        name = " ".join(command[1:]) if command[0] == binary else "bare QtCore program"
        print(f"{name:<22}{statistics.median(cpu[i]) * 1000:>10.1f}"
              f"{statistics.median(wall[i]) * 1000:>10.1f}")
