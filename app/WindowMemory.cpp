#include "app/WindowMemory.h"

#include "controller/StateFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Room for a title bar over a window that had to be moved.
constexpr int titleBar = 40;

/// In bytes; an honest file has a hundred.
constexpr qint64 largestFile = 64 << 10;

qint64 area(const QRect &rect) { return rect.isEmpty() ? 0 : qint64(rect.width()) * rect.height(); }

} // namespace

namespace WindowMemory {

QString userFilePath() { return StateFolder::path() + u"/window.json"_s; }

std::optional<Place> read(const QString &filePath)
{
    QFile file(filePath);
    // To open a pipe takes for ever.
    if (!QFileInfo(file).isFile() || file.size() > largestFile || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    const auto number = [&object](const QString &name) { return object[name].toInt(); };
    const QRect geometry(number(u"x"_s), number(u"y"_s), number(u"width"_s), number(u"height"_s));
    if (geometry.isEmpty())
        return std::nullopt;
    return Place{ geometry, object[u"maximized"_s].toBool(), number(u"sidebarWidth"_s), object[u"fretboard"_s].toBool(),
        object[u"leftHandedFretboard"_s].toBool() };
}

void write(const QString &filePath, const Place &place)
{
    QDir().mkpath(QFileInfo(filePath).path());
    QSaveFile file(filePath);
    if (!file.open(QIODevice::WriteOnly))
        return;
    const QJsonObject object{ { u"x"_s, place.geometry.x() }, { u"y"_s, place.geometry.y() },
        { u"width"_s, place.geometry.width() }, { u"height"_s, place.geometry.height() },
        { u"maximized"_s, place.maximized }, { u"sidebarWidth"_s, place.sidebarWidth },
        { u"fretboard"_s, place.fretboard }, { u"leftHandedFretboard"_s, place.leftHandedFretboard } };
    file.write(QJsonDocument(object).toJson());
    file.commit();
}

QRect pulledIn(const QRect &geometry, const QList<QRect> &screens)
{
    if (screens.isEmpty())
        return geometry;
    const QRect room = *std::max_element(screens.begin(), screens.end(),
        [&geometry](const QRect &a, const QRect &b) { return area(a & geometry) < area(b & geometry); });
    if (room.contains(geometry))
        return geometry;
    const int top = geometry.top() < room.top() ? room.top() + titleBar : geometry.top();
    QRect result(QPoint(geometry.left(), top), geometry.size().boundedTo(room.size()));
    result.moveLeft(std::clamp(result.left(), room.left(), room.right() - result.width() + 1));
    result.moveTop(std::clamp(result.top(), room.top(), room.bottom() - result.height() + 1));
    return result;
}

} // namespace WindowMemory
