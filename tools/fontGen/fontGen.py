#!/usr/bin/env python3
"""Writes data/font/inter.font: the outlines that gui/fontData.cpp reads.

    tools/fontGen/fontGen.py FOLDER_WITH_INTER_OTF data/font/inter.font

Needs fontTools and Inter as OpenType files (Debian: python3-fonttools, fonts-inter). Ordinary builds
need neither. gui/fontData.h describes the file.
"""
import struct
import sys
import unicodedata

from fontTools.pens.recordingPen import DecomposingRecordingPen
from fontTools.ttLib import TTFont

UNITS_PER_EM = 1408  # half of the source's: 0.03 pixels at the largest text
WEIGHTS = ("Inter-Medium.otf", "Inter-SemiBold.otf")
BOX = 0xFFFD
TABULAR_ZERO = 0xE000  # private use: the ten digits of equal width
PUNCTUATION = "–—‘’‚“”„†‡•…‰‹›⁄€™←↑→↓↔↕−∞≈≠≤≥▲▼◀▶●○■□✓✗♯♭Ω∆∑√◆⌘⇧⌥"
LEAST_KERNING = 8  # of UNITS_PER_EM; smaller ones move nothing that can be seen


def characters():
    printable = [*range(0x20, 0x7F), *range(0xA0, 0x180)]
    return sorted({*printable, *map(ord, PUNCTUATION)})


def scaled(value, font):
    return round(value * UNITS_PER_EM / font["head"].unitsPerEm)


def varint(value):
    zigzag = value * 2 if value >= 0 else -value * 2 - 1
    out = bytearray()
    while zigzag >= 0x80:
        out.append(zigzag & 0x7F | 0x80)
        zigzag >>= 7
    out.append(zigzag)
    return bytes(out)


def encode(commands):
    """Runs of one verb: its number (0 end, 1 move, 2 line, 3 cubic), a count, then differences."""
    out = bytearray()
    at = (0, 0)
    i = 0
    while i < len(commands):
        verb = commands[i][0]
        run = i
        while run < len(commands) and commands[run][0] == verb and run - i < 63:
            run += 1
        out.append(verb << 6 | (run - i))
        for _, points in commands[i:run]:
            for point in points:
                out += varint(point[0] - at[0]) + varint(point[1] - at[1])
                at = point
        i = run
    out.append(0)
    return bytes(out)


def outline(font, glyphs, name):
    pen = DecomposingRecordingPen(glyphs)
    glyphs[name].draw(pen)
    verbs = {"moveTo": 1, "lineTo": 2, "curveTo": 3}
    return encode([(verbs[verb], [tuple(scaled(v, font) for v in p) for p in points])
                   for verb, points in pen.value if verb in verbs])


def box():
    def frame(left, bottom, right, top):
        return [(1, [(left, bottom)]), (2, [(right, bottom)]), (2, [(right, top)]), (2, [(left, top)])]

    outer = frame(90, 0, 760, 1024)
    inner = frame(190, 100, 660, 924)
    inner[1], inner[3] = inner[3], inner[1]
    return encode(outer + inner), 850


def substitutions(font, tag):
    """What the single substitutions of a feature replace."""
    table = font["GSUB"].table
    found = {}
    for record in table.FeatureList.FeatureRecord:
        if record.FeatureTag != tag:
            continue
        for index in record.Feature.LookupListIndex:
            for sub in table.LookupList.Lookup[index].SubTable:
                sub = getattr(sub, "ExtSubTable", sub)
                found.update(getattr(sub, "mapping", {}))
    return found


def kerning(font, names):
    """{(left name, right name): units}, the first sub-table that knows the pair deciding."""
    table = font["GPOS"].table
    lookups = {i for record in table.FeatureList.FeatureRecord if record.FeatureTag == "kern"
               for i in record.Feature.LookupListIndex}
    pairs = {}
    for index in sorted(lookups):
        subtables = [getattr(s, "ExtSubTable", s) for s in table.LookupList.Lookup[index].SubTable]
        for left in names:
            for right in names:
                for sub in subtables:
                    value = pairValue(sub, left, right)
                    if value is not None:
                        pairs[left, right] = value
                        break
    return pairs


def pairValue(sub, left, right):
    if left not in sub.Coverage.glyphs:
        return None
    if sub.Format == 1:
        for record in sub.PairSet[sub.Coverage.glyphs.index(left)].PairValueRecord:
            if record.SecondGlyph == right:
                return advanceOf(record.Value1)
        return None
    first = sub.ClassDef1.classDefs.get(left, 0)
    second = sub.ClassDef2.classDefs.get(right, 0)
    return advanceOf(sub.Class1Record[first].Class2Record[second].Value1)


def advanceOf(value):
    return getattr(value, "XAdvance", 0) or 0 if value else 0


def kernBase(code):
    """The character whose kerning another shares: accents change nothing here."""
    base = ord(unicodedata.normalize("NFD", chr(code))[0])
    return base if base < 0x7F else code if code in map(ord, "–—‘’“”…") else 0


def weightBlock(path):
    font = TTFont(path)
    glyphs = font.getGlyphSet()
    cmap = font.getBestCmap()
    tabular = substitutions(font, "tnum")
    rows = []  # code, advance, kerning character, outline
    for code in characters():
        if code in cmap:
            name = cmap[code]
            rows.append((code, scaled(glyphs[name].width, font), kernBase(code),
                         outline(font, glyphs, name)))
    digits = [tabular[cmap[0x30 + digit]] for digit in range(10)]
    for digit, name in enumerate(digits):
        # The source's widths differ by a unit here and there.
        rows.append((TABULAR_ZERO + digit, scaled(glyphs[digits[0]].width, font), 0,
                     outline(font, glyphs, name)))
    boxOutline, boxAdvance = box()
    rows.append((BOX, boxAdvance, 0, boxOutline))

    kernCodes = sorted({row[2] for row in rows if row[2] and row[2] in cmap})
    named = {cmap[code]: code for code in kernCodes}
    pairs = [(named[l], named[r], scaled(v, font)) for (l, r), v in kerning(font, list(named)).items()]
    pairs = sorted(p for p in pairs if abs(p[2]) >= LEAST_KERNING)

    os2, hhea = font["OS/2"], font["hhea"]
    metrics = [scaled(v, font) for v in (hhea.ascent, hhea.descent, os2.sCapHeight, os2.sxHeight)]
    out = struct.pack("<4h2H", *metrics, len(rows), len(pairs))
    offset = 0
    for code, advance, kern, data in rows:
        out += struct.pack("<3HI", code, advance, kern, offset)
        offset += len(data)
    for pair in pairs:
        out += struct.pack("<2Hh", *pair)
    return out + b"".join(row[3] for row in rows)


def main():
    folder, target = sys.argv[1:]
    blocks = [weightBlock(f"{folder}/{name}") for name in WEIGHTS]
    data = struct.pack("<8s2H", b"TolmFont", UNITS_PER_EM, len(blocks))
    for block in blocks:
        data += struct.pack("<I", len(block))
    with open(target, "wb") as file:
        file.write(data + b"".join(blocks))
    print(f"{target}: {len(data) + sum(map(len, blocks))} bytes")


if __name__ == "__main__":
    main()
