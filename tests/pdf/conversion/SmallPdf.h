#pragma once

#include <QByteArray>
#include <QList>

/// A page of a hand-made PDF.
struct SmallPage {
    QByteArray mediaBox;
    /// Drawing operators.
    QByteArray content;
    /// Further entries of the page's dictionary.
    QByteArray entries;
};

/// A hand-made PDF file.
/// @param catalog further entries of the document's catalog
QByteArray smallPdf(const QList<SmallPage> &pages, const QByteArray &catalog = {});

/// Makes a file in `folder` and gives its path.
QString writeFile(const QString &folder, const QString &name, const QByteArray &bytes);
