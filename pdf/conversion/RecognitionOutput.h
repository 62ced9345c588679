#pragma once

#include <QByteArray>
#include <QString>

namespace PDFConverter {

/// The last step that Audiveris names in `output`, a piece of what it writes while it runs; empty when it names none.
QString stepIn(const QByteArray &output);

/// How far `step` is on the road, from 1; 0 for what is no step.
int numberOfStep(const QString &step);
/// How many steps Audiveris takes for a page.
int stepCount();

/// Why Audiveris gave up, in a sentence for the user, where `output` shows one of the reasons that users can do
/// something about; otherwise empty.
QString adviceFor(const QByteArray &output);

/// The sentence for a page of `pixels` pixels, which are more than Audiveris takes.
/// @param number of the page, from 1
QString tooLargePage(int number, qint64 pixels);

/// How many pixels a page may have.
inline constexpr qint64 mostPixels = 40'000'000;

} // namespace PDFConverter
