// A session with a window: the command loop runs on a command thread of
// its own while the window runs the application's event loop on this one.
#pragma once

namespace kaldo {
class Session;
}

namespace kaldo::ui {

// Whether the application shows windows on a real display.
bool haveDisplay();

// Opens the main window on the session and returns when it has closed and
// the command loop has ended.
void runWindowSession(Session& session);

}  // namespace kaldo::ui
