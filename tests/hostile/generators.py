"""Files that were made to bring the program down: always the same ones for the same seed.

Each generator gives pairs of a file name and the file's bytes.
"""
import io
import random
import re
import zipfile
import zlib

# Numbers that scores lie with.
EXTREMES = ["-1", "0", "65535", "100000", "10000000", "1000000000", "99999999999999999999", "2e23", "NaN", ""]
# The values of a MusicXML file that somebody counts with.
COUNTED = ["duration", "divisions", "beats", "beat-type", "staves", "staff", "voice", "octave", "alter", "string", "fret",
           "staff-lines", "fifths", "backup", "forward", "actual-notes", "normal-notes"]


def flipped(random_, data):
    """Some bytes of the file are others."""
    damaged = bytearray(data)
    for _ in range(random_.choice([1, 1, 1, 2, 8, 64])):
        damaged[random_.randrange(len(damaged))] = random_.choice([0, 1, 0x7F, 0x80, 0xFF, random_.randrange(256)])
    if random_.random() < 0.1:
        damaged = damaged[: random_.randrange(len(damaged))]
    return bytes(damaged)


def lying(random_, text):
    """A number of an XML text is another one, or a part of it comes twice or not at all."""
    kind = random_.random()
    numbers = list(re.finditer(r"(?<=>)-?\d+(?=<)|(?<==\")-?\d+(?=\")", text))
    if kind < 0.7 and numbers:
        for _ in range(random_.choice([1, 1, 3])):
            place = random_.choice(numbers)
            text = text[: place.start()] + random_.choice(EXTREMES) + text[place.end() :]
            numbers = [number for number in numbers if number.end() < place.start()] or numbers[:1]
            if len(numbers) <= 1:
                break
        return text
    tags = [match.start() for match in re.finditer("<", text)]
    first, last = sorted(random_.sample(tags, 2))
    last = min(last, first + 2000)
    return text[:first] + (text[first:last] * random_.choice([0, 2, 30])) + text[last:]


def in_archive(random_, data, change):
    """The archive with one of its XML files changed."""
    out = io.BytesIO()
    with zipfile.ZipFile(io.BytesIO(data)) as old, zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as new:
        texts = [name for name in old.namelist() if name.endswith((".gpif", ".xml", ".musicxml")) and "META-INF" not in name]
        chosen = random_.choice(texts)
        for name in old.namelist():
            content = old.read(name)
            new.writestr(name, change(content.decode("utf8", "replace")).encode() if name == chosen else content)
    return out.getvalue()


def mutations(scores, seed):
    """Without end: the project's own scores, damaged."""
    random_ = random.Random(seed)
    whole = {path.suffix[1:]: path.read_bytes() for path in sorted(scores.iterdir()) if path.is_file()}
    kinds = sorted(kind for kind in whole if kind in ("gp", "gp3", "gp4", "gp5", "gpx", "musicxml", "mxl"))
    number = 0
    while True:
        kind = kinds[number % len(kinds)]
        data = whole[kind]
        if kind == "musicxml":
            data = lying(random_, data.decode()).encode()
        elif kind in ("gp", "mxl") and random_.random() < 0.8:
            data = in_archive(random_, data, lambda text: lying(random_, text))
        else:
            data = flipped(random_, data)
        yield f"mutation-{seed}-{number}.{kind}", data
        number += 1


def music_xml(bar, head=""):
    return (f'<?xml version="1.0"?>{head}<score-partwise><part-list><score-part id="P"><part-name>P</part-name></score-part>'
            f'</part-list><part id="P">{bar}</part></score-partwise>').encode()


def counts():
    """One value of a small MusicXML score is beyond all reason."""
    for name in COUNTED:
        for value in ("-1", "1000000000", "99999999999999999999"):
            note = f"<note><pitch><step>C</step><octave>4</octave></pitch><duration>1</duration><{name}>{value}</{name}></note>"
            values = f"<attributes><divisions>1</divisions><{name}>{value}</{name}></attributes>"
            yield f"count-{name}-{value}.xml", music_xml(f'<measure number="1">{values}{note}</measure>')
    rest = "<note><rest/><duration>4</duration></note>"
    yield "bars-30000.xml", music_xml("".join(f'<measure number="{n}">{rest}</measure>' for n in range(30000)))
    yield "voices-1000.xml", music_xml(
        '<measure number="1">' + "".join(
            f"<note><rest/><duration>4</duration><voice>{n}</voice></note><backup><duration>4</duration></backup>"
            for n in range(1000)) + "</measure>")
    yield "repeats-in-repeats.xml", music_xml("".join(
        f'<measure number="{n}"><barline location="left"><repeat direction="forward"/></barline>{rest}'
        '<barline location="right"><repeat direction="backward" times="9"/></barline></measure>' for n in range(300)))


def bombs():
    """Little that becomes much."""
    for name in ("Content/score.gpif", "score.xml"):
        out = io.BytesIO()
        with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as archive:
            archive.writestr("META-INF/container.xml",
                             '<container><rootfiles><rootfile full-path="score.xml"/></rootfiles></container>')
            with archive.open(name, "w", force_zip64=True) as member:
                for _ in range(300):
                    member.write(bytes(1 << 20))
        yield f"bomb.{'gp' if 'gpif' in name else 'mxl'}", out.getvalue()
    yield "deep.xml", b"<?xml version='1.0'?>" + b"<score-partwise>" * 200000
    yield "attributes.xml", b"<score-partwise " + b" ".join(b'a%d="1"' % n for n in range(100000)) + b"/>"
    entities = "".join(f'<!ENTITY e{n} "{f"&e{n - 1};" * 10}">' for n in range(1, 10))
    yield "entities.xml", music_xml("&e9;", f'<!DOCTYPE score-partwise [<!ENTITY e0 "laugh">{entities}]>')
    # Beyond what the window system takes as a title, which ends the connection with whoever tries.
    for millions in (1, 20):
        title = "<work><work-title>%s</work-title></work>" % ("Ferry " * (millions * 1_000_000 // 6))
        rest = '<measure number="1"><note><rest/><duration>4</duration></note></measure>'
        yield f"title-{millions}.xml", music_xml(rest).replace(b"<part-list>", title.encode() + b"<part-list>", 1)
    yield "zeros.gp5", bytes(20 << 20)
    yield "zeros.gpx", b"BCFZ" + (1 << 30).to_bytes(4, "little") + bytes(1 << 20)


def pdf(objects):
    """A PDF of these objects, numbered from 1; the first is the catalogue."""
    out, places = bytearray(b"%PDF-1.7\n"), []
    for number, content in enumerate(objects, 1):
        places.append(len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, content)
    table = len(out)
    out += b"xref\n0 %d\n0000000000 65535 f \n" % (len(objects) + 1)
    out += b"".join(b"%010d 00000 n \n" % place for place in places)
    return bytes(out + b"trailer<</Size %d/Root 1 0 R>>\nstartxref\n%d\n%%%%EOF\n" % (len(objects) + 1, table))


def page(drawing, entries=b"", media=b"0 0 595 842", filter_=b""):
    stream = b"<</Length %d%s>>stream\n%s\nendstream" % (len(drawing), filter_, drawing)
    return pdf([b"<</Type/Catalog/Pages 2 0 R>>", b"<</Type/Pages/Kids[3 0 R]/Count 1>>",
                b"<</Type/Page/Parent 2 0 R/MediaBox[%s]/Contents 4 0 R%s>>" % (media, entries), stream])


def pdfs(seed):
    """Documents with loops, endless drawings and boundless sizes, and damaged ones."""
    yield "loop.pdf", pdf([b"<</Type/Catalog/Pages 2 0 R>>", b"<</Type/Pages/Kids[2 0 R 3 0 R]/Count 2>>",
                           b"<</Type/Pages/Parent 2 0 R/Kids[2 0 R]/Count 1>>"])
    yield "wide.pdf", page(b"0 0 m 1e9 1e9 l S", media=b"0 0 1e9 1e9")
    yield "nothing.pdf", page(b"", media=b"0 0 0 0")
    yield "dashes.pdf", page(b"[0.0000001] 0 d 0 0 m 100000 100000 l S " * 100)
    yield "saves.pdf", page(b"q " * 2_000_000)
    yield "count.pdf", pdf([b"<</Type/Catalog/Pages 2 0 R>>", b"<</Type/Pages/Kids[3 0 R]/Count 1000000000>>",
                            b"<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>"])
    yield "stream-bomb.pdf", page(zlib.compress(b"0 0 m 9 9 l S " * 8_000_000, 6), filter_=b"/Filter/FlateDecode")
    picture = (b"<</Type/XObject/Subtype/Image/Width 60000/Height 60000/BitsPerComponent 8/ColorSpace/DeviceRGB"
               b"/Length 10>>stream\n0123456789\nendstream")
    whole = page(b"500 0 0 500 0 0 cm /I Do", b"/Resources<</XObject<</I 5 0 R>>>>")
    yield "picture.pdf", whole.replace(b"xref\n", b"5 0 obj\n" + picture + b"\nendobj\nxref\n", 1)
    random_ = random.Random(seed)
    drawing = b"0.2 w " + b"".join(b"%d 20 m %d 800 l S " % (n, n) for n in range(20, 580, 10))
    for number in range(40):
        yield f"damaged-{seed}-{number}.pdf", flipped(random_, page(drawing))
