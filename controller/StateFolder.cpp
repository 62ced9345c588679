#include "controller/StateFolder.h"

#include <QDir>

using namespace Qt::StringLiterals;

QString StateFolder::path()
{
    // What is not absolute does not count, say the XDG base directories.
    const QString named = qEnvironmentVariable("XDG_STATE_HOME");
    const QString folder = QDir::isAbsolutePath(named) ? named : QDir::homePath() + u"/.local/state"_s;
    return folder + u"/quaverly"_s;
}
