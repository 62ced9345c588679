#pragma once

#include <QByteArray>
#include <QString>

/// Makes a file in `folder` and gives its path.
QString writeFile(const QString &folder, const QString &name, const QByteArray &bytes);
