#pragma once

#include "engine_host/PrintTarget.h"

#include <QCoreApplication>

#include <optional>

/// The panel for choosing a printer or a PDF file, and the paper.
class PrintPanel final {
    Q_DECLARE_TR_FUNCTIONS(PrintPanel)

public:
    /// @param title of what is to be printed
    static std::optional<PrintTarget> choose(const QString &title);
};
