#include "tests/pdf/conversion/Files.h"

#include <QFile>

QString writeFile(const QString &folder, const QString &name, const QByteArray &bytes)
{
    QFile file(folder + u'/' + name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}
