#include "kaldo/ui/WindowSession.h"

#include "kaldo/ui/CommandRunner.h"
#include "kaldo/ui/MainWindow.h"

#include <QApplication>

namespace kaldo::ui {

bool haveDisplay()
{
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

void runWindowSession(Session& session)
{
    CommandRunner runner(session);
    MainWindow window(runner);
    window.show();
    QApplication::exec();
}

}  // namespace kaldo::ui
