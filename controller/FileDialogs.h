#pragma once

#include "controller/Dialogs.h"

#include <QCoreApplication>

/// The panels as file dialogs of the desktop.
class FileDialogs final : public Dialogs {
    Q_DECLARE_TR_FUNCTIONS(FileDialogs)

public:
    std::optional<QUrl> chooseFileToOpen(const QStringList &extensions) override;
    std::optional<QUrl> chooseFileToSave(const QString &proposedName, const QString &extension) override;

    /// `name` as a file can be called: no separators, no control characters, not hidden, of a length that every file
    /// system takes. The extension at its end stays.
    static QString fileNameFor(const QString &name);
};
