#include "controller/AlphaTabController.h"
#include "controller/WholeFile.h"
#include "controller/WindowTitle.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Standard base64 (RFC 4648, section 4) and nothing else: whole groups of four, padding at the end only.
std::optional<QByteArray> decodeStrictly(const QString &base64)
{
    const QByteArray text = base64.toLatin1();
    if (text.size() % 4 != 0)
        return std::nullopt;
    const auto result = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (result.decodingStatus != QByteArray::Base64DecodingStatus::Ok)
        return std::nullopt;
    return result.decoded;
}

} // namespace

void AlphaTabController::saveGp(const QString &base64, const QString &scoreTitle)
{
    const std::optional<QByteArray> bytes = decodeStrictly(base64);
    if (!bytes)
        return;
    const QString proposal = (scoreTitle.isEmpty() ? u"Untitled"_s : WindowTitle::closed(scoreTitle)) + u".gp"_s;
    const std::optional<QUrl> url = m_surroundings.dialogs->chooseFileToSave(proposal, u"gp"_s);
    if (!url)
        return;

    const QString path = url->toLocalFile();
    WholeFile::sweep(QFileInfo(path).path());
    if (const std::optional<QString> reason = WholeFile::write(path, *bytes, WholeFile::Durability::OnDisk)) {
        conversionError = tr("Could not save: %1").arg(*reason);
        return;
    }
    recordRecent(*url);
}
