#pragma once

#include <QEventLoopLocker>
#include <QObject>
#include <QTimer>

#include <optional>

class AlphaTabController;
class QMainWindow;

/// Prints to the end what is being printed when the window is closed: the window goes at once, and the program ends
/// behind the last page. What went wrong brings the window back, with the sentence that says so.
class PrintingAfterClose final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PrintingAfterClose)

public:
    /// How long the printing may take without a window, in milliseconds: nobody sees it, and nobody could end it.
    static constexpr int printingTimeoutMs = 600'000;

    PrintingAfterClose(AlphaTabController &controller, QMainWindow &window, int timeoutMs = printingTimeoutMs);
    ~PrintingAfterClose() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void begin();
    void end();
    void giveUp();

    AlphaTabController &m_controller;
    QMainWindow &m_window;
    QTimer m_timeout;
    /// Keeps the program running without a window.
    std::optional<QEventLoopLocker> m_running;
};
