#pragma once

#include "pdf/conversion/ConversionProgress.h"
#include "pdf/conversion/Result.h"

#include <QByteArray>

#include <optional>
#include <stop_token>

/// The road from a PDF of sheet music to a score. Its steps lie beside this file: PageRasters, TabStaffEraser,
/// PageMender, PagePng, RecognitionRun, ResultFiles, MusicXmlDocument, MusicXmlAssembly.
namespace PDFConverter {

/// Reads the notation of the PDF at `pdf` with Audiveris at `audiveris`, and gives one MusicXML document.
///
/// Blocks for seconds to minutes; for a thread of its own. A requested `stop` makes it fail soon.
/// @param debugDir where the page images and Audiveris's results are left; without it they lie in a temporary folder
/// that is gone at the end
/// @param report called at each page that is prepared, and at each step of Audiveris
Result<QByteArray> convert(const QString &pdf, const QString &audiveris, const std::optional<QString> &debugDir = {},
    const std::stop_token &stop = {}, const ProgressReport &report = {});

} // namespace PDFConverter
