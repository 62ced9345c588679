"""MusicXML with less in it, so that it shows what two programs read in another way."""

import re
import zipfile

# What a document says of its own encoding, which is another one when it is written again.
ENCODING = re.compile("""encoding=["'][^"']*["']""")


def text_of(path):
    """Returns the document of a MusicXML file, packed or not."""
    data = path.read_bytes()
    if path.suffix == ".mxl":
        with zipfile.ZipFile(path) as archive:
            names = [name for name in archive.namelist() if name.endswith((".xml", ".musicxml"))]
            data = archive.read(next(name for name in names if not name.startswith("META")))
    if data[:2] in (b"\xff\xfe", b"\xfe\xff"):
        return data.decode("utf-16")
    return data.decode("utf-8", "replace")


def straight_through(text):
    """Without what says in which order the bars are played."""
    text = re.sub(r"<repeat\b[^>]*/>", "", text)
    text = re.sub(r"<ending\b[^>]*?/>", "", text)
    text = re.sub(r"<ending\b[^>]*>.*?</ending>", "", text, flags=re.S)
    text = re.sub(r'\s(dacapo|dalsegno|fine|tocoda|coda|segno)="[^"]*"', "", text)
    text = re.sub(r"<(segno|coda)\b[^>]*/>", "", text)
    words = r"<words[^>]*>[^<]*(D\.|Da Capo|Fine|Segno|Coda)[^<]*</words>"
    return re.sub(words, "<words>x</words>", text, flags=re.I)


def unadorned(text):
    """Without grace notes, ornaments, tremolos, arpeggios and glissandi."""
    text = re.sub(r"<note\b(?:(?!</note>).)*?<grace\b.*?</note>", "", text, flags=re.S)
    text = re.sub(r"<ornaments>.*?</ornaments>|<ornaments/>", "", text, flags=re.S)
    text = re.sub(r"<(arpeggiate|glissando|slide|non-arpeggiate)\b[^>]*?/>", "", text)
    return re.sub(r"<(glissando|slide)\b[^>]*>.*?</\1>", "", text, flags=re.S)


# By what a file agrees without.
KINDS = {
    "the order in which bars are played": straight_through,
    "grace notes and ornaments": unadorned,
    "order, and grace notes or ornaments": lambda text: unadorned(straight_through(text)),
}


def write(path, folder):
    """Writes a file without one thing after the other; returns the paths by what each is without."""
    folder.mkdir(parents=True, exist_ok=True)
    text = text_of(path)
    paths = {}
    for number, (kind, change) in enumerate(KINDS.items()):
        paths[kind] = folder / f"{path.parent.name}-{path.stem}-{number}.xml"
        paths[kind].write_text(ENCODING.sub('encoding="UTF-8"', change(text), count=1), "utf-8")
    return paths
