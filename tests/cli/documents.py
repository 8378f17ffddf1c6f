"""Small sources for the tests, and plain readers for small pictures."""

import re
import struct
import zlib


def pdf(objects, root, trailer=""):
    """A PDF of these objects, the first of which has number 1."""
    file = b"%PDF-1.7\n"
    table = ""
    for number, body in enumerate(objects, 1):
        table += f"{len(file):010} 00000 n \n"
        file += f"{number} 0 obj\n".encode() + body + b"\nendobj\n"
    size = len(objects) + 1
    return file + (f"xref\n0 {size}\n0000000000 65535 f \n{table}trailer\n<< /Size {size} "
                   f"/Root {root} 0 R {trailer} >>\nstartxref\n{len(file)}\n%%EOF\n").encode()


def stream(content, entries=""):
    content = content.encode() if isinstance(content, str) else content
    return f"<< {entries} /Length {len(content)} >>\nstream\n".encode() + content + b"\nendstream"


def letter(page_count=3, width=300, height=200):
    """Pages of text in 12 points that say "SECRET 1", "SECRET 2", ... and a document that says it
    in every other place where a PDF can: information, metadata, attachment, annotation, outline."""
    objects = [
        b"<< /Type /Catalog /Pages 2 0 R /Metadata 4 0 R /Names << /EmbeddedFiles << /Names "
        b"[(SECRET.txt) 5 0 R] >> >> /Outlines 7 0 R >>",
        None,
        b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
        stream("<x:xmpmeta xmlns:x='adobe:ns:meta/'>SECRET</x:xmpmeta>",
               "/Type /Metadata /Subtype /XML"),
        b"<< /Type /Filespec /F (SECRET.txt) /EF << /F 6 0 R >> >>",
        stream("SECRET", "/Type /EmbeddedFile"),
        b"<< /Type /Outlines /First 8 0 R /Last 8 0 R /Count 1 >>",
        b"<< /Title (SECRET) /Parent 7 0 R >>",
        b"<< /Title (SECRET) /Author (SECRET) >>",
    ]
    kids = []
    for page in range(1, page_count + 1):
        lines = "".join(f"1 0 0 1 20 {height - 24 * line} Tm (SECRET {page}, line {line}) Tj "
                        for line in range(1, height // 24))
        objects.append(stream(f"BT /F 12 Tf {lines} ET"))
        objects.append(f"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 {width} {height}] "
                       f"/Contents {len(objects)} 0 R /Resources << /Font << /F 3 0 R >> >> "
                       f"/Annots [<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Border [0 0 0] "
                       f"/A << /S /URI /URI (http://SECRET) >> >>] >>".encode())
        kids.append(f"{len(objects)} 0 R")
    objects[1] = (f"<< /Type /Pages /Count {page_count} /Kids [{' '.join(kids)}] >>").encode()
    return pdf(objects, 1, "/Info 9 0 R")


def png(width, height, pixel, chunks=()):
    """An 8-bit RGB picture; `pixel` maps (x, y) to (r, g, b); more chunks as (name, bytes)."""
    def chunk(name, data):
        return (struct.pack(">I", len(data)) + name + data
                + struct.pack(">I", zlib.crc32(name + data)))

    rows = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width))
                    for y in range(height))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + b"".join(chunk(name, data) for name, data in chunks)
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def bmp(width, height, pixel):
    """A 24-bit picture, rows from the bottom up."""
    padding = b"\0" * (-3 * width % 4)
    rows = b"".join(b"".join(bytes(reversed(pixel(x, y))) for x in range(width)) + padding
                    for y in reversed(range(height)))
    return (struct.pack("<2sIHHI", b"BM", 54 + len(rows), 0, 0, 54)
            + struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(rows), 0, 0, 0, 0) + rows)


class Picture:
    """Rows of (r, g, b)."""

    def __init__(self, width, height, rgb):
        self.width, self.height = width, height
        self.rows = [[tuple(rgb[3 * (y * width + x):3 * (y * width + x) + 3])
                      for x in range(width)] for y in range(height)]

    def inside(self, x, y, width, height):
        return [pixel for row in self.rows[y:y + height] for pixel in row[x:x + width]]

    def outside(self, x, y, width, height):
        return [pixel for j, row in enumerate(self.rows) for i, pixel in enumerate(row)
                if not (x <= i < x + width and y <= j < y + height)]


def read_netpbm(data):
    """P4, P5 and P6 with 8 bits, as the PDF tools write them."""
    kind, width, height = re.match(rb"(P[456])\s+(\d+)\s+(\d+)\s", data).groups()
    width, height = int(width), int(height)
    if kind == b"P4":
        stride = (width + 7) // 8
        body = data[len(data) - stride * height:]
        bits = ((body[y * stride + x // 8] >> (7 - x % 8)) & 1
                for y in range(height) for x in range(width))
        return Picture(width, height, b"".join(b"\0\0\0" if bit else b"\xff\xff\xff" for bit in bits))
    samples = 3 if kind == b"P6" else 1
    body = data[len(data) - samples * width * height:]
    return Picture(width, height, body if samples == 3 else bytes(v for b in body for v in (b, b, b)))


def read_png(data):
    """8 bits, grey, RGB or RGBA, not interlaced, by the definition of the format."""
    position, compressed = 8, b""
    while position < len(data):
        length, name = struct.unpack(">I4s", data[position:position + 8])
        body = data[position + 8:position + 8 + length]
        if name == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
        elif name == b"IDAT":
            compressed += body
        position += 12 + length
    assert depth == 8, depth
    samples = {0: 1, 2: 3, 6: 4}[colour]
    raw, stride = zlib.decompress(compressed), samples * width
    above, rgb = bytes(stride), bytearray()
    for y in range(height):
        kind, row = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = row[i - samples] if i >= samples else 0
            b, c = above[i], above[i - samples] if i >= samples else 0
            nearest = min((abs(b - c), 0, a), (abs(a - c), 1, b), (abs(a + b - 2 * c), 2, c))[2]
            row[i] = (row[i] + (0, a, b, (a + b) // 2, nearest)[kind]) & 255
        for x in range(width):
            pixel = row[x * samples:(x + 1) * samples]
            rgb += pixel[:3] if samples >= 3 else pixel * 3
        above = bytes(row)
    return Picture(width, height, bytes(rgb))
