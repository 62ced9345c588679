#pragma once

#include <QString>

#include <optional>

namespace WebFolder {

/// The folder named `web` that holds the page: beside the program (a build), else in the data folder that the
/// program was installed with. Nothing when neither is there.
/// @param programFolder the folder that holds the program file
std::optional<QString> find(const QString &programFolder);

} // namespace WebFolder
