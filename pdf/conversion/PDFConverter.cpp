#include "pdf/conversion/PDFConverter.h"

#include "pdf/conversion/Folders.h"
#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/MusicXmlAssembly.h"
#include "pdf/conversion/PagePng.h"
#include "pdf/conversion/PageRaster.h"
#include "pdf/conversion/RecognitionRun.h"
#include "pdf/conversion/ResultFiles.h"
#include "pdf/conversion/SheetPages.h"
#include "pdf/conversion/TabStaffEraser.h"

#include <QCoreApplication>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

using namespace PDFConverter;

QString translated(const char *text) { return QCoreApplication::translate("PDFConverter", text); }

struct PageImages {
    QStringList files;
    /// Whether a tablature staff was erased on any of them.
    bool erased = false;
};

/// One page after the other, so that one raster is alive at a time.
Outcome<PageImages> writePages(SheetPages &pages, const WorkingFolder &folder, const std::stop_token &stop)
{
    PageImages images;
    std::vector<quint8> storage;
    for (int index = 0; index < pages.count(); ++index) {
        const std::optional<SheetPage> page = pages.page(index);
        if (!page)
            continue;
        Outcome<GrayBitmap> bitmap = render(*page, stop, std::move(storage));
        if (!bitmap)
            return bitmap.failure();
        images.erased |= eraseTabStaves(*bitmap);
        const QString file = folder.path(u"page-%1.png"_s.arg(index + 1, 3, 10, QLatin1Char('0')));
        if (std::optional<Failure> failure = writePNG(*bitmap, file))
            return *failure;
        images.files << file;
        storage = std::move(bitmap->pixels);
    }
    return images;
}

Outcome<std::vector<MusicXmlDocument>> readResults(const QStringList &files)
{
    std::vector<MusicXmlDocument> documents;
    for (const QString &file : files) {
        const Outcome<QByteArray> bytes = extractScoreXml(file);
        if (!bytes)
            return bytes.failure();
        Outcome<MusicXmlDocument> document = MusicXmlDocument::parse(*bytes);
        if (!document)
            return document.failure();
        documents.push_back(std::move(*document));
    }
    return documents;
}

} // namespace

namespace PDFConverter {

Outcome<QByteArray> convert(
    const QString &pdf, const QString &audiveris, const std::optional<QString> &debugDir, const std::stop_token &stop)
{
    std::unique_ptr<SheetPages> pages = SheetPages::open(pdf);
    if (!pages || pages->count() < 1)
        return Failure{ translated("Could not read the PDF.") };

    const WorkingFolder folder(debugDir);
    if (folder.failure())
        return *folder.failure();

    const Outcome<PageImages> images = writePages(*pages, folder, stop);
    if (!images)
        return images.failure();
    pages.reset();

    // Without tablature the engine does better with the PDF itself.
    const QStringList inputs = images->erased ? images->files : QStringList{ pdf };
    const QString results = folder.path(u"out"_s);
    if (const std::optional<Failure> failure = runAudiveris(audiveris, inputs, results, stop))
        return *failure;

    const QStringList files = collectMxls(results, inputs);
    if (files.isEmpty()) {
        return Failure{ translated(
            "Audiveris found no readable music in this PDF. (TAB-only sheets can't be converted — "
            "only standard notation is read.)") };
    }
    Outcome<std::vector<MusicXmlDocument>> documents = readResults(files);
    if (!documents)
        return documents.failure();
    Outcome<MusicXmlDocument> score = merge(std::move(*documents));
    if (!score)
        return score.failure();
    stripOctaveShifts(*score);
    return score->serialise();
}

} // namespace PDFConverter
