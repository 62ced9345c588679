#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// What helps others to understand a problem: versions, system, and the last lines of the log.
namespace ProblemReport {

/// In English, as those who read it are many.
QString text(const QStringList &logLines);

/// Puts it on the clipboard and says so over `window`.
void copy(QWidget &window);

} // namespace ProblemReport
