#pragma once

#include "controller/Dialogs.h"

#include <memory>

/// What the panels were asked for and what they answer.
struct DialogScript {
    std::optional<QUrl> fileToOpen;
    std::optional<QUrl> fileToSave;
    std::optional<PrintTarget> printTarget;
    QString printedTitle;
    int opened = 0;
    int saved = 0;
    QStringList extensions;
    QString proposedName;
    QString savedExtension;
};

/// Panels that answer at once, as a script says.
class ScriptedDialogs final : public Dialogs {
public:
    explicit ScriptedDialogs(std::shared_ptr<DialogScript> script)
        : m_script(std::move(script))
    {
    }

    std::optional<QUrl> chooseFileToOpen(const QStringList &extensions) override
    {
        ++m_script->opened;
        m_script->extensions = extensions;
        return m_script->fileToOpen;
    }

    std::optional<QUrl> chooseFileToSave(const QString &proposedName, const QString &extension) override
    {
        ++m_script->saved;
        m_script->proposedName = proposedName;
        m_script->savedExtension = extension;
        return m_script->fileToSave;
    }

    std::optional<PrintTarget> choosePrintTarget(const QString &title) override
    {
        m_script->printedTitle = title;
        return m_script->printTarget;
    }

private:
    const std::shared_ptr<DialogScript> m_script;
};
