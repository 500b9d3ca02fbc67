#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes small fonts with chosen names, axes and defects for Morvane's tests.

Usage: make_test_fonts.py OUTPUT_FOLDER
Needs Debian's python3-fonttools (run with /usr/bin/python3).
"""
import os
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.ttLib.tables._c_m_a_p import CmapSubtable
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTCollection, TTFont, newTable


def square():
    pen = TTGlyphPen(None)
    pen.moveTo((100, 0))
    pen.lineTo((100, 700))
    pen.lineTo((500, 700))
    pen.lineTo((500, 0))
    pen.closePath()
    return pen.glyph()


def builder(names, axes=None):
    fb = FontBuilder(1000, isTTF=True)
    fb.setupGlyphOrder([".notdef", "A", "B"])
    fb.setupCharacterMap({0x41: "A", 0x42: "B"})
    fb.setupGlyf({".notdef": square(), "A": square(), "B": square()})
    fb.setupHorizontalMetrics({".notdef": (600, 100), "A": (600, 100), "B": (600, 100)})
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable(names)
    fb.setupOS2(sTypoAscender=800, sTypoDescender=-200, usWinAscent=800, usWinDescent=200)
    fb.setupPost()
    if axes:
        fb.setupFvar(axes, [])
        # FreeType honours fvar only beside glyph variations, even empty ones.
        gvar = newTable("gvar")
        gvar.version = 1
        gvar.reserved = 0
        gvar.variations = {name: [] for name in fb.font.getGlyphOrder()}
        fb.font["gvar"] = gvar
    return fb


def write_suitcase(path, sfnt_fonts):
    """A data-fork suitcase (.dfont): a resource fork holding 'sfnt' resources."""
    import struct
    data = b"".join(struct.pack(">I", len(font)) + font for font in sfnt_fonts)
    data_offset = 256
    references = b""
    position = 0
    for number, font in enumerate(sfnt_fonts):
        # id, no name, attributes 0 with a 3-byte data offset, handle
        references += struct.pack(">hHI", 128 + number, 0xFFFF, position) + b"\0\0\0\0"
        position += 4 + len(font)
    type_list = struct.pack(">H", 0) + b"sfnt" + struct.pack(">HH", len(sfnt_fonts) - 1, 2 + 8)
    map_header_length = 16 + 4 + 2 + 2 + 2 + 2
    type_list_offset = map_header_length
    name_list_offset = map_header_length + len(type_list) + len(references)
    map_offset = data_offset + len(data)
    map_length = name_list_offset
    header = struct.pack(">IIII", data_offset, map_offset, len(data), map_length)
    resource_map = header + b"\0" * 4 + b"\0" * 2 + b"\0" * 2
    resource_map += struct.pack(">HH", type_list_offset, name_list_offset) + type_list + references
    with open(path, "wb") as target:
        target.write(header + b"\0" * (data_offset - len(header)) + data + resource_map)


def png_square(size, rgba):
    """A solid square PNG, made without an imaging library."""
    import struct
    import zlib

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)
    rows = b"".join(b"\0" + bytes(rgba) * size for _ in range(size))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def empty_glyph():
    return TTGlyphPen(None).glyph()


def drawing_font(names, glyphs, cmap, widths=None):
    """A font of chosen glyphs (name -> glyph or None for blank), 600 units wide each
    unless `widths` says otherwise."""
    order = [".notdef"] + [name for name in glyphs if name != ".notdef"]
    fb = FontBuilder(1000, isTTF=True)
    fb.setupGlyphOrder(order)
    fb.setupCharacterMap(cmap)
    fb.setupGlyf({name: (glyphs.get(name) or empty_glyph()) if name != ".notdef" else square() for name in order})
    # Left side bearings as the outlines have them: HarfBuzz places outlines by them.
    glyf = fb.font["glyf"]
    fb.setupHorizontalMetrics({name: ((widths or {}).get(name, 600), getattr(glyf[name], "xMin", 0)) for name in order})
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable(names)
    fb.setupOS2(sTypoAscender=800, sTypoDescender=-200, usWinAscent=800, usWinDescent=200)
    fb.setupPost()
    return fb


def outline(points):
    pen = TTGlyphPen(None)
    pen.moveTo(points[0])
    for point in points[1:]:
        pen.lineTo(point)
    pen.closePath()
    return pen.glyph()


def drawing_fonts(out):
    # Claims to be DejaVu Sans but draws every character as a filled square: a preview
    # that shows the installed DejaVu Sans instead is drawing by name.
    printable = {code: ("space" if code == 0x20 else "box") for code in range(0x20, 0x7F)}
    fb = drawing_font({"familyName": "DejaVu Sans", "styleName": "Book", "fullName": "DejaVu Sans",
                       "psName": "DejaVuSans"}, {"box": square(), "space": None}, printable,
                      widths={"space": 300})  # proportional, as the family it borrows the name of
    fb.save(os.path.join(out, "Impostor.ttf"))

    # "f" and "i" as thin bars, and a standard ligature "f_i" as one wide bar.
    from fontTools.feaLib.builder import addOpenTypeFeaturesFromString
    fb = drawing_font({"familyName": "Ligature Test", "styleName": "Regular", "psName": "LigatureTest"},
                      {"f": outline([(100, 0), (100, 700), (200, 700), (200, 0)]),
                       "i": outline([(300, 0), (300, 500), (400, 500), (400, 0)]),
                       "f_i": outline([(50, 0), (50, 700), (550, 700), (550, 0)]),
                       "space": None},
                      {ord("f"): "f", ord("i"): "i", 0x20: "space"})
    # ss01 carries its own name, as fonts name their stylistic sets; ss02 gives none.
    addOpenTypeFeaturesFromString(fb.font, "feature liga { sub f i by f_i; } liga;\n"
                                           "feature smcp { sub i by f; } smcp;\n"
                                           "feature ss01 { featureNames { name \"Single-storey a\"; }; "
                                           "sub f by i; } ss01;\n"
                                           "feature ss02 { sub i by f; } ss02;\n")
    fb.save(os.path.join(out, "Ligature.ttf"))

    # Scripts only GPOS names (Greek, Cyrillic) beside one only GSUB names (Latin).
    fb = drawing_font({"familyName": "Scripts Test", "styleName": "Regular", "psName": "ScriptsTest"},
                      {"f": outline([(100, 0), (100, 700), (200, 700), (200, 0)]),
                       "i": outline([(300, 0), (300, 500), (400, 500), (400, 0)]), "space": None},
                      {ord("f"): "f", ord("i"): "i", 0x20: "space"})
    addOpenTypeFeaturesFromString(fb.font, "languagesystem latn dflt;\n"
                                           "feature liga { script latn; sub f i by f; } liga;\n"
                                           "feature kern { script grek; pos f i -20; script cyrl; pos i f -20; } kern;\n")
    fb.save(os.path.join(out, "Scripts.ttf"))

    # "A" only as a red PNG in one 64-pixel strike: no outline to draw.
    from fontTools.ttLib.tables.sbixGlyph import Glyph as SbixGlyph
    from fontTools.ttLib.tables.sbixStrike import Strike
    fb = drawing_font({"familyName": "Bitmap Test", "styleName": "Regular", "psName": "BitmapTest"},
                      {"A": None, "space": None}, {ord("A"): "A", 0x20: "space"})
    sbix = newTable("sbix")
    sbix.version = 1
    sbix.flags = 1
    strike = Strike(ppem=64, resolution=72)
    strike.glyphs["A"] = SbixGlyph(glyphName="A", graphicType="png ", imageData=png_square(48, (255, 0, 0, 255)),
                                   originOffsetX=0, originOffsetY=0)
    sbix.strikes = {64: strike}
    fb.font["sbix"] = sbix
    fb.save(os.path.join(out, "Bitmap.ttf"))

    # "A" as a blue square layer over nothing: colour comes from the palette.
    fb = drawing_font({"familyName": "Colour Test", "styleName": "Regular", "psName": "ColourTest"},
                      {"A": None, "layer": square()}, {ord("A"): "A"})
    fb.setupCOLR({"A": [("layer", 0)]})
    fb.setupCPAL([[(0.0, 0.0, 1.0, 1.0)]])
    fb.save(os.path.join(out, "Colour.ttf"))

    # PostScript (CFF) outlines, the other kind of OpenType file.
    from fontTools.pens.t2CharStringPen import T2CharStringPen
    pen = T2CharStringPen(600, None)
    pen.moveTo((100, 0))
    pen.lineTo((100, 700))
    pen.lineTo((500, 700))
    pen.lineTo((500, 0))
    pen.closePath()
    charstring = pen.getCharString()
    fb = FontBuilder(1000, isTTF=False)
    fb.setupGlyphOrder([".notdef", "A"])
    fb.setupCharacterMap({0x41: "A"})
    fb.setupCFF("PostScriptTest-Regular", {"FullName": "PostScript Test Regular"},
                {".notdef": charstring, "A": charstring}, {})
    fb.setupHorizontalMetrics({".notdef": (600, 100), "A": (600, 100)})
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable({"familyName": "PostScript Test", "styleName": "Regular", "fullName": "PostScript Test Regular",
                       "psName": "PostScriptTest-Regular"})
    fb.setupOS2(sTypoAscender=800, sTypoDescender=-200, usWinAscent=800, usWinDescent=200)
    fb.setupPost()
    fb.save(os.path.join(out, "Outlines.otf"))


def drop_names(font, name_ids):
    table = font["name"]
    table.names = [record for record in table.names if record.nameID not in name_ids]


def main(out):
    os.makedirs(out, exist_ok=True)

    # Names in every field, nothing unusual.
    builder({"familyName": "Morvane Test", "styleName": "Bold",
             "fullName": "Morvane Test Bold", "psName": "MorvaneTest-Bold"}).save(os.path.join(out, "Plain.ttf"))

    # No subfamily anywhere: the style falls back to Regular.
    fb = builder({"familyName": "No Style", "fullName": "No Style Full", "psName": "NoStyle"})
    drop_names(fb.font, {2, 17})
    fb.save(os.path.join(out, "NoStyle.ttf"))

    # No PostScript name and no full name.
    fb = builder({"familyName": "Nameless", "styleName": "Regular"})
    drop_names(fb.font, {4, 6})
    fb.save(os.path.join(out, "Nameless.ttf"))

    # Names only in Mac Roman records.
    fb = builder({"familyName": "Mac Only", "styleName": "Regular", "psName": "MacOnly"})
    table = fb.font["name"]
    table.names = []
    table.setName("Café Ñandú", 1, 1, 0, 0)
    table.setName("Regular", 2, 1, 0, 0)
    table.setName("Café Ñandú Regular", 4, 1, 0, 0)
    table.setName("CafeNandu-Regular", 6, 1, 0, 0)
    fb.save(os.path.join(out, "MacRoman.ttf"))

    # Three axes in this order; the middle one names a string the name table lacks.
    fb = builder({"familyName": "Axes Test", "styleName": "Regular", "fullName": "Axes Test Regular",
                  "psName": "AxesTest-Regular"},
                 axes=[("wght", 100, 400, 900, "Weight"), ("XTRA", 0, 50, 100, "Extra"),
                       ("opsz", 8, 12, 144, "Optical Size")])
    extra = [axis for axis in fb.font["fvar"].axes if axis.axisTag == "XTRA"][0]
    drop_names(fb.font, {extra.axisNameID})
    fb.save(os.path.join(out, "Axes.ttf"))

    # OS/2 classes out of their ranges, as some real fonts have them: none may vanish.
    for name, weight, width in (("Wide", 400, 500), ("Widthless", 400, 0), ("Heavy", 28926, 5)):
        fb = builder({"familyName": "Odd " + name, "styleName": "Regular", "psName": "Odd" + name})
        fb.font["OS/2"].usWeightClass = weight
        fb.font["OS/2"].usWidthClass = width
        fb.save(os.path.join(out, "Odd" + name + ".ttf"))

    # Han, kana and Hangul in one font, as the big CJK families have them, naming one,
    # several or none of the CJK code pages (OS/2 bits 17 Japanese, 18 Simplified
    # Chinese, 19 Korean, 20 Traditional Chinese): fontconfig keeps a CJK language to the
    # one named only when exactly one is.
    cjk = {}
    for first, last in ((0x20, 0x7E), (0x1100, 0x11FF), (0x3000, 0x31FF), (0x3400, 0x4DBF), (0x4E00, 0x9FFF),
                        (0xAC00, 0xD7A3), (0xF900, 0xFAFF), (0xFF00, 0xFFEF)):
        for code in range(first, last + 1):
            cjk[code] = "A"
    for name, bits in (("CjkJapanese", (17,)), ("CjkAll", (17, 18, 19, 20)), ("CjkKoreanChinese", (18, 19)),
                       ("CjkNone", ())):
        fb = builder({"familyName": name, "styleName": "Regular", "psName": name})
        # Only a format 12 table: format 4 can't hold 40,000 code points of one glyph.
        table = CmapSubtable.newSubtable(12)
        table.platformID, table.platEncID, table.language, table.cmap = 3, 10, 0, cjk
        fb.font["cmap"].tables = [table]
        fb.font["OS/2"].ulCodePageRange1 = sum(1 << bit for bit in bits)
        fb.save(os.path.join(out, name + ".ttf"))

    # A symbol font (a (3,0) map of U+F041, U+F042, as Wingdings has them) whose vendor
    # field is four NULs.
    fb = builder({"familyName": "Symbol Test", "styleName": "Regular", "psName": "SymbolTest"})
    table = CmapSubtable.newSubtable(4)
    table.platformID, table.platEncID, table.language, table.cmap = 3, 0, 0, {0xF041: "A", 0xF042: "B"}
    fb.font["cmap"].tables = [table]
    fb.font["OS/2"].achVendID = "\0\0\0\0"
    fb.save(os.path.join(out, "Symbol.ttf"))

    # A collection of two faces: readers see the first.
    first = builder({"familyName": "Collection First", "styleName": "Regular", "psName": "CollectionFirst"})
    second = builder({"familyName": "Collection Second", "styleName": "Italic", "psName": "CollectionSecond"})
    first.save(os.path.join(out, "first.tmp"))
    second.save(os.path.join(out, "second.tmp"))
    collection = TTCollection()
    collection.fonts = [TTFont(os.path.join(out, "first.tmp")), TTFont(os.path.join(out, "second.tmp"))]
    collection.save(os.path.join(out, "Pair.ttc"))
    os.remove(os.path.join(out, "first.tmp"))
    os.remove(os.path.join(out, "second.tmp"))

    # Three faces under a header that claims 65,535: only the three are faces.
    third = builder({"familyName": "Collection Third", "styleName": "Bold", "psName": "CollectionThird"})
    parts = []
    for number, fb in enumerate((first, second, third)):
        part = os.path.join(out, "part%d.tmp" % number)
        fb.save(part)
        parts.append(part)
    claiming = TTCollection()
    claiming.fonts = [TTFont(part) for part in parts]
    claiming.save(os.path.join(out, "Claims65535.ttc"))
    for part in parts:
        os.remove(part)
    with open(os.path.join(out, "Claims65535.ttc"), "r+b") as target:
        target.seek(8)
        target.write((65535).to_bytes(4, "big"))
        # Long enough for all the faces the header claims (FreeType counts 32 bytes each
        # at least), as such a file in the wild is: FreeType then tries every index.
        target.seek(0, 2)
        target.write(bytes(32 * 65536))

    # A suitcase of the same two faces: readers see the first.
    with open(os.path.join(out, "first.tmp"), "wb") as target:
        first.save(target)
    with open(os.path.join(out, "second.tmp"), "wb") as target:
        second.save(target)
    faces = []
    for name in ("first.tmp", "second.tmp"):
        with open(os.path.join(out, name), "rb") as source:
            faces.append(source.read())
        os.remove(os.path.join(out, name))
    write_suitcase(os.path.join(out, "Pair.dfont"), faces)

    # Names in several languages: English Mac records must win over Catalan and German
    # Windows ones; the full name exists only in German. The PostScript name holds
    # characters PostScript doesn't allow, which FreeType's own getter refuses.
    fb = builder({"familyName": "Placeholder", "styleName": "Regular"})
    table = fb.font["name"]
    table.names = []
    table.setName("Llengua", 1, 3, 1, 0x0403)
    table.setName("Normal", 2, 3, 1, 0x0403)
    table.setName("Sprache", 1, 3, 1, 0x0407)
    table.setName("Standard", 2, 3, 1, 0x0407)
    table.setName("Sprache Standard", 4, 3, 1, 0x0407)
    table.setName("Language", 1, 1, 0, 0)
    table.setName("Regular", 2, 1, 0, 0)
    table.setName("Language (Test) Regular", 6, 3, 1, 0x0409)
    fb.save(os.path.join(out, "Languages.ttf"))

    # Names only in a legacy Windows encoding (Big5), a style of a control character
    # alone, and British English beside the Big5 family.
    fb = builder({"familyName": "Placeholder", "styleName": "Regular"})
    table = fb.font["name"]
    table.names = []
    from fontTools.ttLib.tables._n_a_m_e import NameRecord
    for text, name_id, platform, encoding, language in (
            ("新細明體", 1, 3, 4, 0x0404), ("\x7f", 2, 3, 1, 0x0409), ("Ming Light", 4, 3, 1, 0x0809),
            ("PMingLiU", 6, 3, 4, 0x0404)):
        record = NameRecord()
        record.nameID, record.platformID, record.platEncID, record.langID = name_id, platform, encoding, language
        record.string = text.encode("big5") if encoding == 4 else text
        table.names.append(record)
    fb.save(os.path.join(out, "Legacy.ttf"))

    # A family only in a Mac Japanese record.
    fb = builder({"familyName": "Placeholder", "styleName": "Regular"})
    table = fb.font["name"]
    table.names = []
    table.setName("明朝体", 1, 1, 1, 11)
    table.setName("Regular", 2, 1, 0, 0)
    fb.save(os.path.join(out, "MacJapanese.ttf"))

    # Axes in fvar with no gvar beside them; one axis's name record is empty.
    fb = builder({"familyName": "Fvar Only", "styleName": "Regular", "psName": "FvarOnly"},
                 axes=[("wght", 100, 400, 900, "Weight"), ("wdth", 75, 100, 125, "Width")])
    del fb.font["gvar"]
    width = [axis for axis in fb.font["fvar"].axes if axis.axisTag == "wdth"][0]
    for record in fb.font["name"].names:
        if record.nameID == width.axisNameID:
            record.string = ""
    fb.save(os.path.join(out, "FvarOnly.ttf"))

    # No full name and no family: nothing to invent one from.
    fb = builder({"familyName": "Gone", "styleName": "Italic", "psName": "Unfamiliar-Italic"})
    drop_names(fb.font, {1, 4, 16})
    fb.save(os.path.join(out, "NoFamily.ttf"))

    # A loca table one entry short: FreeType counts one glyph fewer than maxp says.
    import struct
    with open(os.path.join(out, "Plain.ttf"), "rb") as source:
        data = bytearray(source.read())
    count = struct.unpack(">H", data[4:6])[0]
    for i in range(count):
        record = 12 + 16 * i
        if data[record:record + 4] == b"loca":
            length = struct.unpack(">I", data[record + 12:record + 16])[0]
            entry = 2 if TTFont(os.path.join(out, "Plain.ttf"))["head"].indexToLocFormat == 0 else 4
            data[record + 12:record + 16] = struct.pack(">I", length - entry)
    with open(os.path.join(out, "ShortLoca.ttf"), "wb") as target:
        target.write(data)

    # Broken: cut in half (tables run past the end), and not a font at all.
    with open(os.path.join(out, "Plain.ttf"), "rb") as source:
        data = source.read()
    with open(os.path.join(out, "Truncated.ttf"), "wb") as target:
        target.write(data[: len(data) // 2])
    with open(os.path.join(out, "Garbage.otf"), "wb") as target:
        target.write(b"This is a text file with a font's name.\n" * 20)
    open(os.path.join(out, "Empty.ttf"), "wb").close()

    drawing_fonts(out)


if __name__ == "__main__":
    main(sys.argv[1])
