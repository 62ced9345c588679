// Compressed results: archives with broken tables, sizes that lie, and contents without end.
#include "pdf/conversion/ResultFiles.h"
#include "tests/fuzz/Expect.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(u"page.mxl"_s);
    QFile file(path);
    expect(file.open(QIODevice::WriteOnly) && file.write(bytesOf(data, size)) == qint64(size), "the file is written");
    file.close();
    constexpr qint64 most = 1 << 20;
    const auto score = PDFConverter::extractScoreXml(path, most);
    if (score)
        expect(!score->isEmpty() && score->size() <= most, "a score is never empty and never beyond its bound");
    return 0;
}
