// Draws an SVG into square PNGs, so that building needs no other program for it.
// usage: render_icon SVG FOLDER NAME SIZE...     writes FOLDER/SIZExSIZE/NAME.png
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    if (argc < 5) {
        std::fputs("usage: render_icon SVG FOLDER NAME SIZE...\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    if (!drawing.isValid()) {
        std::fprintf(stderr, "render_icon: %s is no drawing\n", argv[1]);
        return 1;
    }
    for (int i = 4; i < argc; ++i) {
        const int size = QByteArray(argv[i]).toInt();
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        drawing.render(&painter, QRectF(0, 0, size, size));
        painter.end();

        const QString folder = u"%1/%2x%2"_s.arg(QString::fromLocal8Bit(argv[2])).arg(size);
        const QString path = u"%1/%2.png"_s.arg(folder, QString::fromLocal8Bit(argv[3]));
        if (!QDir().mkpath(folder) || !image.save(path)) {
            std::fprintf(stderr, "render_icon: %s cannot be written\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
