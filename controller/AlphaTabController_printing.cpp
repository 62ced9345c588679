#include "controller/AlphaTabController.h"
#include "controller/WholeFile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

void AlphaTabController::print()
{
    if (!hasScore || pdfDocument.value() || printing)
        return;
    const std::optional<PrintTarget> target
        = m_surroundings.dialogs->choosePrintTarget(title.value().isEmpty() ? u"Untitled"_s : title);
    if (!target)
        return;
    printing = true;
    m_engine->print(*target, [this, path = target->filePath](const PrintResult &result) { printed(path, result); });
}

void AlphaTabController::printed(const QString &path, const PrintResult &result)
{
    if (!result.succeeded)
        conversionError = tr("The score could not be printed.");
    else if (!path.isEmpty()) {
        WholeFile::sweep(QFileInfo(path).path());
        if (const std::optional<QString> reason = WholeFile::write(path, result.pdf, WholeFile::Durability::OnDisk))
            conversionError = tr("Could not save: %1").arg(*reason);
    }
    // At last: the program may end with it.
    printing = false;
}
