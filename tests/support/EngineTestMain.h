#pragma once

#include "engine_host/RootSandbox.h"
#include "engine_host/WebSchemeHandler.h"

#include <QApplication>
#include <QTest>

/// The main function of a test with the real web engine: what has to happen before the application object, happens.
template <typename Test>
int runEngineTest(int argc, char *argv[])
{
    RootSandbox::adapt();
    WebSchemeHandler::registerScheme();
    const QApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}
