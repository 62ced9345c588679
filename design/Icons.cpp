#include "design/Icons.h"

#include <QColor>
#include <QFile>
#include <QHash>
#include <QPaintDevice>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace {

/// What of an outline drawing is filled as well.
enum class Fill { Nothing, FirstShape, Everything };

struct Drawing {
    QString file;
    Fill fill = Fill::Nothing;
};

const QHash<QString, Drawing> &drawings()
{
    static const QHash<QString, Drawing> table{
        { u"arrow.left.and.right"_s, { u"move-horizontal"_s } },
        { u"checkmark.square.fill"_s, { u"checkmark-square-fill"_s } },
        { u"doc.text"_s, { u"file-text"_s } },
        { u"exclamationmark.triangle"_s, { u"triangle-alert"_s } },
        { u"folder"_s, { u"folder"_s } },
        { u"guitars"_s, { u"guitar"_s } },
        { u"metronome"_s, { u"metronome"_s } },
        { u"metronome.fill"_s, { u"metronome"_s } },
        { u"minus.magnifyingglass"_s, { u"zoom-out"_s } },
        { u"music.note"_s, { u"music"_s } },
        { u"pause.fill"_s, { u"pause"_s, Fill::Everything } },
        { u"play.fill"_s, { u"play"_s, Fill::Everything } },
        { u"plus.magnifyingglass"_s, { u"zoom-in"_s } },
        { u"repeat"_s, { u"repeat"_s } },
        { u"speaker.fill"_s, { u"volume"_s, Fill::FirstShape } },
        { u"speaker.wave.2.fill"_s, { u"volume-1"_s, Fill::FirstShape } },
        { u"speaker.wave.3.fill"_s, { u"volume-2"_s, Fill::FirstShape } },
        { u"square"_s, { u"square"_s } },
        { u"stop.fill"_s, { u"square"_s, Fill::Everything } },
        { u"wand.and.stars"_s, { u"wand-sparkles"_s } },
    };
    return table;
}

/// The drawing's strokes are meant for 24 pixels; larger ones are drawn finer, so that they do not shout.
QByteArray strokeWidth(int size) { return size > 32 ? "1.1" : "1.85"; }

QByteArray prepared(const Drawing &drawing, int size, const QColor &color)
{
    QFile file(u":/icons/"_s + drawing.file + u".svg"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray svg = file.readAll();
    if (drawing.fill == Fill::Everything)
        svg.replace("fill=\"none\"", "fill=\"currentColor\"");
    else if (drawing.fill == Fill::FirstShape)
        svg.insert(svg.indexOf("<path") + 5, " fill=\"currentColor\"");
    svg.replace("stroke-width=\"2\"", "stroke-width=\"" + strokeWidth(size) + '"');
    return svg.replace("currentColor", color.name().toLatin1());
}

QPixmap rendered(const QByteArray &svg, int size, qreal scale)
{
    QPixmap pixmap(QSize(size, size) * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(svg).render(&painter, QRectF(0, 0, size, size));
    return pixmap;
}

} // namespace

QPixmap Icons::pixmap(const QString &identifier, int size, const QColor &color, qreal scale)
{
    const QString key = u"icon %1 %2 %3 %4"_s.arg(identifier, color.name()).arg(size).arg(scale);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = rendered(prepared(drawings().value(identifier), size, color), size, scale);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

void Icons::paint(QPainter &painter, const QString &identifier, const QRectF &rect, int size, const QColor &color)
{
    const qreal scale = painter.device()->devicePixelRatioF();
    const QPointF corner = rect.center() - QPointF(size, size) / 2;
    // Whole device pixels keep the strokes sharp.
    const QPointF snapped(qRound(corner.x() * scale) / scale, qRound(corner.y() * scale) / scale);
    painter.save();
    painter.setOpacity(painter.opacity() * color.alphaF());
    painter.drawPixmap(snapped, pixmap(identifier, size, color, scale));
    painter.restore();
}
