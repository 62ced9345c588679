#pragma once

#include <QByteArray>
#include <QString>

/// A backing track decoded chunk by chunk, as the page does, beside the same decoded as a whole by Chromium.
namespace DecodingComparison {

/// Begins the comparison in a page. When it is over, `globalThis.compared` is no longer null and tells how many parts
/// there were, the length of both in frames, the loudest sample and the worst difference, in steps of 16-bit samples,
/// or why it failed. Rates are in samples a second.
QString script(const QByteArray &file, int wholeRate, int partsRate);

} // namespace DecodingComparison
