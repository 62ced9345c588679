#include "controller/AlphaTabController.h"
#include "controller/WindowTitle.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "pdf/conversion/ConversionWorker.h"
#include "pdf/conversion/PDFDocument.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString audiverisReleases = u"https://github.com/Audiveris/audiveris/releases"_s;

} // namespace

std::optional<QString> AlphaTabController::audiverisBinary() const
{
    const QProcessEnvironment &environment = m_surroundings.environment;
    const QString home = environment.value(u"HOME"_s, QDir::homePath());
    QStringList candidates{ m_surroundings.packagedAudiveris, home + u"/.local/opt/audiveris/bin/Audiveris"_s };
    if (environment.contains(u"QV_AUDIVERIS"_s))
        candidates.prepend(environment.value(u"QV_AUDIVERIS"_s));
    for (const QString &candidate : candidates) {
        const QFileInfo file(candidate);
        // A path without a folder would be looked for among the system's commands.
        if (file.isFile() && file.isExecutable())
            return file.absoluteFilePath();
    }
    return std::nullopt;
}

void AlphaTabController::convertOpenPDF()
{
    if (!pdfURL.value() || converting)
        return;
    const std::optional<QString> audiveris = audiverisBinary();
    if (!audiveris) {
        conversionError = tr("Audiveris (the music-recognition engine) was not found. Download it from %1 and move "
                             "Audiveris.app into /Applications, then try again.")
                              .arg(audiverisReleases);
        return;
    }
    conversionProgress = PDFConverter::Progress();
    converting = true;
    const QString path = pdfURL.value()->toLocalFile();
    m_conversion = std::make_unique<ConversionWorker>(
        path, *audiveris,
        [this, path](const PDFConverter::Result<QByteArray> &result) { conversionEnded(path, result); },
        [this](const PDFConverter::Progress &progress) { conversionProgress = progress; });
}

void AlphaTabController::conversionEnded(const QString &path, const PDFConverter::Result<QByteArray> &result)
{
    converting = false;
    if (!result) {
        conversionError = result.failure().message;
        return;
    }
    loadConverted(*result);
    pdfDocument = nullptr;
    pdfURL = std::nullopt;
    setWindowTitle(tr("%1 (converted)").arg(WindowTitle::closed(nameWithoutExtension(path))));
}

void AlphaTabController::convertIfSmoke()
{
    if (m_smokeTest && QFileInfo::exists(m_surroundings.temporaryFolder + u"/qv_convert"_s))
        m_surroundings.after(500ms, this, [this] { convertOpenPDF(); });
}
