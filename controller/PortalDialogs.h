#pragma once

#include "controller/Dialogs.h"
#include "controller/PortalRequest.h"

#include <QDBusConnection>
#include <QVariantMap>

#include <memory>

/// The desktop's own panels, through its portal (org.freedesktop.portal.FileChooser). Where no portal shows one
/// they are those of another kind.
class PortalDialogs final : public Dialogs {
public:
    PortalDialogs(
        const QDBusConnection &bus, std::unique_ptr<Dialogs> otherwise, const PortalRequest::Timeouts &timeouts = {});
    ~PortalDialogs() override;

    /// Whether the user leaves the choice of the panels to the program.
    static bool areWanted();

    std::optional<QUrl> chooseFileToOpen(const QStringList &extensions) override;
    std::optional<QUrl> chooseFileToSave(const QString &proposedName, const QString &extension) override;
    std::optional<PrintTarget> choosePrintTarget(const QString &title) override
    {
        return m_otherwise->choosePrintTarget(title);
    }

private:
    struct Answer {
        /// Whether a panel was there at all.
        bool given = false;
        std::optional<QUrl> file;
    };

    /// Returns when the panel is gone.
    Answer ask(const QString &method, const QString &title, QVariantMap options);

    QDBusConnection m_bus;
    const std::unique_ptr<Dialogs> m_otherwise;
    const PortalRequest::Timeouts m_timeouts;
    int m_requests = 0;
    /// A portal that has made the user wait for nothing is not asked again.
    bool m_tookTooLong = false;
};
