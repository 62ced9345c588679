#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "pdf/conversion/PDFDocument.h"
#include "pdf/conversion/PDFOpening.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QMetaObject>

using namespace Qt::StringLiterals;

namespace {

struct ReadResult {
    std::optional<QByteArray> bytes;
    QString error;
};

ReadResult readWhole(const QString &path)
{
    if (path.isEmpty())
        return { std::nullopt, u"Not a local file"_s };
    const QFileInfo info(path);
    // A pipe or a device would keep the window waiting for its end.
    if (info.exists() && !info.isFile())
        return { std::nullopt, info.isDir() ? u"Is a directory"_s : u"Not a regular file"_s };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return { std::nullopt, file.errorString() };
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return { std::nullopt, file.errorString() };
    return { std::move(bytes), {} };
}

} // namespace

const QStringList &AlphaTabController::scoreExtensions()
{
    static const QStringList extensions{ u"gp"_s, u"gp3"_s, u"gp4"_s, u"gp5"_s, u"gpx"_s, u"xml"_s, u"musicxml"_s,
        u"mxl"_s };
    return extensions;
}

const QStringList &AlphaTabController::openableExtensions()
{
    static const QStringList extensions = scoreExtensions() + QStringList{ u"pdf"_s };
    return extensions;
}

const QStringList &AlphaTabController::gpContentTypes()
{
    // Extensions stand for content types here; the program's own type for Guitar Pro files adds no further one.
    return openableExtensions();
}

void AlphaTabController::load(const QUrl &url)
{
    // The latest wins.
    m_opening.reset();
    if (QFileInfo(url.toLocalFile()).suffix().toLower() == "pdf"_L1) {
        loadPDF(url);
        return;
    }
    if (!bridgeReady) {
        m_pendingURL = url;
        startPageWith({ .source = url });
        return;
    }
    loadScore(url);
}

bool AlphaTabController::loadScore(const QUrl &url)
{
    const QString path = url.toLocalFile();
    const ReadResult file = readWhole(path);
    if (!file.bytes) {
        m_surroundings.log(u"[Quaverly] failed to read "_s + path + u": "_s + file.error);
        forgetRecent(path);
        return false;
    }
    m_requestedSource = url;
    js(BridgeCalls::loadBase64(*file.bytes));
    pdfDocument = nullptr;
    pdfURL = std::nullopt;
    setWindowTitle(nameWithoutExtension(path));
    recordRecent(url);
    return true;
}

void AlphaTabController::loadConverted(const QByteArray &musicXml)
{
    if (pageHealth == PageHealth::Ended) {
        startPageWith({ .source = musicXml });
        return;
    }
    m_requestedSource = musicXml;
    js(BridgeCalls::loadBase64(musicXml));
}

void AlphaTabController::loadPDF(const QUrl &url)
{
    m_opening = std::make_unique<PDFOpening>(
        url.toLocalFile(), [this, url](const std::shared_ptr<PDFDocument> &document) { pdfOpened(url, document); });
}

void AlphaTabController::pdfOpened(const QUrl &url, const std::shared_ptr<PDFDocument> &document)
{
    const QString path = url.toLocalFile();
    if (!document) {
        m_surroundings.log(u"[Quaverly] failed to open PDF "_s + path);
        forgetRecent(path);
        return;
    }
    pdfDocument = document;
    pdfURL = url;
    setWindowTitle(nameWithoutExtension(path));
    recordRecent(url);
    convertIfSmoke();
}

void AlphaTabController::presentOpenPanel()
{
    if (const std::optional<QUrl> url = m_surroundings.dialogs->chooseFileToOpen(gpContentTypes()))
        load(*url);
}

void AlphaTabController::setWindowTitle(const QString &text)
{
    QMetaObject::invokeMethod(this, [this, text] { m_surroundings.setKeyWindowTitle(text); }, Qt::QueuedConnection);
}

QString AlphaTabController::nameWithoutExtension(const QString &path)
{
    const QFileInfo info(path);
    const QString base = info.completeBaseName();
    return base.isEmpty() ? info.fileName() : base;
}
