#!/usr/bin/env python3
"""Playback against mpv and gst-play: CPU time of playing, time to the first picture, time of exact seeks.

usage: playback.py DRIVER [REPEATS]      (0 leaves out the playing)

Everything runs in the same X server without a GPU, one after the other, several times; medians are compared. CPU time
is that of the whole process tree.
"""
import json, os, random, resource, socket, statistics, subprocess, sys, tempfile, time

FF = "ffmpeg -loglevel error -nostdin -y -fflags +bitexact".split()
# Like a camera's encoder: CABAC, deblocking, a keyframe per second, no B-frames.
X264 = "-c:v libx264 -preset veryfast -profile:v main -pix_fmt yuv420p -g 30 -keyint_min 30 -sc_threshold 0 -bf 0".split()
SOUND = "-f lavfi -i sine=frequency=440:sample_rate=32000:duration={d}"
AAC = "-c:a aac -b:a 64k -ac 1".split()


def make_clip(folder, streams, seconds=20):
    path = os.path.join(folder, f"{streams}.mp4")
    noise = ",noise=alls=6:allf=t"  # raises the bit rate to a camera's
    pictures = [f"testsrc2=s=1920x1080:r=30:d={seconds}{noise}", f"testsrc=s=1920x1080:r=30:d={seconds}{noise}"]
    inputs = [word for p in pictures[:streams] for word in ("-f", "lavfi", "-i", p)]
    inputs += SOUND.format(d=seconds).split()
    maps = [word for i in range(streams + 1) for word in ("-map", str(i))]
    subprocess.run(FF + inputs + maps + X264 + ["-b:v", "12M"] + AAC + ["-movflags", "+faststart", path], check=True)
    return path


def cpu_seconds(command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


MPV = ["mpv", "--no-config", "--vo=x11", "--hwdec=no", "--ao=null", "--really-quiet", "--osc=no"]


def play_commands(driver, clip, streams):
    geometry = "1280x360" if streams == 2 else "640x360"
    beside = ["--lavfi-complex=[vid1][vid2]hstack[vo]"] if streams == 2 else []
    commands = {
        "here": [driver, "play", clip],
        "mpv": MPV + [f"--geometry={geometry}", "--autofit=" + geometry] + beside + [clip],
    }
    if streams == 1:
        sink = "videoconvertscale ! video/x-raw,width=640,height=360 ! ximagesink"
        commands["gst-play"] = ["gst-play-1.0", "--quiet", "--no-interactive", f"--videosink={sink}", clip]
    return commands


class Mpv:
    """A warm mpv, driven over its socket."""

    def __init__(self, folder):
        self.path = os.path.join(folder, "mpv.sock")
        self.process = subprocess.Popen(
            MPV + ["--idle", "--pause", "--force-window", "--geometry=640x360", "--autofit=640x360", "--keep-open",
                   f"--input-ipc-server={self.path}"], stdin=subprocess.DEVNULL)
        self.socket = socket.socket(socket.AF_UNIX)
        for _ in range(100):
            try:
                self.socket.connect(self.path)
                break
            except OSError:
                time.sleep(0.05)
        self.lines = self.socket.makefile("r")

    def timed(self, *command, event="playback-restart"):
        """Milliseconds from the command to the event that reports its picture."""
        start = time.perf_counter()
        self.socket.sendall((json.dumps({"command": command}) + "\n").encode())
        while json.loads(self.lines.readline()).get("event") != event:
            pass
        return (time.perf_counter() - start) * 1000

    def stepped(self, command):
        """Milliseconds from a frame step to the new time reported with its picture."""
        self.socket.sendall(b'{"command":["observe_property",1,"time-pos"]}\n')
        while json.loads(self.lines.readline()).get("event") != "property-change":
            pass
        taken = self.timed(command, event="property-change")
        self.socket.sendall(b'{"command":["unobserve_property",1]}\n')
        return taken

    def quit(self):
        self.socket.sendall(b'{"command":["quit"]}\n')
        self.process.wait()


def driver_times(driver, mode, clip, numbers):
    out = subprocess.run([driver, mode, clip] + [str(n) for n in numbers], check=True, capture_output=True, text=True)
    return [float(line) for line in out.stdout.split()]


def row(name, here, peer, limit):
    print(f"{name}\t{here / peer:.2f}\t{limit or ''}\t{here:.1f}, {peer:.1f}", flush=True)


def play(driver, clips, repeats):
    for streams, limit in ((1, 1.0), (2, 0.9)):
        commands = play_commands(driver, clips[streams], streams)
        times = {name: [] for name in commands}
        for _ in range(repeats):
            for name, command in commands.items():
                times[name].append(cpu_seconds(command))
        median = {name: statistics.median(values) for name, values in times.items()}
        row(f"20 s of 1080p, {streams} stream(s), CPU s / mpv", median["here"], median["mpv"], limit)
        if "gst-play" in median:
            row("20 s of 1080p, CPU s / gst-play", median["here"], median["gst-play"], None)


def open_clip(driver, mpv, clip):
    opened = [mpv.timed("loadfile", clip) for _ in range(20)]
    here = driver_times(driver, "open", clip, [21])[1:]
    row("open to the first picture, ms / mpv", statistics.median(here), statistics.median(opened), 0.7)


def decoding_ms(clip, *options):
    """Milliseconds that the decoder takes for a clip's frames on two threads, with no other work."""
    command = ["ffmpeg", "-hide_banner", "-nostdin", "-benchmark", "-threads", "2", *options, "-i", clip, "-map", "0:v",
               "-f", "null", "-"]
    words = subprocess.run(command, check=True, capture_output=True, text=True).stderr.split()
    return 1000 * float(next(word for word in words if word.startswith("rtime="))[6:-1])


def seek_floor(clip, positions, rate=30, seconds=20):
    """Milliseconds of decoding to the frame of each position from the keyframe before it, one per second."""
    keys = statistics.median(decoding_ms(clip, "-skip_frame", "nokey") for _ in range(5))
    every = statistics.median(decoding_ms(clip) for _ in range(5))
    key, other = keys / seconds, (every - keys) / (seconds * (rate - 1))
    return [key + ms % 1000 * rate // 1000 * other for ms in positions]


def seek(driver, mpv, clip, seeded):
    positions = [seeded.randrange(0, 9500) + 10000 * (i % 2) for i in range(40)]  # never the frame just shown
    sought = [mpv.timed("seek", ms / 1000, "absolute+exact") for ms in positions]
    here = driver_times(driver, "seek", clip, positions)
    floor = seek_floor(clip, positions)
    row("exact seek while paused, ms / mpv", statistics.median(here), statistics.median(sought), 0.8)
    row("the decoding alone of such a seek, ms / mpv", statistics.median(floor), statistics.median(sought), None)


def step(driver, mpv, clip, seeded):
    """Ten steps from each of six positions, in both directions; the seek to the position isn't counted."""
    for sign, name, command, limit in ((1, "forward", "frame-step", 1.0), (-1, "back", "frame-back-step", 0.4)):
        ours, theirs, numbers = [], [], []
        for _ in range(6):
            place = seeded.randrange(3000, 17000)
            numbers += [place] + [sign] * 10
            mpv.timed("seek", place / 1000, "absolute+exact")
            theirs += [mpv.stepped(command) for _ in range(10)]
        times = driver_times(driver, "step", clip, numbers)
        ours = [ms for ms, number in zip(times, numbers) if number == sign]
        row(f"step {name}, ms / mpv", statistics.median(ours), statistics.median(theirs), limit)


def main():
    driver, repeats = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 5
    with tempfile.TemporaryDirectory() as folder:
        clips = {n: make_clip(folder, n) for n in (1, 2)}
        if repeats:
            play(driver, clips, repeats)
        mpv = Mpv(folder)
        mpv.timed("loadfile", clips[1])
        open_clip(driver, mpv, clips[1])
        seeded = random.Random(5)
        seek(driver, mpv, clips[1], seeded)
        step(driver, mpv, clips[1], seeded)
        mpv.quit()


main()
