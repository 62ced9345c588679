#include "pdf/conversion/PDFConverter.h"

#include "pdf/conversion/Folders.h"
#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/MusicXmlAssembly.h"
#include "pdf/conversion/PageMender.h"
#include "pdf/conversion/PagePng.h"
#include "pdf/conversion/PageRasters.h"
#include "pdf/conversion/RecognitionOutput.h"
#include "pdf/conversion/RecognitionRun.h"
#include "pdf/conversion/ResultFiles.h"
#include "pdf/conversion/Staves.h"
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

/// Audiveris draws a PDF at half of our resolution, which is a quarter of our pixels.
constexpr qint64 pixelsOfDrawnPdf = 4;

Failure tooLargeFailure(int index, qint64 pixels)
{
    return { translated("Audiveris failed.") + u"\n\n"_s + tooLargePage(index + 1, pixels) };
}

Failure nothingToRead()
{
    return { translated("Audiveris found no readable music in this PDF. (TAB-only sheets can't be converted — "
                        "only standard notation is read.)") };
}

/// Whether there was any.
bool takeTablatureOff(GrayBitmap &page)
{
    // A second raster lives only for pages that need it, and not while the next is drawn.
    const GrayBitmap whole = hasTablature(page) ? page : GrayBitmap();
    const bool erased = eraseTabStaves(page);
    if (erased)
        mendPage(whole, page);
    return erased;
}

/// The first page that Audiveris takes in no form, before any work is put into the others.
std::optional<Failure> tooLargeInAnyForm(const PageRasters &pages)
{
    for (int index = 0; index < pages.count(); ++index) {
        const std::optional<qint64> pixels = pages.pixels(index);
        if (pixels && *pixels > mostPixels * pixelsOfDrawnPdf)
            return tooLargeFailure(index, *pixels);
    }
    return std::nullopt;
}

/// One page after the other, so that one raster is alive at a time.
Result<PageImages> writePages(PageRasters &pages, const WorkingFolder &folder, const ProgressReport &report)
{
    PageImages images;
    std::vector<quint8> storage;
    // Images are for pages with tablature; without any, Audiveris gets the PDF, and draws it smaller.
    std::optional<Failure> tooLarge;
    for (int index = 0; index < pages.count(); ++index) {
        if (report)
            report({ .page = index + 1, .pages = pages.count() });
        Result<std::optional<GrayBitmap>> page = pages.render(index, std::exchange(storage, {}));
        if (!page)
            return page.failure();
        std::optional<GrayBitmap> bitmap = *std::move(page);
        if (!bitmap)
            continue;
        images.erased |= takeTablatureOff(*bitmap);
        const qint64 pixels = qint64(bitmap->width) * bitmap->height;
        if (!tooLarge && pixels > mostPixels)
            tooLarge = tooLargeFailure(index, pixels);
        if (tooLarge && images.erased)
            return *tooLarge;
        const QString file = folder.path(u"page-%1.png"_s.arg(index + 1, 3, 10, QLatin1Char('0')));
        if (std::optional<Failure> failure = writePNG(*bitmap, file))
            return *failure;
        images.files << file;
        storage = std::move(bitmap->pixels);
    }
    return images;
}

Result<std::vector<MusicXmlDocument>> readResults(const QStringList &files)
{
    std::vector<MusicXmlDocument> documents;
    for (const QString &file : files) {
        const Result<QByteArray> bytes = extractScoreXml(file);
        if (!bytes)
            return bytes.failure();
        Result<MusicXmlDocument> document = MusicXmlDocument::parse(*bytes);
        if (!document)
            return document.failure();
        documents.push_back(std::move(*document));
    }
    return documents;
}

} // namespace

namespace PDFConverter {

Result<QByteArray> convert(const QString &pdf, const QString &audiveris, const std::optional<QString> &debugDir,
    const std::stop_token &stop, const ProgressReport &report)
{
    std::unique_ptr<PageRasters> pages = PageRasters::open(pdf, stop);
    if (!pages)
        return Failure{ translated("Could not read the PDF.") };

    const WorkingFolder folder(debugDir);
    if (folder.failure())
        return *folder.failure();
    if (std::optional<Failure> failure = tooLargeInAnyForm(*pages))
        return *std::move(failure);

    const Result<PageImages> images = writePages(*pages, folder, report);
    if (!images)
        return images.failure();
    pages.reset();

    // Without tablature Audiveris does better with the PDF itself.
    const QStringList inputs = images->erased ? images->files : QStringList{ pdf };
    const QString results = folder.path(u"out"_s);
    if (report)
        report({});
    if (const std::optional<Failure> failure = runAudiveris(audiveris, inputs, results, stop, report))
        return *failure;

    const QStringList files = collectMxls(results, inputs);
    if (files.isEmpty())
        return nothingToRead();
    Result<std::vector<MusicXmlDocument>> documents = readResults(files);
    if (!documents)
        return documents.failure();
    Result<MusicXmlDocument> score = merge(std::move(*documents));
    if (!score)
        return score.failure();
    if (!hasPitchedNote(*score))
        return nothingToRead();
    stripOctaveShifts(*score);
    return score->serialise();
}

} // namespace PDFConverter
