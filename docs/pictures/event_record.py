#!/usr/bin/env python3
"""Draws the event records of include/velta/event.h, with the offsets that its assertions state.

usage: event_record.py [--check]      writes event_record.svg, or tells whether it is as it would be written
"""
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
HEADER = HERE.parents[1] / "include/velta/event.h"
PICTURE = HERE / "event_record.svg"

ROW, WIDTH, LEFT, TOP = 22, 300, 70, 34
STYLE = """
  svg { background: #ffffff; color: #1c2733; font: 13px sans-serif }
  .box { fill: none; stroke: #5b6b7b }
  .used { fill: #e8f0fa } .unused { fill: #f3f3f3 }
  .title { font-weight: bold } .offset, .length { fill: #5b6b7b; font-size: 12px }
  text { fill: #1c2733 } .faint { fill: #8a94a0 }
  .arrow { fill: none; stroke: #2f6fb7; stroke-width: 1.5; marker-end: url(#head) } #head path { fill: #2f6fb7 }
  @media (prefers-color-scheme: dark) {
    svg { background: #14191f } text { fill: #dde4ec } .faint, .offset, .length { fill: #93a1b0 }
    .box { stroke: #71808f } .used { fill: #1d3350 } .unused { fill: #20262d }
    .arrow { stroke: #7fb2ea } #head path { fill: #7fb2ea }
  }
"""


def fields(header, record):
    """(name, offset, length) of each field; the reserved ones between them are what no assertion names."""
    at = [(int(offset), name) for name, offset in
          re.findall(rf"VELTA_ASSERT_AT\({record}, (\w+), (\d+)\);", header)]
    size = int(re.search(rf"VELTA_ASSERT_SIZE\({record}, (\d+)\);", header)[1])
    body = re.search(rf"typedef struct {record} \{{(.*?)\}} {record};", header, re.S)[1]
    body = re.sub(r"/\*.*?\*/", "", body, flags=re.S)
    lengths = {"uint64_t": 8, "uint32_t": 4, "int32_t": 4, "uint8_t": 1, "char": 1}
    found, offset = [], 0
    for kind, star, name, count in re.findall(r"(\w+)\s*(\*?)\s*(\w+)(?:\[(\d+)\])?;", body):
        one = 8 if star else lengths[kind]
        offset = -(-offset // one) * one
        if (stated := dict((n, o) for o, n in at).get(name, offset)) != offset:
            sys.exit(f"{record}.{name}: the header says {stated}, not {offset}")
        found.append((name, offset, one * int(count or 1)))
        offset += one * int(count or 1)
    if offset > size or size - offset >= 8:
        sys.exit(f"{record}: {offset} bytes of fields in {size}")
    return found, size


def box(record, x, y, header):
    rows, size = fields(header, record)
    out = [f'<text class="title" x="{x}" y="{y - 10}">{record}, {size} bytes</text>']
    places = {}
    for number, (name, offset, length) in enumerate(rows):
        top = y + number * ROW
        unused = name.startswith("reserved")
        places[name] = top + ROW / 2
        out += [
            f'<rect class="box {"unused" if unused else "used"}" x="{x}" y="{top}" width="{WIDTH}" height="{ROW}"/>',
            f'<text class="offset" x="{x - 8}" y="{top + 16}" text-anchor="end">{offset}</text>',
            f'<text class="{"faint" if unused else "name"}" x="{x + 8}" y="{top + 16}">{name}</text>',
            f'<text class="length" x="{x + WIDTH - 8}" y="{top + 16}" text-anchor="end">{length}</text>']
    return out, places, y + len(rows) * ROW


def picture(header):
    base, _, bottom = box("tagEVENT_BASE_INFO", LEFT, TOP, header)
    right = LEFT + WIDTH + 110
    info, info_at, below = box("tagEVENT_EXT_INFO", right, TOP, header)
    item, item_at, last = box("tagEVENT_EXT_ITEM", right, below + 60, header)
    text = last + 60
    part = ["boundary line and MIME headers", "an empty line", "the JPEG, Content-Length bytes",
            "what the stream had behind it, if anything", "a zero byte, not counted in length"]
    data = [f'<text class="title" x="{right}" y="{text - 10}">data: a picture as it came</text>']
    for number, line in enumerate(part):
        top = text + number * ROW
        data += [f'<rect class="box used" x="{right}" y="{top}" width="{WIDTH}" height="{ROW}"/>',
                 f'<text x="{right + 8}" y="{top + 16}">{line}</text>']
    edge = right + WIDTH
    data += [f'<path class="arrow" d="M{edge} {a} h28 V{b} h-24"/>' for a, b in
             ((info_at["items"], below + 60 + ROW / 2), (item_at["data"], text + ROW / 2))]
    width, height = edge + 50, max(bottom, text + len(part) * ROW) + 20
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
             f'height="{height}" role="img">',
             "<title>Offsets and lengths in bytes of the event records</title>",
             f"<style>{STYLE}</style>",
             '<defs><marker id="head" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="7" markerHeight="7" '
             'orient="auto"><path d="M0 0 L8 4 L0 8 z"/></marker></defs>']
    return "\n".join(lines + base + info + item + data + ["</svg>", ""])


def main():
    drawn = picture(HEADER.read_text())
    if sys.argv[1:] != ["--check"]:
        PICTURE.write_text(drawn)
    elif not PICTURE.exists() or PICTURE.read_text() != drawn:
        sys.exit(f"{PICTURE}: not what the header says; run {__file__}")


if __name__ == "__main__":
    main()
