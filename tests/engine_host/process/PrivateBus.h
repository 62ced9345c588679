#pragma once

#include <QProcess>
#include <QTemporaryDir>

/// A message bus that nobody else is on.
class PrivateBus final {
    Q_DISABLE_COPY_MOVE(PrivateBus)

public:
    PrivateBus();
    ~PrivateBus();

    /// Empty if no bus could be started.
    QString address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
};
