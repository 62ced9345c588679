#include "controller/AlphaTabController.h"
#include "controller/FileKinds.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "pdf/conversion/PDFDocument.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMetaObject>

using namespace Qt::StringLiterals;

const QStringList &AlphaTabController::scoreExtensions() { return FileKinds::scoreExtensions(); }

const QStringList &AlphaTabController::openableExtensions() { return FileKinds::openableExtensions(); }

const QStringList &AlphaTabController::gpContentTypes()
{
    // Extensions stand for content types here; the program's own type for Guitar Pro files adds no further one.
    return openableExtensions();
}

void AlphaTabController::load(const QUrl &url)
{
    // The latest wins.
    m_opening.reset();
    m_reading.reset();
    if (FileKinds::isPDF(url)) {
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

void AlphaTabController::loadScore(const QUrl &url)
{
    m_reading = std::make_unique<FileReading>(
        url.toLocalFile(), m_surroundings.inBackground,
        [this, url](const FileReading::Result &result) { scoreRead(url, result); },
        rememberScores ? FileReading::Key::OfContent : FileReading::Key::None);
}

void AlphaTabController::scoreRead(const QUrl &url, const FileReading::Result &result)
{
    const QString path = url.toLocalFile();
    if (!result.call) {
        m_surroundings.log(u"[Quaverly] failed to read "_s + path + u": "_s + result.error);
        forgetRecent(path);
        // The score of a page that was loaded anew is gone.
        const QUrl *returning = m_return ? std::get_if<QUrl>(&m_return->source) : nullptr;
        if (returning && *returning == url)
            hasScore = false;
        return;
    }
    if (!bridgeReady) {
        // The page has ended meanwhile.
        load(url);
        return;
    }
    m_requestedSource = url;
    m_requestedKey = result.key;
    js(*result.call);
    pdfDocument = nullptr;
    pdfURL = std::nullopt;
    setWindowTitle(nameWithoutExtension(path));
    recordRecent(url);
}

void AlphaTabController::loadConverted(const QByteArray &musicXml)
{
    if (pageHealth == PageHealth::Ended) {
        startPageWith({ .source = musicXml });
        return;
    }
    m_requestedSource = musicXml;
    m_requestedKey = keyOf(m_requestedSource);
    js(BridgeCalls::loadBase64(musicXml));
}

void AlphaTabController::loadPDF(const QUrl &url)
{
    m_opening = std::make_unique<PDFOpening>(url.toLocalFile(), FileReading::largestFile,
        [this, url](const PDFOpening::Result &result) { pdfOpened(url, result); });
}

void AlphaTabController::pdfOpened(const QUrl &url, const PDFOpening::Result &result)
{
    const QString path = url.toLocalFile();
    if (!result.document) {
        const QString reason = result.tooLarge ? u": "_s + FileReading::tooLarge() : QString();
        m_surroundings.log(u"[Quaverly] failed to open PDF "_s + path + reason);
        forgetRecent(path);
        return;
    }
    pdfDocument = result.document;
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
    QMetaObject::invokeMethod(this, [this, text] { m_surroundings.setMainWindowTitle(text); }, Qt::QueuedConnection);
}

QString AlphaTabController::nameWithoutExtension(const QString &path)
{
    const QFileInfo info(path);
    const QString base = info.completeBaseName();
    return base.isEmpty() ? info.fileName() : base;
}
