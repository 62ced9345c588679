"""Every text of the sources is translated, into every language, and nothing else is.

usage: test_translations.py LUPDATE FOLDER... (in the top of the tree)
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

HERE = pathlib.Path(__file__).resolve().parent
LUPDATE, FOLDERS = sys.argv[1], sys.argv[2:]
del sys.argv[1:]


def messages(path):
    """What a file of translations says: (context, text, comment) to the translation's element."""
    for context in xml.etree.ElementTree.parse(path).getroot().iter("context"):
        for message in context.iter("message"):
            yield ((context.findtext("name"), message.findtext("source"), message.findtext("comment")),
                   message.find("translation"))


def numbers(text):
    return sorted(re.findall(r"%L?\d", text))


def fault(source, translation):
    """What is wrong with the translation of a text, or None."""
    if translation.get("type"):
        return translation.get("type")
    texts = [form.text or "" for form in translation.iter("numerusform")] or [translation.text or ""]
    for text in texts:
        if not text.strip():
            return "is empty"
        if numbers(text) != numbers(source):
            return "takes other values"
        if text.endswith("…") != source.endswith("…"):
            return "ends otherwise"
        if ("&" in text) != ("&" in source):
            return "has another key"
    return None


class Translations(unittest.TestCase):
    def test_complete(self):
        with tempfile.TemporaryDirectory() as folder:
            fresh = pathlib.Path(folder) / "sources.ts"
            subprocess.run([LUPDATE, "-silent", "-extensions", "cpp,h", "-locations", "none", "-I", ".", *FOLDERS,
                            "-ts", fresh], check=True)
            wanted = {key for key, _ in messages(fresh)}
        self.assertGreater(len(wanted), 100)
        files = sorted(HERE.glob("quaverly_*.ts"))
        self.assertTrue(files)
        for file in files:
            with self.subTest(file.name):
                found = dict(messages(file))
                self.assertEqual(wanted - set(found), set(), "not in the file: build the target update_translations")
                self.assertEqual(set(found) - wanted, set(), "not in the sources any more")
                faults = {key[1]: fault(key[1], translation) for key, translation in found.items()}
                self.assertEqual({text: why for text, why in faults.items() if why}, {})

    def test_faults_are_noticed(self):
        def made(text):
            return xml.etree.ElementTree.fromstring(text)
        self.assertEqual(fault("Open", made('<translation type="unfinished"/>')), "unfinished")
        self.assertEqual(fault("Open", made("<translation/>")), "is empty")
        self.assertEqual(fault("Show %1", made("<translation>Zeigen</translation>")), "takes other values")
        self.assertEqual(fault("Open…", made("<translation>Öffnen</translation>")), "ends otherwise")
        self.assertEqual(fault("&File", made("<translation>Datei</translation>")), "has another key")
        self.assertIsNone(fault("Show %1", made("<translation>%1 zeigen</translation>")))


if __name__ == "__main__":
    unittest.main()
