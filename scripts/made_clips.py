"""Makes clips with the muxers of ffmpeg and GStreamer; adds a track of camera motion records (CAMM) to MP4 clips."""
import os, pathlib, struct, subprocess

RECORDS = 50  # per second
VIDEO = "-c:v libx264 -preset veryfast -g 30 -bf 0 -pix_fmt yuv420p -c:a aac -b:a 64k"
MOTION_JPEG = "-c:v mjpeg -q:v 5 -huffman default -pix_fmt yuvj420p -c:a pcm_s16le"


def run(command, **options):
    return subprocess.run(command, check=True, stdin=subprocess.DEVNULL, **options)


def make(path, source, seed, seconds, videos, muxer):
    kind, made = path[-3:], path + ".made." + path[-3:]
    inputs = [f"{source}=s=320x180:r={15 if kind == 'avi' else 30}:d={seconds}"] * videos
    inputs.append(f"anoisesrc=r=32000:a=0.1:seed={seed}:d={seconds}")
    words = [word for each in inputs for word in ("-f", "lavfi", "-i", each)]
    words += [word for i in range(videos + 1) for word in ("-map", str(i))]
    words += ["-vf:v:1", "negate"] if videos > 1 else []
    run(["ffmpeg", "-v", "error", "-y", *words, *(MOTION_JPEG if kind == "avi" else VIDEO).split(), made])
    if muxer == "GStreamer":
        demuxer, parser, sound = ("avidemux", "jpegparse", "queue") if kind == "avi" else \
            ("qtdemux", "h264parse", "aacparse")
        tracks = " ".join(f"d.video_{i} ! queue ! {parser} ! m.video_{i}" for i in range(videos))
        run(f"gst-launch-1.0 -q filesrc location={made} ! {demuxer} name=d {kind}mux name=m"
            f" ! filesink location={path} {tracks} d.audio_0 ! queue ! {sound} ! m.audio_0".split())
        os.remove(made)
    else:
        os.rename(made, path)


def boxes(data, start, end):
    while start + 8 <= end:
        size, kind = struct.unpack(">I4s", data[start:start + 8])
        size, head = (int.from_bytes(data[start + 8:start + 16], "big"), 16) if size == 1 else (size, 8)
        yield kind, start, start + head, start + size
        start += size


def box(kind, *parts):
    body = b"".join(parts)
    return struct.pack(">I4s", len(body) + 8, kind) + body


def table(kind, entry, *entries):
    return box(kind, struct.pack(">II", 0, len(entries)), *(struct.pack(entry, *each) for each in entries))


def motion_sample(i):
    fix = struct.pack("<HHdIdd7f", 0, 6, 1365165000 + i / RECORDS, 3, 37.5 + i * 1e-5, 127, 21, 3, 4, 20, 0, 0, 0)
    return struct.pack("<HHfff", 0, 3, i / 100, 0.5, 9.8) + (fix if i % RECORDS == 0 else b"")


def motion_track(samples, offsets, number):
    chunks, firsts = zip(*offsets)
    counts = [b - a for a, b in zip(firsts, firsts[1:] + (len(samples),))]
    stbl = box(b"stbl", table(b"stsd", ">I4sIHH", (16, b"camm", 0, 0, 1)), table(b"stts", ">II", (len(samples), 20)),
               table(b"stsc", ">III", *((i + 1, count, 1) for i, count in enumerate(counts))),
               box(b"stsz", struct.pack(f">III{len(samples)}I", 0, 0, len(samples), *map(len, samples))),
               table(b"stco", ">I", *((chunk,) for chunk in chunks)))
    mdhd = box(b"mdhd", struct.pack(">5IHH", 0, 0, 0, 1000, len(samples) * 20, 0x55C4, 0))
    hdlr = box(b"hdlr", struct.pack(">II4s12xx", 0, 0, b"camm"))
    tkhd = box(b"tkhd", struct.pack(">6I60x", 7, 0, 0, number, 0, len(samples) * 20))
    return box(b"trak", tkhd, box(b"mdia", mdhd, hdlr, box(b"minf", stbl)))


def add_motion(path, seconds):
    """Puts records between the chunks of a clip whose index is last, and their track into the index."""
    data = bytearray(pathlib.Path(path).read_bytes())
    tops = {kind: place for kind, *place in boxes(data, 0, len(data))}
    holders, tables, tracks = [tops[b"moov"][1:]], [], 0
    for start, end in holders:
        for kind, at, body, stop in boxes(data, start, end):
            tracks += kind == b"trak"
            if kind in (b"trak", b"mdia", b"minf", b"stbl"):
                holders.append((body, stop))
            elif kind == b"stco":
                tables += range(body + 8, stop, 4)
    old = sorted({int.from_bytes(data[at:at + 4], "big") for at in tables})
    head, media, end = tops[b"mdat"]
    samples = [motion_sample(i) for i in range(seconds * RECORDS)]
    out, moved, offsets, done = bytearray(data[:old[0]]), {}, [], 0
    for i, (start, stop) in enumerate(zip(old, old[1:] + [end])):
        due = len(samples) * (i + 1) // len(old)
        if due > done:
            offsets.append((len(out), done))
            out += b"".join(samples[done:due])
        moved[start], done = len(out), due
        out += data[start:stop]
    where, wide = (head + 8, ">Q") if media - head == 16 else (head, ">I")
    struct.pack_into(wide, out, where, len(out) - head)
    for at in tables:
        struct.pack_into(">I", data, at, moved[int.from_bytes(data[at:at + 4], "big")])
    index, body, stop = tops[b"moov"]
    movie = box(b"moov", data[body:stop], motion_track(samples, offsets, tracks + 1))
    pathlib.Path(path).write_bytes(out + data[end:index] + movie + data[stop:])
