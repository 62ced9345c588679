#include "controller/AlphaTabController.h"
#include "controller/ScoreMemory.h"

#include <chrono>

using namespace std::chrono_literals;

void AlphaTabController::watchSaving()
{
    const SaveObserver observer
        = [this](const QString &path, const std::optional<QString> &reason) { saved(path, reason); };
    m_surroundings.defaults->setSaveObserver(observer);
    m_surroundings.scoreMemory->setSaveObserver(observer);
}

void AlphaTabController::saved(const QString &path, const std::optional<QString> &reason)
{
    QMap<QString, QString> unsaved = unsavedFiles;
    if (reason)
        unsaved.insert(path, *reason);
    else
        unsaved.remove(path);
    if (unsaved != unsavedFiles.value())
        unsavedFiles = unsaved;
    if (unsaved.isEmpty() || m_savesAgain)
        return;
    // Nobody but the user makes room on a disk, and does that in other windows.
    constexpr auto pause = 10s;
    m_savesAgain = true;
    m_surroundings.after(pause, this, [this] {
        m_savesAgain = false;
        saveWhatIsUnsaved();
    });
}

void AlphaTabController::saveWhatIsUnsaved()
{
    m_surroundings.defaults->saveWhatIsUnsaved();
    m_surroundings.scoreMemory->saveWhatIsUnsaved();
}
