#pragma once

#include "engine_host/PrintTarget.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

class EnginePage;
class PageReports;
class QThread;

/// Has the page lay its score out on pages of paper, and prints those.
class ScorePrinting final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScorePrinting)

public:
    using Printed = std::function<void(const PrintResult &)>;

    ScorePrinting(EnginePage &page, PageReports &reports);
    ~ScorePrinting() override;

    /// Calls `printed` when it is done; at once where something is being printed already.
    void print(const PrintTarget &target, Printed printed);

private:
    struct Job {
        PrintTarget target;
        Printed printed;
        /// A page that has laid out pages for another job does not count.
        bool prepared = false;
    };

    void prepared(bool succeeded);
    void arrived(const QByteArray &pdf);
    void end(const PrintResult &result);

    EnginePage &m_page;
    PageReports &m_reports;
    std::optional<Job> m_job;
    /// Draws the pages for a printer.
    std::unique_ptr<QThread> m_drawing;
};
