#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the seeds of the fuzz targets to fuzz/corpus/<target>/. They reach every branch that a target
chooses by its input, and every finding that was fixed; how a target reads its bytes is told by its source."""

import itertools
import pathlib
import struct
import zlib

CORPUS = pathlib.Path(__file__).parent / "corpus"


def seed(target, name, *parts):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(b"".join(bytes([part]) if isinstance(part, int) else part for part in parts))


def short(number):
    return struct.pack("<h", number)


def block(content):
    return struct.pack("<H", len(content)) + content


def small(number):
    """As Input::any_int() reads it."""
    return b"\x60" + short(number)


def extreme(index):
    return bytes([index])


# ---- Files -------------------------------------------------------------------------------------------

def sensor_files():
    coefficients = b"r_param=1.25 -0.5 0.25 0.125\n"
    for second in (0, 1):
        seed("sensor_files", f"good-{second}", second, block(b"name: lens\n"), coefficients)
    seed("sensor_files", "no-key", 0, block(b"name: lens\n"), b"k_param=1 2 3 4\n")
    seed("sensor_files", "no-numbers", 0, block(b"name: lens\n"), b"r_param")
    seed("sensor_files", "two-numbers", 0, block(b"name: lens\n"), b"r_param=nan 1e99")
    seed("sensor_files", "no-space", 0, block(b"lens"), coefficients)
    seed("sensor_files", "long-name", 0, block(b"name: " + b"lens" * 30), coefficients)
    seed("sensor_files", "upward-name", 0, block(b"name: ../../../lens"), coefficients)
    seed("sensor_files", "zero-bytes", 0, block(b"name: \0lens"), b"\0" + coefficients)
    seed("sensor_files", "key-at-limit", 0, block(b"name: lens"), b" " * 93 + coefficients)


def tga(width, height, depth, pixels):
    return struct.pack("<12xHHBx", width, height, depth) + pixels


def image_files():
    seed("image_files", "tga-rgb", 0, tga(3, 2, 24, bytes(range(18))))
    seed("image_files", "tga-rgba", 0, tga(2, 2, 32, bytes(range(16))))
    seed("image_files", "tga-short", 0, tga(5, 5, 24, b"\1\2"))
    seed("image_files", "tga-cut-header", 0, tga(5, 5, 24, b"")[:15])
    seed("image_files", "tga-huge", 0, tga(65535, 65535, 255, b"\1"))
    seed("image_files", "tga-empty", 0)
    seed("image_files", "rgb565", 1, 1, short(4), 0, bytes(range(8)))
    seed("image_files", "rgb565-short", 1, 1, short(9), 1, bytes(range(7)))
    seed("image_files", "rgb565-none", 1, 0, 0, 0, b"\1\2")
    seed("image_files", "rows-aligned", 2, 31, 4, 0, 1, short(7))
    seed("image_files", "rows-padded", 2, 36, 4, 1, 0, short(7))
    for kind, stripes in itertools.product((1, 2), (0, 1)):
        seed("image_files", f"pattern-{kind}-{stripes}", 3, 40, 9, 0, kind, 1, stripes)


def faces_json():
    size = struct.pack("<HH", 640 - 32, 480 - 32)
    points = ", ".join(f"[{100 + 3 * i}, {200 + i % 17}]" for i in range(68))
    texts = {
        "eyes": '{"faces": [{"eyes": [[200, 180], [260.5, 184]]}]}',
        "box": '{"faces": [{"box": [150, 120, 160, 200], "roll": -12.5}, {"box": [1, 2, 3, 4]}]}',
        "landmarks": '{"faces": [{"landmarks68": [' + points + "]}]}",
        "none": '{"faces": []}',
        "two-kinds": '{"faces": [{"eyes": [[1, 2], [3, 4]], "box": [1, 2, 3, 4]}]}',
        "far": '{"faces": [{"eyes": [[-5e5, 0], [1e6, 2]]}]}',
        "range": '{"faces": [{"box": [1e300, 1e-300, 99999999999999999999, 1e400]}]}',
        "types": '{"faces": [{"box": ["a", null, true, {}]}, [], 1]}',
        "nested": "[" * 2000,
        "cut": '{"faces": [{"eyes": [[200, 18',
        "escapes": '{"faces": [{"\\ud800\\u0000": 1, "\xff": 2}]}',
    }
    for name, text in texts.items():
        seed("faces_json", name, size, text.encode("latin-1"))


def y4m():
    def clip(header, frames, frame_line=b"FRAME\n"):
        return header + b"\n" + b"".join(frame_line + frame for frame in frames)

    frame = bytes(i * 7 & 255 for i in range(32 * 32 * 3 // 2))
    seed("y4m", "good", clip(b"YUV4MPEG2 W32 H32 F30:1 Ip A1:1 C420jpeg XCOLORRANGE=FULL", [frame, frame]))
    seed("y4m", "limited", clip(b"YUV4MPEG2 W32 H32 XCOLORRANGE=LIMITED", [frame], b"FRAME Ip XNOTE\n"))
    seed("y4m", "mono", clip(b"YUV4MPEG2 W32 H32 F0:0 Cmono", [frame[:1024]]))
    seed("y4m", "odd", clip(b"YUV4MPEG2 W33 H35 F1:x C420paldv", [bytes(33 * 35 + 2 * 17 * 18)]))
    seed("y4m", "cut-frame", clip(b"YUV4MPEG2 W32 H32", [frame[:100]]))
    seed("y4m", "cut-header", b"YUV4MPEG2 W32 H32")
    seed("y4m", "no-frame-line", clip(b"YUV4MPEG2 W32 H32", [frame], b"FRAMES\n"))
    seed("y4m", "joined", clip(b"YUV4MPEG2 W32 H32", [frame]), clip(b"YUV4MPEG2 W32 H32", [frame]))
    seed("y4m", "deep-samples", clip(b"YUV4MPEG2 W32 H32 C420p10", [frame]))
    seed("y4m", "numbers", clip(b"YUV4MPEG2 W2147483648 H-1 F-1:0 C X W H", []))
    seed("y4m", "product", clip(b"YUV4MPEG2 W2147483647 H2147483647", []))
    seed("y4m", "long-line", b"YUV4MPEG2 X" + b"a" * 4200)
    seed("y4m", "empty")


# ---- Pictures ----------------------------------------------------------------------------------------

def chunk(kind, content=b""):
    return (struct.pack(">I", len(content)) + kind + content +
            struct.pack(">I", zlib.crc32(kind + content)))


def png(width, height, *extra, tail=b""):
    head = chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
    rows = zlib.compress(b"".join(b"\0" + bytes(width) for _ in range(height)))
    return (b"\x89PNG\r\n\x1a\n" + head + b"".join(extra) + chunk(b"IDAT", rows) + chunk(b"IEND") + tail)


def segment(kind, content):
    return bytes([0xFF, kind]) + struct.pack(">H", len(content) + 2) + content


def exif(order):
    """A block with an orientation, a size and a thumbnail; `order` is struct's sign of it."""
    number = lambda kinds, *values: struct.pack(order + kinds, *values)
    return ((b"II" if order == "<" else b"MM") + number("HI", 42, 8) +
            number("HHHIHHHHIII", 2, 0x0112, 3, 1, 6, 0, 0x8769, 4, 1, 38, 56) +
            number("HHHIII", 1, 0xA002, 4, 1, 9, 0) +
            number("HHHIIHHIII", 2, 0x0201, 4, 1, 86, 0x0202, 4, 1, 4, 0) + b"thum")


XMP = b'<x xmlns:tiff="http://ns.adobe.com/tiff/1.0/" tiff:Orientation="6"/>'
IPTC = b"8BIM\4\4\0\0" + struct.pack(">I", 4) + b"\x1c\2x\0"


def jpeg(planes, step=1, metadata=b""):
    """A gray or 4:2:0 picture of one flat 16 x 16 square, without help of a library: every coefficient
    is zero. `step` is the first one of the quantisation."""
    areas = b"".join(bytes([i + 1, 0x22 if i == 0 and planes == 3 else 0x11, 0]) for i in range(planes))
    # One code of one bit each: a difference of nothing, and the end of a block.
    table = lambda slot: segment(0xC4, bytes([slot, 1] + 15 * [0] + [0]))
    scan = bytes([planes]) + b"".join(bytes([i + 1, 0]) for i in range(planes)) + b"\0\x3f\0"
    blocks = 6 if planes == 3 else 4
    bits = "0" * 2 * blocks
    bits += "1" * (-len(bits) % 8)
    data = bytes(int(bits[i:i + 8], 2) for i in range(0, len(bits), 8))
    return (b"\xff\xd8" + metadata + segment(0xDB, b"\0" + bytes([step] + [1] * 63)) +
            segment(0xC0, b"\x08" + struct.pack(">HH", 16, 16) + bytes([planes]) + areas) +
            table(0x00) + table(0x10) + segment(0xDA, scan) + data + b"\xff\xd9")


def picture_files():
    text = chunk(b"tEXt", b"Title\0flat")
    seed("picture_files", "png", png(32, 32))
    seed("picture_files", "png-text", png(32, 32, chunk(b"gAMA", struct.pack(">I", 45455)), text))
    seed("picture_files", "png-transparent", png(32, 32, chunk(b"tRNS", b"\0\1")))
    seed("picture_files", "png-checksum", png(32, 32, text[:-1] + b"\0"))
    seed("picture_files", "png-cut", png(32, 32, text)[:-14])
    seed("picture_files", "png-length", png(32, 32, struct.pack(">I", 0xFFFFFFFF) + b"tEXt"))
    seed("picture_files", "png-no-header", b"\x89PNG\r\n\x1a\n" + chunk(b"IEND"))
    seed("picture_files", "png-tail", png(32, 32, tail=bytes(20)))
    seed("picture_files", "png-chunk-behind-end", png(32, 32, tail=struct.pack(">I", 0x7FFFFFFF) + b"tEXt1234"))
    seed("picture_files", "jpeg-gray", jpeg(1))
    seed("picture_files", "jpeg-step-of-zero", jpeg(1, step=0))
    seed("picture_files", "jpeg-colour", jpeg(3))
    seed("picture_files", "jpeg-cut", jpeg(3)[:-4])
    seed("picture_files", "jpeg-header", jpeg(3)[:100])
    seed("picture_files", "neither", b"GIF89a")
    raw = lambda name, content: b"\n%s\n%8d\n%s\n" % (name, len(content), content.hex().encode())
    seed("picture_files", "png-exif", png(32, 32, chunk(b"eXIf", exif(">"))))
    seed("picture_files", "png-metadata",
         png(32, 32, chunk(b"zTXt", b"Raw profile type exif\0\0" + zlib.compress(raw(b"exif", exif("<")))),
             chunk(b"tEXt", b"Raw profile type iptc\0" + raw(b"iptc", IPTC)),
             chunk(b"iTXt", b"XML:com.adobe.xmp\0\0\0\0\0" + XMP),
             chunk(b"iCCP", b"profile\0\0" + zlib.compress(b"colours"))))
    seed("picture_files", "jpeg-metadata",
         jpeg(3, metadata=segment(0xE1, b"Exif\0\0" + exif("<")) +
              segment(0xE1, b"http://ns.adobe.com/xap/1.0/\0" + XMP) +
              segment(0xE2, b"ICC_PROFILE\0\1\1colours") + segment(0xED, b"Photoshop 3.0\0" + IPTC) +
              segment(0xFE, b"a comment")))


# ---- Geometry ----------------------------------------------------------------------------------------

def sp2yuvxs():
    def geometry(dst_stride, dst_height, src_stride, src_height, x, y, w, h, regular):
        return bytes([dst_stride, dst_height, src_stride + 20, src_height + 4, x + 8, y + 4, w + 20,
                      h + 2, regular])

    cases = {
        "regular": geometry(64, 20, 80, 20, 8, 2, 48, 16, 1),
        "narrow": geometry(32, 8, 40, 8, 0, 0, 5, 8, 0),
        "remainder": geometry(70, 9, 66, 9, 2, 1, 53, 7, 0),
        "one-row": geometry(48, 6, 32, 6, 0, 0, 32, 1, 0),
        "negative": geometry(16, 0, -16, -4, -8, -4, -20, -2, 0),
    }
    for unit, form in itertools.product(range(3), range(3)):
        guard = (unit + form) % 2
        for name, numbers in cases.items():
            row = bytes([unit, 3 * form, 2 * unit + 1])
            seed("sp2yuvxs", f"{name}-{unit}{form}", unit, form, guard, row, numbers)


# ---- Calls with GL -----------------------------------------------------------------------------------

def cache_file():
    for whole in (0, 1):
        seed("cache_file", f"own-{whole}", 1 - whole, 0, 0)
        seed("cache_file", f"own-cut-{whole}", 1 - whole, 0, 1, short(100))
        seed("cache_file", f"own-longer-{whole}", 1 - whole, 0, 1, short(8000))
        seed("cache_file", f"own-changed-{whole}", 1 - whole, 0, 0, short(0), 1, short(70), 9)
        seed("cache_file", f"empty-{whole}", 1 - whole, 1)
        seed("cache_file", f"three-bytes-{whole}", 1 - whole, 1, b"abc")
        seed("cache_file", f"format-only-{whole}", 1 - whole, 1, struct.pack("<I", 0x875F))
        seed("cache_file", f"text-{whole}", 1 - whole, 1, b"no program binary at all")
        seed("cache_file", f"seal-cut-{whole}", 1 - whole, 2, 1, short(20))
        seed("cache_file", f"seal-longer-{whole}", 1 - whole, 2, 1, short(100))
        seed("cache_file", f"seal-changed-{whole}", 1 - whole, 2, 0, short(40), 1)
        seed("cache_file", f"texts-changed-{whole}", 1 - whole, 2, 0, short(60), 1)
        seed("cache_file", f"seal-text-{whole}", 1 - whole, 3, b"vouches for all")


# The first byte of a record: its last two bits tell whether it is empty, the upper five how many numbers
# are changed after it. All of them are, after 255.
EMPTY, CLEAN = 0, 1
WORDS = 231
DIST, CHIN, LOC_X, LOC_Y, ROLL, RATIO = 32, 36, 19, 20, 23, 230
LEFT_EAR, RIGHT_EAR, LEFT_JAW, RIGHT_JAW = (2 + 3 * landmark for landmark in (68, 69, 70, 71))  # their x


def record(kind, changes=()):
    return bytes([kind + 8 * len(changes)]) + b"".join(bytes([at]) + value for at, value in changes)


RECORDS = {
    "none": b"\0",
    "clean": b"\1" + record(CLEAN),
    "empty": b"\1" + record(EMPTY),
    "wide": b"\1" + record(CLEAN, [(LEFT_EAR, small(-90)), (RIGHT_EAR, small(100)),
                                   (LEFT_JAW, small(-90)), (RIGHT_JAW, small(100))]),
    "extreme": b"\1\xff" + b"".join(extreme(i % 14) for i in range(WORDS)),
    "many": b"\x0c" + record(CLEAN) * 6 + record(CLEAN, [(DIST, extreme(13)), (ROLL, extreme(0))]) * 6,
    "ratio": b"\1" + record(CLEAN, [(RATIO, b"\xff" + struct.pack("<f", float("nan")))]),
    "edges": b"\2" + record(CLEAN, [(LOC_X, extreme(0)), (CHIN, extreme(13))]) +
             record(CLEAN, [(LOC_Y, extreme(13)), (DIST, extreme(0)), (CHIN, extreme(5))]),
}


def preview_records():
    for setup, call in itertools.product(range(6), range(8)):
        name, records = list(RECORDS.items())[(setup + call) % len(RECORDS)]
        # One call, its records, two numbers, the call's own number, then counts and levels.
        seed("preview_records", f"{setup}-call-{call}-{name}", setup, 0, records, small(3), small(7), call,
             small(1), small(40), small(20), 4)
    for name, records in RECORDS.items():
        seed("preview_records", f"whiten-{name}", 1, 0, records, small(3), small(7), 2, small(1), small(40),
             small(20), 4)
    seed("preview_records", "count-below-zero", 1, 0, RECORDS["clean"], small(3), small(7), 2, extreme(0),
         small(40), small(20), 4)


def capture_records():
    wide = (2, 3, 6)
    for setup, (name, records) in itertools.product(range(7), RECORDS.items()):
        if setup in wide and name in ("many", "none", "ratio"):
            continue  # takes long, and says no more than with a small capture
        seed("capture_records", f"{setup}-{name}", setup, records, small(1), small(40), small(20), 4, small(3))
    seed("capture_records", "levels", 0, RECORDS["clean"], small(1), extreme(0), extreme(13), 4, extreme(13))


def pipeline_calls():
    place = lambda x: b"\x40" + short(64 * x)
    face = place(24) + place(16) + place(40) + place(16) + b"\0"
    odd_face = place(24) + place(16) + place(40) + place(16) + b"\3" + b"\1\5" + b"\2\7" + b"\3\x08"
    calls = {
        "slim": b"\1" + face + b"\2\1\x32\1\0\1\0\1\1",
        "whiten": b"\1" + face + b"\2\1\0\1\x32\1\x14\1\1",
        "capture": b"\1" + face + b"\2\1\x32\1\x32\1\x14\1\2",
        "odd": b"\2" + face + odd_face + b"\2\1\x32\1\x32\1\x14\4\0",
        "range": b"\1" + face + b"\2\0\0\0\x0d\1\x14\1\0",
        "none": b"\0" + b"\2\1\x32\1\0\1\0\1\0",
        "rectify": b"\0\0" + small(7),
        "lens": b"\0\1" + place(1) + place(0) + place(0) + place(0),
    }
    for size, (name, call) in itertools.product(range(3), calls.items()):
        seed("pipeline_calls", f"{size}-{name}", size, size, 3 * size, (size + 1) % 3, size, 1, 0, 9, call, 0)
    for which, spoilt in itertools.product(range(2), range(5)):
        seed("pipeline_calls", f"spoilt-{which}-{spoilt}", 0, 2, 0, 2, 0, which, 0, spoilt, extreme(5), bytes(8),
             calls["slim"])


for target in (sensor_files, image_files, faces_json, y4m, picture_files, sp2yuvxs, cache_file,
               preview_records, capture_records, pipeline_calls):
    target()
