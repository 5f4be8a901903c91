#include "kaldo/util/GuiThread.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <exception>

namespace kaldo {

void runOnGuiThread(const std::function<void()>& work)
{
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || QThread::currentThread() == app->thread()) {
        work();
        return;
    }
    std::exception_ptr failure;
    QMetaObject::invokeMethod(
        app,
        [&] {
            try {
                work();
            } catch (...) {
                failure = std::current_exception();
            }
        },
        Qt::BlockingQueuedConnection);
    if (failure)
        std::rethrow_exception(failure);
}

}  // namespace kaldo
