#!/usr/bin/env python3
"""Start-up of the program against an empty Qt window: time to the window on screen, and memory of the settings tool.

usage: in_xvfb.sh start_up.py VIEWER EMPTY [REPEATS]

The starts alternate; medians are compared. Prints "figure<TAB>value<TAB>limit" lines.
"""
import os, statistics, subprocess, sys, tempfile, time


def visible(title):
    return subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def memory_mb(pid):
    # RSS, since PSS would depend on which other processes have Qt's libraries mapped.
    with open(f"/proc/{pid}/smaps_rollup") as table:
        return next(int(line.split()[1]) for line in table if line.startswith("Rss:")) / 1024


def start(command, title, environment):
    begun = time.monotonic()
    process = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
    while not visible(title):
        if time.monotonic() - begun > 30 or process.poll() is not None:
            raise SystemExit(f"{command} showed no window: {process.poll()}")
    seconds = time.monotonic() - begun
    memory = memory_mb(process.pid)
    process.kill()
    process.wait()
    while visible(title):
        time.sleep(0.01)
    return seconds, memory


def main():
    viewer, empty = sys.argv[1:3]
    repeats = int(sys.argv[3]) if len(sys.argv) > 3 else 9
    with tempfile.TemporaryDirectory() as home:
        environment = dict(os.environ, XDG_CONFIG_HOME=home, XDG_RUNTIME_DIR=home)
        kinds = {"empty": ([empty], "Empty"), "viewer": ([viewer], "QL240 Viewer"),
                 "settings": ([viewer, "setting"], "QL240 Setting")}
        found = {kind: [] for kind in kinds}
        for _ in range(repeats + 1):
            for kind, (command, title) in kinds.items():
                found[kind].append(start(command, title, environment))
    # The first round fills the caches.
    seconds, memory = ({kind: statistics.median(run[i] for run in runs[1:]) for kind, runs in found.items()} for i in (0, 1))
    print(f"viewer visible / empty window\t{seconds['viewer'] / seconds['empty']:.2f}\t2")
    print(f"settings tool visible / empty window\t{seconds['settings'] / seconds['empty']:.2f}\t2")
    print(f"settings tool's memory / empty window\t{memory['settings'] / memory['empty']:.2f}\t2")
    print(f"# ms: {({k: round(v * 1000) for k, v in seconds.items()})}, MB: {({k: round(v) for k, v in memory.items()})}",
          file=sys.stderr)


main()
