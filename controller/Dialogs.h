#pragma once

#include "engine_host/PrintTarget.h"

#include <QStringList>
#include <QUrl>

#include <optional>

/// The modal panels that the controller asks for.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    /// Lets the user choose one existing file whose name ends in one of `extensions` (lower case, without the dot).
    /// Nothing when the user cancels.
    virtual std::optional<QUrl> chooseFileToOpen(const QStringList &extensions) = 0;

    /// Lets the user choose where to save, with a first proposal for the name. Nothing when the user cancels.
    /// @param proposedName may hold any characters, also such as no file name can have
    virtual std::optional<QUrl> chooseFileToSave(const QString &proposedName, const QString &extension) = 0;

    /// Lets the user choose a printer or a PDF file, and the paper. Nothing when the user cancels.
    /// @param title of what is to be printed; may hold any characters
    virtual std::optional<PrintTarget> choosePrintTarget(const QString &title) = 0;
};
