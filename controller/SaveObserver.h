#pragma once

#include <QString>

#include <functional>
#include <optional>

/// Is told of each attempt to save a file: nothing where it worked, otherwise the system's word for why not.
using SaveObserver = std::function<void(const QString &filePath, const std::optional<QString> &reason)>;
