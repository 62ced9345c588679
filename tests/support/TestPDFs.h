#pragma once

#include <QByteArray>
#include <QColor>
#include <QList>
#include <QString>

/// Small PDF files for tests, made on the spot.
namespace TestPDFs {

struct Page {
    /// As it stands in the file, "0 0 595 842"; nothing for a page that inherits it.
    QByteArray media = "0 0 595 842";
    QByteArray crop;
    /// As it stands in the file.
    QByteArray rotation;
    /// Drawing operators.
    QByteArray drawing;
};

/// A whole file.
/// @param inherited entries of the page tree's root, such as "/Rotate 90"
QByteArray file(const QList<Page> &pages, const QByteArray &inherited = {});

/// `count` upright pages; each is filled with a colour of its own.
QByteArray colored(int count);
/// The colour of page `index`.
QRgb colorOf(int index);

/// A page that takes the drawing library some hundredths of a second.
Page slowPage();

/// The same file with a cross-reference table that points anywhere.
QByteArray withBrokenTable(QByteArray file);

/// The file at `path`, encrypted in place; an empty password lets everybody read it.
bool encrypt(const QString &path, const char *userPassword);

/// `depth` nodes of the page tree within one another, with one page at the end.
QByteArray nested(int depth);

} // namespace TestPDFs
