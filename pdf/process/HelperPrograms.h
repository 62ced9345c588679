#pragma once

#include <QString>

/// The programs that this one starts.
namespace HelperPrograms {

/// The path of the program `name`: beside this one, where `make install` puts it, or above a program that was built for
/// tests. Empty, with a warning, where it is missing.
QString find(const QString &name);

} // namespace HelperPrograms
