#include "tests/support/TestPDFs.h"

#include <QColor>
#include <QFile>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

namespace {

/// Numbered objects, from 1, and a catalogue that is the first of them.
QByteArray assembled(const QList<QByteArray> &objects)
{
    QByteArray file = "%PDF-1.7\n";
    QByteArray table = "0000000000 65535 f \n";
    for (qsizetype i = 0; i < objects.size(); ++i) {
        table += QByteArray::number(file.size()).rightJustified(10, '0') + " 00000 n \n";
        file += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const QByteArray start = QByteArray::number(file.size());
    const QByteArray size = QByteArray::number(objects.size() + 1);
    return file + "xref\n0 " + size + "\n" + table + "trailer\n<< /Size " + size + " /Root 1 0 R >>\nstartxref\n"
        + start + "\n%%EOF\n";
}

QByteArray entry(const QByteArray &key, const QByteArray &value)
{
    return value.isEmpty() ? QByteArray() : " /" + key + ' ' + value;
}

QByteArray box(const QByteArray &numbers) { return numbers.isEmpty() ? QByteArray() : '[' + numbers + ']'; }

QByteArray reference(qsizetype number) { return QByteArray::number(number) + " 0 R"; }

} // namespace

QByteArray TestPDFs::file(const QList<Page> &pages, const QByteArray &inherited, const QByteArray &catalog)
{
    QList<QByteArray> objects{ "<< /Type /Catalog /Pages 2 0 R " + catalog + " >>", {} };
    QByteArray kids;
    for (const Page &page : pages) {
        const qsizetype number = objects.size() + 1;
        kids += reference(number) + ' ';
        const QByteArray resources = page.entries.contains("/Resources") ? QByteArray() : " /Resources << >>";
        objects << "<< /Type /Page /Parent 2 0 R" + resources + entry("MediaBox", box(page.media))
                + entry("CropBox", box(page.crop)) + entry("Rotate", page.rotation) + " /Contents "
                + reference(number + 1) + ' ' + page.entries + " >>";
        objects << "<< /Length " + QByteArray::number(page.drawing.size()) + " >>\nstream\n" + page.drawing
                + "\nendstream";
    }
    objects[1]
        = "<< /Type /Pages /Kids [" + kids + "] /Count " + QByteArray::number(pages.size()) + ' ' + inherited + " >>";
    return assembled(objects);
}

QByteArray TestPDFs::numbered(const QList<QByteArray> &objects) { return assembled(objects); }

QRgb TestPDFs::colorOf(int index) { return QColor::fromHsv(index * 47 % 360, 200, 230).rgb(); }

QByteArray TestPDFs::colored(int count)
{
    QList<Page> pages;
    for (int i = 0; i < count; ++i) {
        const QColor color(colorOf(i));
        QByteArray fill;
        for (const double part : { color.redF(), color.greenF(), color.blueF() })
            fill += QByteArray::number(part) + ' ';
        pages << Page{ .drawing = fill + "rg 0 0 5000 5000 re f" };
    }
    return file(pages);
}

TestPDFs::Page TestPDFs::slowPage()
{
    QByteArray curves = "0.2 w ";
    for (int i = 0; i < 2000; ++i)
        curves += QByteArray::number(i % 595) + " 0 m 0 " + QByteArray::number(i % 842) + " 595 "
            + QByteArray::number((i * 7) % 842) + " 300 842 c S\n";
    return { .drawing = curves };
}

TestPDFs::Page TestPDFs::endlessPage() { return { .drawing = "[0.00001 0.00001] 0 d 0 0 m 595 842 l S" }; }

QByteArray TestPDFs::boundlessForm()
{
    const QByteArray drawing = "/Itself Do /Itself Do";
    const QByteArray page = "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R "
                            "/Resources << /XObject << /Itself 5 0 R >> >> >>";
    return assembled({ "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>", page,
        "<< /Length 10 >>\nstream\n/Itself Do\nendstream",
        "<< /Type /XObject /Subtype /Form /BBox [0 0 595 842] /Resources << /XObject << /Itself 5 0 R >> >> /Length "
            + QByteArray::number(drawing.size()) + " >>\nstream\n" + drawing + "\nendstream" });
}

QByteArray TestPDFs::fatalTable()
{
    QByteArray file = "%PDF-1.7\n1 0 obj <<\n  /Type /Catalog\n>>\n";
    for (const QByteArray &previous : { QByteArray(), QByteArray("  /Prev -200\n") }) {
        const QByteArray start = QByteArray::number(file.size());
        file += "xref\n0 2\n0000000000 65535 f \n0000000009 00000 n \ntrailer <<\n  /Root 1 0 R\n" + previous
            + "  /Size 2\n>>\nstartxref\n" + start + "\n%%EOF\n";
    }
    return file;
}

QByteArray TestPDFs::endlessPageTree()
{
    return assembled({ "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 5 >>",
        "<< /Type /Pages /Kids [2 0 R 4 0 R] /Count 5 /Parent 2 0 R >>",
        "<< /Type /Page /Parent 3 0 R /MediaBox [0 0 595 842] >>" });
}

QByteArray TestPDFs::withBrokenTable(QByteArray file)
{
    const qsizetype start = file.lastIndexOf("startxref");
    return file.replace(start, file.size() - start, "startxref\n7\n%%EOF\n");
}

bool TestPDFs::encrypt(const QString &path, const char *userPassword)
{
    try {
        QFile plain(path);
        if (!plain.open(QIODevice::ReadOnly))
            return false;
        const QByteArray bytes = plain.readAll();
        QPDF document;
        document.processMemoryFile("plain", bytes.constData(), size_t(bytes.size()));
        const QByteArray name = QFile::encodeName(path); // the writer keeps no copy
        QPDFWriter writer(document, name.constData());
        writer.setR6EncryptionParameters(
            userPassword, "owner", true, true, true, true, true, true, qpdf_r3p_full, true);
        writer.write();
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

QByteArray TestPDFs::nested(int depth)
{
    QList<QByteArray> objects{ "<< /Type /Catalog /Pages 2 0 R >>" };
    for (int level = 0; level < depth; ++level)
        objects << "<< /Type /Pages /Kids [" + reference(objects.size() + 2) + "] /Count 1 >>";
    objects << "<< /Type /Page /MediaBox [0 0 300 200] /Resources << >> >>";
    return assembled(objects);
}
