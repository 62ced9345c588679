#include "controller/AlphaTabController.h"

#include <QFile>
#include <QImage>
#include <QSaveFile>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Writes a whole file in one piece; a failure has nobody to go to.
void writeAtomically(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(bytes);
        file.commit();
    }
}

} // namespace

void AlphaTabController::startSmokeLog()
{
    if (m_smokeTest && !m_smokeLogPath.isEmpty())
        writeAtomically(m_smokeLogPath, {});
}

void AlphaTabController::smokeLog(const QString &line)
{
    if (!m_smokeTest || m_smokeLogPath.isEmpty())
        return;
    const QByteArray bytes = line.toUtf8() + '\n';
    QFile file(m_smokeLogPath);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::ExistingOnly))
        file.write(bytes);
    else
        writeAtomically(m_smokeLogPath, bytes);
}

void AlphaTabController::snapshotIfSmoke()
{
    if (!m_smokeTest || m_didSnapshot)
        return;
    const QString path
        = m_surroundings.environment.value(u"QV_SHOT"_s, m_surroundings.temporaryFolder + u"/qv_smoke.png"_s);
    m_didSnapshot = true;
    m_surroundings.after(1000ms, this, [this, path] {
        m_engine->snapshot([path, log = m_surroundings.log](const QImage &image) {
            if (image.isNull())
                return;
            image.save(path, "PNG");
            log(u"[Quaverly] snapshot written to "_s + path);
        });
    });
}
