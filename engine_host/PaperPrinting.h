#pragma once

#include <QByteArray>

class QPrinter;

namespace PaperPrinting {

/// Draws each page of a PDF over the whole paper, margins included, at the printer's resolution, and sends them off:
/// the last page first where the printer wants that. Takes about a second for each page, and may run in any thread as
/// long as nobody else uses the printer.
///
/// False where the PDF cannot be read or the printer takes nothing.
bool print(QByteArray pdf, QPrinter &printer);

} // namespace PaperPrinting
