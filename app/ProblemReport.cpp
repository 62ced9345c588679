#include "app/ProblemReport.h"

#include "app/Versions.h"
#include "engine_host/process/SystemLog.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMessageBox>

using namespace Qt::StringLiterals;

QString ProblemReport::text(const QStringList &logLines)
{
    QStringList lines;
    for (const Versions::Part &part : Versions::parts())
        lines << part.name + u' ' + part.version;
    lines << Versions::platform() << QString();
    lines << (logLines.isEmpty() ? u"The log is empty."_s : u"The last lines of the log:"_s) << logLines;
    return lines.join(u'\n') + u'\n';
}

void ProblemReport::copy(QWidget &window)
{
    QGuiApplication::clipboard()->setText(text(SystemLog::lastLines()));
    auto *told = new QMessageBox(QMessageBox::NoIcon, QCoreApplication::translate("ProblemReport", "Report a Problem"),
        QCoreApplication::translate("ProblemReport",
            "What helps to understand the problem is now on the clipboard: versions, your system, and the last lines "
            "of the log, which may hold names of files."),
        QMessageBox::NoButton, &window);
    told->setInformativeText(QCoreApplication::translate(
        "ProblemReport", "Paste it into your report, and write what you did and what you expected."));
    told->addButton(QCoreApplication::translate("ProblemReport", "OK"), QMessageBox::AcceptRole);
    told->setAttribute(Qt::WA_DeleteOnClose);
    told->open();
}
