#pragma once

#include <QStringList>

class QUrl;

/// Which files the program opens, by the extensions of their names: lower-case, without the dot.
namespace FileKinds {

/// Guitar Pro and MusicXML.
const QStringList &scoreExtensions();
/// Those of scores, then PDF.
const QStringList &openableExtensions();

/// Whether the name says so, in whatever case.
bool isPDF(const QUrl &file);
/// Whether it is a local file of a kind that the program opens. What lies on the web cannot be read.
bool isOpenable(const QUrl &file);

} // namespace FileKinds
