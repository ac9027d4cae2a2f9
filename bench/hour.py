#!/usr/bin/env python3
"""What the viewer uses while it plays: memory, threads and descriptors of all its processes.

usage: in_xvfb.sh hour.py VIEWER [MINUTES]     plays a list of 60 clips of one minute each, by default for an hour
       in_xvfb.sh hour.py VIEWER 1080p         half a minute of 1080p, with the dashboard and the map

Memory is the sum of the PSS over the viewer and the web engine's processes. The long run compares the medians of its
first and last sixth, counting only private memory: the share of common libraries grows when another program that uses
them ends. Prints "figure<TAB>value<TAB>limit" lines.
"""
import os, statistics, subprocess, sys, tempfile, time

FF = "ffmpeg -loglevel error -nostdin -y".split()
CLIPS = 60
X264 = "-c:v libx264 -preset veryfast -pix_fmt yuv420p -g 30 -bf 0".split()


def box(kind, body):
    return (len(body) + 8).to_bytes(4, "big") + kind + body


def rmc(second):
    north, east = 3730 + second * 0.012, 12701 + second * 0.015
    words = f"GPRMC,{12:02}{second // 60 % 60:02}{second % 60:02},A,{north:.4f},N,{east:.4f},E,{second % 60:.1f},45.0,050413,,"
    total = 0
    for byte in words.encode():
        total ^= byte
    return f"${words}*{total:02X}"


def positions(kind, seconds):
    """The sensor data of a clip, as the camera writes it."""
    if kind == "avi":
        lines = (f"12:29$1229{i // 10 % 60:02},{37.5 + i * 2e-5:.6f},{127.02 + i * 3e-5:.6f},{i // 10},{i % 90},-3,128\n"
                 for i in range(seconds * 10))
        return b"ETKLP1\n" + "".join(lines).encode()
    start = 1365165000000
    log = "".join(f"[{start + i * 1000}]{rmc(i)}\n" for i in range(seconds)).encode()
    return box(b"free", box(b"gps ", log) + box(b"sttm", start.to_bytes(8, "big")))


def make_clip(folder, kind, size, seconds, streams=1, rate=15):
    path = os.path.join(folder, f"made_{streams}.{kind}")
    inputs = [word for name in ("testsrc2", "testsrc")[:streams]
              for word in ("-f", "lavfi", "-i", f"{name}=s={size}:r={rate}:d={seconds}")]
    inputs += ["-f", "lavfi", "-i", f"sine=frequency=440:sample_rate=32000:duration={seconds}"]
    maps = [word for i in range(streams + 1) for word in ("-map", str(i))]
    mp4 = X264 + "-c:a aac -b:a 64k -movflags +faststart".split()
    codecs = mp4 if kind == "mp4" else "-c:v mjpeg -q:v 8 -pix_fmt yuvj422p -c:a pcm_s16le".split()
    subprocess.run(FF + inputs + maps + codecs + [path], check=True)
    with open(path, "ab") as file:
        file.write(positions(kind, seconds))
    return path


def make_list(folder):
    made = [make_clip(folder, "mp4", "640x360", 60), make_clip(folder, "mp4", "320x180", 60, streams=2),
            make_clip(folder, "avi", "320x240", 60)]
    card = os.path.join(folder, "card")
    os.mkdir(card)
    for i in range(CLIPS):
        clip = made[i % len(made)]
        os.link(clip, os.path.join(card, f"REC_2013_04_05_12_{i:02}_00{os.path.splitext(clip)[1]}"))
    return card


def processes(root):
    """The process and all its descendants."""
    parents = {}
    for entry in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{entry}/stat") as stat:
                parents[int(entry)] = int(stat.read().rpartition(")")[2].split()[1])
        except OSError:
            pass
    found = [root]
    for pid in found:
        found += [child for child, parent in parents.items() if parent == pid]
    return found


def value_of(path, name):
    with open(path) as table:
        return next(int(line.split()[1]) for line in table if line.startswith(name))


def open_files(pid):
    folder = f"/proc/{pid}/fd"
    return [os.readlink(os.path.join(folder, entry)) for entry in os.listdir(folder)
            if os.path.lexists(os.path.join(folder, entry))]


def memory(pids, kind):
    return sum(value_of(f"/proc/{pid}/smaps_rollup", kind) for pid in pids) / 1024


def sample(root, card, seen):
    pids = processes(root)
    files = {pid: open_files(pid) for pid in pids}
    seen.update(os.path.basename(name) for name in files[root] if name.startswith(card))
    return {"PSS of all processes, MB": memory(pids, "Pss:"),
            "own memory of all processes, MB": memory(pids, "Pss_Anon:"),
            "own memory of the viewer, MB": memory([root], "Pss_Anon:"),
            "threads": sum(value_of(f"/proc/{pid}/status", "Threads:") for pid in pids),
            "descriptors": sum(map(len, files.values())),
            "processes": len(pids)}


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], capture_output=True, text=True).stdout.split()


def open_window(title):
    for _ in range(300):
        found = xdotool("search", "--onlyvisible", "--name", f"^{title}$")
        if found:
            return found[0]
        time.sleep(0.1)
    raise SystemExit(f"no window {title}")


def start_playing(viewer, home, card):
    """Opens the folder like a user: presses the button, then OK on the last folder."""
    os.mkdir(os.path.join(home, "QL240"))
    with open(os.path.join(home, "QL240", "local.ini"), "w") as preferences:
        preferences.write(f"[global]\nlanguage=en\n[storage]\nlastfolder={card}\n")
    environment = dict(os.environ, XDG_CONFIG_HOME=home, XDG_RUNTIME_DIR=home)
    process = subprocess.Popen([viewer], env=environment, stderr=subprocess.DEVNULL)
    window = open_window("QL240 Viewer")
    xdotool("mousemove", "--window", window, 990, 250, "click", 1)
    dialog = open_window("Open Folder")
    xdotool("windowfocus", "--sync", dialog, "key", "Return")
    return process


def play(viewer, folder, card, seconds, interval):
    home = os.path.join(folder, "home")
    os.mkdir(home, mode=0o700)
    process = start_playing(viewer, home, card)
    samples, seen, end = [], set(), time.monotonic() + seconds
    while time.monotonic() < end:
        time.sleep(interval)
        if process.poll() is not None:
            raise SystemExit(f"the viewer has ended: {process.returncode}")
        samples.append(sample(process.pid, card, seen))
    process.terminate()
    process.wait()
    return samples, seen


def long_run(viewer, folder, minutes):
    samples, seen = play(viewer, folder, make_list(folder), minutes * 60, 10)
    print(f"minutes played\t{minutes}\t60")
    print(f"clips played\t{len(seen)}\t{min(CLIPS, minutes - 1)}")
    part = max(len(samples) // 6, 1)
    for name in samples[0]:
        first, last = (statistics.median(s[name] for s in half) for half in (samples[:part], samples[-part:]))
        limit = "–" if name.startswith("PSS") else 1.05
        print(f"{name}: last sixth against the first ({first:.0f} → {last:.0f})\t{last / first:.3f}\t{limit}")


def full_size_run(viewer, folder):
    card = os.path.join(folder, "card")
    os.mkdir(card)
    made = make_clip(folder, "mp4", "1920x1080", 60, rate=30)
    os.rename(made, os.path.join(card, "REC_2013_04_05_12_00_00.mp4"))
    samples, seen = play(viewer, folder, card, 30, 1)
    if not seen:
        raise SystemExit("no clip was played")
    for name in samples[0]:
        limit = 450 if name.startswith("PSS of all") else "–"
        print(f"{name}, 1080p, highest of {len(samples)}\t{max(s[name] for s in samples):.0f}\t{limit}")


def main():
    viewer, what = sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else "60"
    with tempfile.TemporaryDirectory() as folder:
        if what == "1080p":
            full_size_run(viewer, folder)
        else:
            long_run(viewer, folder, int(what))


main()
