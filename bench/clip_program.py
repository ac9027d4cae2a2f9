#!/usr/bin/env python3
"""ql240-clip against ExifTool on a folder of 1,000 clips, its memory there and on a tenth of them, and its start on a
short clip against an empty program.

usage: clip_program.py CLIP_PROGRAM CLIP_MAKER EMPTY [COUNT]

Prints "figure<TAB>value<TAB>limit<TAB>detail" lines.
"""
import glob, os, statistics, subprocess, sys, tempfile, time


def run(command):
    """Seconds and the largest memory of the process in MB."""
    with open(os.devnull, "w") as nothing:
        begun = time.monotonic()
        process = subprocess.Popen(command, stdout=nothing, stderr=nothing)
        _, status, usage = os.wait4(process.pid, 0)
        if status:
            raise SystemExit(f"{command[0]} ended with {status}")
        return time.monotonic() - begun, usage.ru_maxrss / 1024


def main():
    program, maker, empty = sys.argv[1:4]
    count = int(sys.argv[4]) if len(sys.argv) > 4 else 1000
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([maker, folder, str(count)], check=True)
        clips = sorted(glob.glob(os.path.join(folder, "*.mp4")))
        track = [program, "track", "--format", "csv"]
        run([*track, folder])  # fills the caches
        here = statistics.median(run([*track, folder])[0] for _ in range(3))
        peer, _ = run(["exiftool", "-ee3", "-n", "-q", "-j", "-G3", "-gps*", folder])
        print(f"track of {count} clips, s / ExifTool\t{here / peer:.4f}\t0.1\t{here:.2f}, {peer:.1f}")
        few = run([*track, *clips[:count // 10]])[1]
        many = run([*track, *clips])[1]
        print(f"track of {count} clips, memory / of a tenth of them\t{many / few:.2f}\t1.1\t{many:.1f}, {few:.1f}")
        pairs = [(run([program, "info", clips[0]])[0], run([empty])[0]) for _ in range(41)]
    ours, theirs = (statistics.median(column) for column in zip(*pairs))
    print(f"info on a clip / an empty program\t{ours / theirs:.2f}\t2\t{ours * 1000:.1f}, {theirs * 1000:.1f}")


if __name__ == "__main__":
    main()
