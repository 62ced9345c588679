#pragma once

#include <QList>
#include <QString>

/// What the program is made of, as whoever reports or reads about it wants to know.
namespace Versions {

struct Part {
    QString name;
    QString version;
};

/// The program first.
QList<Part> parts();

/// The system that it runs on, in a few lines of English.
QString platform();

} // namespace Versions
