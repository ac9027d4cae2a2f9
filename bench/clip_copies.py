#!/usr/bin/env python3
"""ql240-clip's cut and repair of a clip of 1 GB against plain copies of as many bytes, and their memory.

usage: clip_copies.py CLIP_PROGRAM [MEGABYTES]

Each run is followed by its copy. Both read a clip that is in the cache, and end when the new file is on the disk.
Prints "figure<TAB>value<TAB>limit<TAB>detail" lines.
"""
import os, statistics, subprocess, sys, tempfile

sys.dont_write_bytecode = True
from clip_program import run

ROUNDS = 5
BASE_SECONDS = 20
PIECE = ["--from", "60", "--to", "90"]


def ffmpeg(*words):
    subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-y", *words], check=True)


def make_clips(folder, megabytes):
    """A short clip, and one of the same pictures over and over, whose index is last."""
    short, clip = (os.path.join(folder, f"REC_2013_04_05_14_{minute}_12.mp4") for minute in (10, 11))
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=s=1280x720:r=30:d={BASE_SECONDS},noise=alls=20:allf=t",
           "-f", "lavfi", "-i", f"anoisesrc=r=32000:a=0.1:d={BASE_SECONDS}", "-c:v", "libx264", "-preset", "ultrafast",
           "-pix_fmt", "yuv420p", "-g", "30", "-b:v", "15M", "-maxrate", "15M", "-bufsize", "15M", "-c:a", "aac", short)
    times = -(-megabytes * 1000 * 1000 // os.path.getsize(short))
    ffmpeg("-stream_loop", str(times - 1), "-i", short, "-c", "copy", clip)
    return short, clip


def interrupt(clip):
    """Cuts off the last box, the index."""
    with open(clip, "r+b") as file:
        at, head = 0, file.read(16)
        while head[4:8] != b"moov":
            size = int.from_bytes(head[:4], "big")
            at += int.from_bytes(head[8:], "big") if size == 1 else size
            file.seek(at)
            head = file.read(16)
        file.truncate(at)


def compare(title, limits, command, source, copy):
    """The median of the ratios to a copy, a line for the shell, and the largest memory."""
    output, rounds = source + ".new", []
    for _ in range(ROUNDS + 1):  # the first fills the caches
        os.sync()
        ours, memory = run([*command, "--force", "-o", output, source])
        size = os.path.getsize(output)
        os.remove(output)
        os.sync()
        theirs, _ = run(["sh", "-c", copy + ' > "$2" && sync "$2"', "sh", source, output, str(size)])
        os.remove(output)
        rounds.append((ours, theirs, memory))
    ours, theirs, memory = zip(*rounds[1:])
    ratio = statistics.median(a / b for a, b in zip(ours, theirs))
    print(f"{title}\t{ratio:.2f}\t{limits[0]}\t{statistics.median(ours):.2f}, {statistics.median(theirs):.2f}")
    print(f"{title.split(',')[0]}, MiB of memory\t{max(memory):.1f}\t{limits[1]}\t")


def main():
    program, megabytes = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 1000
    with tempfile.TemporaryDirectory() as folder:
        short, clip = make_clips(folder, megabytes)
        compare("cut of 30 s of a 1 GB clip, s / a copy of as many bytes", (1.5, 32), [program, "cut", *PIECE], clip,
                'head -c "$3" "$1"')
        interrupt(clip)
        compare("repair of a 1 GB clip, s / cat", (1.5, 64), [program, "repair", "--like", short], clip, 'cat "$1"')


main()
