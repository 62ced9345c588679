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
    /// Further entries of the page's dictionary, such as "/Annots [5 0 R]"; resources instead of none at all, too.
    QByteArray entries;
};

/// A whole file. Its objects are the catalogue, the page tree's root, and for each page itself and its drawing.
/// @param inherited entries of the page tree's root, such as "/Rotate 90"
/// @param catalog further entries of the catalogue
QByteArray file(const QList<Page> &pages, const QByteArray &inherited = {}, const QByteArray &catalog = {});

/// A file of these objects, numbered from 1, the first of which is the catalogue.
QByteArray numbered(const QList<QByteArray> &objects);

/// `count` upright pages; each is filled with a colour of its own.
QByteArray colored(int count);
/// The colour of page `index`.
QRgb colorOf(int index);

/// A page that takes the drawing library some hundredths of a second.
Page slowPage();

/// A page whose line is of so many dashes that drawing it takes for ever.
Page endlessPage();
/// A page whose form draws itself twice, which takes all the memory that it is given.
QByteArray boundlessForm();
/// A table of what is where that points before the file's beginning, over which the drawing library dies.
QByteArray fatalTable();
/// A node of the page tree that is its own grandparent: the drawing library goes round in circles.
QByteArray endlessPageTree();

/// The same file with a cross-reference table that points anywhere.
QByteArray withBrokenTable(QByteArray file);

/// The file at `path`, encrypted in place; an empty password lets everybody read it.
bool encrypt(const QString &path, const char *userPassword);

/// `depth` nodes of the page tree within one another, with one page at the end.
QByteArray nested(int depth);

} // namespace TestPDFs
