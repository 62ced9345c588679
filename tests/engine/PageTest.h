#pragma once

#include "tests/engine/EngineSession.h"

#include <QObject>
#include <QTest>

#include <memory>

/// A test class whose tests have a session of the page each. A session has to end without complaints.
class PageTest : public QObject {
    Q_OBJECT

protected:
    /// What every test of the class begins with; false when that failed.
    virtual bool prepare() { return true; }

    std::unique_ptr<EngineSession> m_session;

private Q_SLOTS:
    void init()
    {
        m_session = std::make_unique<EngineSession>();
        QVERIFY(m_session->start());
        QVERIFY(prepare());
    }

    void cleanup()
    {
        QCOMPARE(m_session->complaints(), QStringList());
        m_session.reset();
    }
};
