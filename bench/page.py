#!/usr/bin/env python3
"""Runs every benchmark and writes their figures to docs/PERFORMANCE.md, with machine and versions; figures over 10 %
worse than on the last page are marked. Leave the machine alone meanwhile.

usage: page.py FOLDER_OF_PROGRAMS PAGE

A benchmark prints "figure<TAB>value<TAB>limit<TAB>detail" lines; limit (at most that much, ">=" at least) and detail
may be empty.
"""
import datetime, os, platform, re, subprocess, sys

HERE = os.path.dirname(os.path.abspath(__file__))


def commands(programs):
    program = lambda name: os.path.join(programs, name)
    script = lambda name, *rest: [sys.executable, os.path.join(HERE, name), *map(program, rest)]
    yield "playback.py", script("playback.py", "ql240-bench-player")
    for name in ("bench_adjust", "bench_library", "bench_panel", "bench_map", "bench_settings", "bench_sensor_clip"):
        yield name, [program(name)]
    yield "hour.py", [*script("hour.py", "ql240-viewer"), "1080p"]
    yield "start_up.py", script("start_up.py", "ql240-viewer", "ql240-bench-empty-window")


def measured(command):
    """Rows of four texts; a benchmark that fails tells so and has none."""
    run = subprocess.run([os.path.join(HERE, "in_xvfb.sh"), *command], stdout=subprocess.PIPE, text=True)
    if run.returncode:
        print(f"  failed: {' '.join(command)}", file=sys.stderr)
    rows = [line.split("\t") for line in run.stdout.splitlines() if "\t" in line]
    return [(row + [""] * 4)[:4] for row in rows]


def worse(value, old, limit):
    return value < old / 1.1 if limit.startswith(">=") else value > old * 1.1


def met(value, limit):
    if not re.search(r"\d", limit):
        return ""
    bound = float(limit.removeprefix(">="))
    return "yes" if (value >= bound if limit.startswith(">=") else value <= bound) else "**no**"


def last_page(path):
    if not os.path.exists(path):
        return {}
    with open(path) as page:
        cells = [[cell.strip() for cell in line.split("|")[1:-1]] for line in page if line.startswith("| ")]
    return {row[0]: float(row[1]) for row in cells if len(row) > 1 and re.fullmatch(r"[\d.]+", row[1])}


def version(*command):
    return subprocess.run(command, capture_output=True, text=True).stdout.splitlines()[0].split(" Copyright")[0]


def machine():
    with open("/proc/cpuinfo") as table:
        model = next(line.split(":")[1].strip() for line in table if line.startswith("model name"))
    return f"{os.cpu_count()} × {model}, Linux {platform.release().split('-')[0]}"


def main():
    programs, path = sys.argv[1:3]
    old, lines = last_page(path), []
    for name, command in commands(programs):
        print(f"{name} …", file=sys.stderr, flush=True)
        for figure, value, limit, detail in measured(command):
            mark = "worse" if met(float(value), limit) and figure in old and worse(float(value), old[figure], limit) else ""
            asked = limit.replace(">=", "≥ ") if ">=" in limit else f"≤ {limit}" if re.search(r"\d", limit) else ""
            lines.append(f"| {figure} | {value} | {asked} | {met(float(value), limit)} | {detail} | {mark} |")
            print("  " + lines[-1], file=sys.stderr, flush=True)
    with open(path, "w") as page:
        page.write("# Performance\n\n"
                   "Made by `bench/run.sh`. Most figures are ratios to a peer measured in the same run; what the peer is "
                   "stands in the\nfigure's name. \"Worse\" marks a figure that is over 10 % worse than on the page before.\n"
                   "[Where the time goes](where-the-time-goes.md) says what is behind the narrow ones.\n\n"
                   f"{datetime.date.today()}, {machine()}, no GPU, {version('mpv', '--version')}, "
                   f"{version('gst-launch-1.0', '--version').replace('gst-launch-1.0 version', 'GStreamer')}.\n\n"
                   "| figure | value | asked | met | here, peer | last page |\n| --- | --- | --- | --- | --- | --- |\n")
        page.writelines(line + "\n" for line in lines)


main()
