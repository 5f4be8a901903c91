// The offscreen application of a test program, made on first use.
#pragma once

#include <QApplication>

// Lives until the process ends and is never destroyed: QTest's input devices
// would otherwise be torn down after the application they belong to.
inline QApplication& testApplication()
{
    static int argc = 1;
    static char name[] = "kaldo_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* instance = new QApplication(argc, argv);
    return *instance;
}
