#pragma once

#include "engine_host/WebEngineHost.h"

#include <QApplication>
#include <QTest>
#include <QWebEngineView>

/// The main function of a test with the real Chromium: what has to happen before the application object, happens.
template <typename Test> int runEngineTest(int argc, char *argv[])
{
    WebEngineHost::prepare();
    const QApplication application(argc, argv);
    // On its first start Chromium says what it thinks of the screen. That is said before any test listens: a warning
    // in a test is a failure.
    QWebEngineView firstStart;
    firstStart.show();
    QCoreApplication::processEvents();
    firstStart.hide();
    Test test;
    return QTest::qExec(&test, argc, argv);
}
