#include "controller/PrintPanel.h"

#include "controller/FileDialogs.h"
#include "controller/KeyWindow.h"

#include <QPrintDialog>
#include <QPrinter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// All around the paper, in millimetres.
constexpr double margin = 12;

/// In dots per inch. A printer gets pictures of its pages, and one of A4 has a hundred megabytes with this.
constexpr int finest = 600;

} // namespace

std::optional<PrintTarget> PrintPanel::choose(const QString &title)
{
    const auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    printer->setDocName(title);
    printer->setPageMargins(QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
    // What is proposed for a file; a printer that the user chooses takes none.
    const QString proposal = FileDialogs::documentsFolder() + u'/' + FileDialogs::fileNameFor(title + u".pdf"_s);
    const bool toFile = printer->printerName().isEmpty();
    if (toFile)
        printer->setOutputFileName(proposal);
    QPrintDialog dialog(printer.get(), KeyWindow::find());
    dialog.setWindowTitle(tr("Print"));
    dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    PrintTarget target{ .layout = printer->pageLayout(), .filePath = {}, .printer = nullptr };
    if (printer->outputFormat() == QPrinter::PdfFormat)
        target.filePath = printer->outputFileName().isEmpty() ? proposal : printer->outputFileName();
    else {
        printer->setResolution(std::min(printer->resolution(), finest));
        target.printer = printer;
    }
    return target;
}
