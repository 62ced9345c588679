#include "controller/SmokeTest.h"

#include <QFileInfo>
#include <QProcessEnvironment>

using namespace Qt::StringLiterals;

bool SmokeTest::isAskedFor(const QProcessEnvironment &environment, const QString &temporaryFolder)
{
    return environment.value(u"QV_SMOKE"_s) == "1"_L1 || QFileInfo::exists(temporaryFolder + u"/qv_smoke"_s);
}
