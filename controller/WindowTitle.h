#pragma once

#include <QString>

/// The title of a score in the window's title bar: what is there, and nothing but it.
namespace WindowTitle {

/// `text` with its direction closed off: whatever in it turns text around (Unicode Standard Annex 9, explicit
/// formatting) ends with it.
QString closed(const QString &text);

/// `title` in the words of QWidget::setWindowTitle(), which takes "[*]" for the mark of a changed document.
QString forWidget(const QString &title);

} // namespace WindowTitle
