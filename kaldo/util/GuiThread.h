// Widgets may only be made and shown on the thread that owns the application
// object. Commands run on a command thread of their own when the window is
// open, so every dialog, message box and file choice goes through here.
#pragma once

#include <functional>

namespace kaldo {

// Runs work on the application's thread and waits until it is done; an
// exception thrown by work is thrown again to the caller. Runs it at once
// when called on that thread or when there is no application object.
void runOnGuiThread(const std::function<void()>& work);

}  // namespace kaldo
