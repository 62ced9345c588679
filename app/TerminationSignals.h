#pragma once

#include <QObject>

class QSocketNotifier;

/// Has the program quit as if its window were closed when the system asks it to end: at the end of a session, with the
/// terminal that it was started from, or by kill. So whatever runs outside of it, such as a conversion, ends too.
class TerminationSignals final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TerminationSignals)

public:
    /// One at a time, for as long as the application object lives.
    TerminationSignals();
    ~TerminationSignals() override;

private:
    void quit();

    QSocketNotifier *m_notifier = nullptr;
};
