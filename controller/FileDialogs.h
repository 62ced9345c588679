#pragma once

#include "controller/Dialogs.h"

#include <QCoreApplication>

/// The panels as file dialogs of the desktop.
class FileDialogs final : public Dialogs {
    Q_DECLARE_TR_FUNCTIONS(FileDialogs)

public:
    std::optional<QUrl> chooseFileToOpen(const QStringList &extensions) override;
    std::optional<QUrl> chooseFileToSave(const QString &proposedName, const QString &extension) override;
    std::optional<PrintTarget> choosePrintTarget(const QString &title) override;

    /// Where panels begin.
    static QString documentsFolder();
    /// `name` as a file can be called: no separators, no control characters, of a length that every file system takes.
    /// All else stays as it is, and so does the extension at its end.
    static QString fileNameFor(const QString &name);
};
