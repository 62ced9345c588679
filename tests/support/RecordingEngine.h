#pragma once

#include "engine_host/EngineHost.h"
#include "engine_host/bridge/PageReports.h"

#include <QImage>
#include <QPointer>
#include <QStringList>
#include <QUrl>
#include <QWidget>

#include <memory>
#include <utility>

/// What a recording host has been asked for, in order; outlives the host so that a test can look at any time.
struct EngineRecord {
    /// Every script, in the order of evaluation.
    QStringList scripts;
    QList<QUrl> loads;
    /// Called when the page is to be loaded.
    std::function<void()> loading;
    int snapshots = 0;
    /// How often the page's process was to be ended.
    int ends = 0;
    /// What was to be printed where, and who waits for the last of it.
    QList<PrintTarget> prints;
    std::function<void(const PrintResult &)> printed;
    /// What a snapshot gives.
    QImage picture;
    /// What every evaluation fails with, if anything.
    std::optional<QString> error;

    /// What the page of the test reports.
    PageReports reports;
    /// Every key that the page was handed, in order.
    QStringList keys;

    /// The scripts since the last call of this.
    QStringList take() { return std::exchange(scripts, {}); }
};

/// An engine host without Chromium: writes down what it is asked for and succeeds.
class RecordingEngine final : public EngineHost {
public:
    explicit RecordingEngine(std::shared_ptr<EngineRecord> record)
        : m_record(std::move(record))
    {
        QObject::connect(&m_record->reports, &PageReports::keyPressed, &m_context,
            [this](const QString &key) { m_record->keys << key; });
    }

    ~RecordingEngine() override { delete m_view.data(); }

    void evaluate(const QString &script, Completion completion) override
    {
        m_record->scripts << script;
        completion(m_record->error);
    }

    void load(const QUrl &url) override
    {
        m_record->loads << url;
        if (m_record->loading)
            m_record->loading();
    }

    void endPage() override { ++m_record->ends; }

    void snapshot(std::function<void(const QImage &)> arrived) override
    {
        ++m_record->snapshots;
        arrived(m_record->picture);
    }

    void print(const PrintTarget &target, std::function<void(const PrintResult &)> printed) override
    {
        m_record->prints << target;
        m_record->printed = std::move(printed);
    }

    PageReports &reports() override { return m_record->reports; }

    QWidget *view() const override
    {
        // Made when first wanted: tests of the controller alone run without any widget.
        if (!m_view) {
            m_view = new QWidget;
            m_view->setAccessibleName(QStringLiteral("Score"));
            // As Chromium's view does, the page is one of those that Tab visits.
            m_view->setFocusPolicy(Qt::StrongFocus);
        }
        return m_view;
    }

private:
    const std::shared_ptr<EngineRecord> m_record;
    QObject m_context;
    mutable QPointer<QWidget> m_view;
};
