#include "tests/pdf/conversion/SmallPdf.h"

#include <QFile>

namespace {

/// Collects numbered objects and the table of where they are.
class Objects final {
public:
    void add(const QByteArray &object)
    {
        m_places << m_file.size();
        m_file += QByteArray::number(m_places.size()) + " 0 obj\n" + object + "\nendobj\n";
    }

    QByteArray file()
    {
        const QByteArray count = QByteArray::number(m_places.size() + 1);
        QByteArray table = "xref\n0 " + count + "\n0000000000 65535 f \n";
        for (const qsizetype place : std::as_const(m_places))
            table += QByteArray::number(place).rightJustified(10, '0') + " 00000 n \n";
        return m_file + table + "trailer\n<< /Size " + count + " /Root 1 0 R >>\nstartxref\n"
            + QByteArray::number(m_file.size()) + "\n%%EOF\n";
    }

private:
    QByteArray m_file = "%PDF-1.7\n";
    QList<qsizetype> m_places;
};

} // namespace

QByteArray smallPdf(const QList<SmallPage> &pages, const QByteArray &catalog)
{
    Objects objects;
    objects.add("<< /Type /Catalog /Pages 2 0 R " + catalog + " >>");
    QByteArray kids;
    for (qsizetype i = 0; i < pages.size(); ++i)
        kids += QByteArray::number(3 + 2 * i) + " 0 R ";
    objects.add("<< /Type /Pages /Kids [" + kids + "] /Count " + QByteArray::number(pages.size()) + " >>");
    for (qsizetype i = 0; i < pages.size(); ++i) {
        const SmallPage &page = pages[i];
        objects.add("<< /Type /Page /Parent 2 0 R /MediaBox " + page.mediaBox + " /Contents "
            + QByteArray::number(4 + 2 * i) + " 0 R " + page.entries + " >>");
        objects.add(
            "<< /Length " + QByteArray::number(page.content.size()) + " >>\nstream\n" + page.content + "\nendstream");
    }
    return objects.file();
}

QString writeFile(const QString &folder, const QString &name, const QByteArray &bytes)
{
    QFile file(folder + u'/' + name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}
