// Fetches tile pictures from an untrusted server: reads no more bytes than a tile may have, follows no redirect, and
// decodes a picture only if its header declares a tile's size. The server has to allow scripts of other origins to
// read its tiles (CORS), as servers of web maps do.
"use strict";

const TilePictures = (function () {
    const waitMs = 8000;            // a tile that takes longer has failed

    function startsWith(bytes, text, at) {
        return Array.from(text).every((letter, i) => bytes.getUint8(at + i) === letter.charCodeAt(0));
    }

    function pngSize(bytes) {
        return [bytes.getUint32(16), bytes.getUint32(20)];
    }

    // From the frame header, after segments that contain their length.
    function jpegSize(bytes) {
        for (let at = 2;; at += 2 + bytes.getUint16(at + 2)) {
            const marker = bytes.getUint16(at);
            if (marker < 0xffc0 || marker === 0xffff)
                throw new Error("no segment");
            if (marker <= 0xffcf && ![0xffc4, 0xffc8, 0xffcc].includes(marker))
                return [bytes.getUint16(at + 7), bytes.getUint16(at + 5)];
        }
    }

    function webpSize(bytes) {
        if (startsWith(bytes, "VP8 ", 12))
            return [bytes.getUint16(26, true) & 0x3fff, bytes.getUint16(28, true) & 0x3fff];
        if (startsWith(bytes, "VP8L", 12))
            return [(bytes.getUint32(21, true) & 0x3fff) + 1, (bytes.getUint32(21, true) >> 14 & 0x3fff) + 1];
        if (startsWith(bytes, "VP8X", 12))
            return [(bytes.getUint32(24, true) & 0xffffff) + 1, (bytes.getUint32(27, true) & 0xffffff) + 1];
        throw new Error("no picture");
    }

    // Throws if the header is incomplete or unknown.
    function sizeOf(bytes) {
        if (startsWith(bytes, "\x89PNG\r\n\x1a\n", 0) && startsWith(bytes, "IHDR", 12))
            return pngSize(bytes);
        if (startsWith(bytes, "\xff\xd8", 0))
            return jpegSize(bytes);
        if (startsWith(bytes, "RIFF", 0) && startsWith(bytes, "WEBP", 8))
            return webpSize(bytes);
        throw new Error("no picture");
    }

    async function readUpTo(most, answer) {
        const reader = answer.body.getReader(), parts = [];
        let count = 0;
        for (let part = await reader.read(); !part.done; part = await reader.read()) {
            count += part.value.length;
            if (count > most)
                throw new Error("too long");
            parts.push(part.value);
        }
        return new Blob(parts);
    }

    async function decode(file, sides) {
        const size = sizeOf(new DataView(await file.arrayBuffer()));
        if (!size.every(side => sides.includes(side)))
            throw new Error("no tile");
        const picture = await createImageBitmap(file);
        if (picture.width === size[0] && picture.height === size[1])
            return picture;
        picture.close();
        throw new Error("not as its header says");
    }

    // The decoded picture at an address; the caller closes it. Rejects when `stop` (an AbortController) is aborted.
    async function take(address, limits, stop) {
        const patience = setTimeout(() => stop.abort(), waitMs);
        try {
            const answer = await fetch(address, {
                signal: stop.signal, redirect: "error", credentials: "omit", referrerPolicy: "no-referrer"
            });
            if (!answer.ok)
                throw new Error("no tile");
            return await decode(await readUpTo(limits.bytes, answer), limits.sides);
        } finally {
            clearTimeout(patience);
            stop.abort();           // cancels the rest of an unwanted answer
        }
    }

    return {take};
})();
