// What feeds the command line: a script, or (through the queue) a window
// whose thread pushes typed text, clicks and cursor motion while the command
// thread waits for the next input.
#pragma once

#include "kxtypes.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <istream>
#include <memory>
#include <mutex>
#include <string>
#include <variant>

namespace kaldo {

// One input of the command line.
struct InputEvent {
    enum class Kind {
        Text,        // a line typed by the user (text holds it, without line end)
        Point,       // a point picked in the window (point, world coordinates; removing with Shift held)
        Motion,      // the cursor moved (point, world coordinates); drags and entity picks use it
        Enter,       // an empty response
        Cancel,      // the user cancelled (^C, Escape); text may say why
        EndOfInput,  // the source has nothing more to give
    };
    Kind kind = Kind::EndOfInput;
    std::wstring text;
    KxGePoint3d point;
    // A pick that takes what it picks out of the selection instead of
    // adding it.
    bool removing = false;

    static InputEvent typed(std::wstring text) { return {Kind::Text, std::move(text), {}}; }
    static InputEvent picked(const KxGePoint3d& p, bool removing = false) { return {Kind::Point, {}, p, removing}; }
    static InputEvent moved(const KxGePoint3d& p) { return {Kind::Motion, {}, p}; }
    static InputEvent enter() { return {Kind::Enter, {}, {}}; }
    static InputEvent cancel(std::wstring why = {}) { return {Kind::Cancel, std::move(why), {}}; }
    static InputEvent end() { return {Kind::EndOfInput, {}, {}}; }
};

class InputSource {
public:
    virtual ~InputSource() = default;
    // The next input; blocks until there is one. After EndOfInput every
    // further call returns EndOfInput again.
    virtual InputEvent next() = 0;
    // True when a script (not a person) feeds the input: commands then ask on
    // the command line instead of opening dialogs.
    virtual bool isScript() const = 0;
};

// A command script (.scr, 8-bit text in the process's locale): one input per
// line. An empty line is Enter, a line "^C" is cancel, the end of the stream
// is the end of input. A trailing carriage return is dropped. The line is
// passed on whole; the editor alone decides where a word ends (at the
// command prompt a blank also ends the command word). The same lines typed
// by a person at a terminal come with script false. A line longer than
// kLongestLine bytes is not kept: it reads as a cancel that says so.
class ScriptInputSource : public InputSource {
public:
    explicit ScriptInputSource(std::istream& in, bool script = true);
    explicit ScriptInputSource(std::unique_ptr<std::istream> owned);

    static constexpr std::size_t kLongestLine = 65536;

    InputEvent next() override;
    bool isScript() const override { return script_; }
    // Number of lines read so far (for messages about a script line).
    int lineNumber() const { return lineNumber_; }

private:
    std::unique_ptr<std::istream> owned_;
    std::istream& in_;
    bool script_ = true;
    int lineNumber_ = 0;
    bool ended_ = false;
};

// A thread-safe queue: any thread pushes, the command thread blocks in
// next() until an event arrives. After close() the queue hands out what it
// still holds, then EndOfInput; later pushes are dropped. Cursor motion
// pushed right after motion that nobody has read yet replaces it, so that a
// busy reader never falls behind the mouse.
//
// Work posted to the queue runs on the reading thread, inside next(), in
// order with the events around it: this is how a window reaches the
// drawing, which only the command thread may touch. Idle work runs on the
// reading thread each time next() finds nothing to hand out, before it
// waits (a window publishes what it draws there, and may leave a thread
// reading the drawing while the reader waits). Before each item is taken,
// interrupt runs on the reading thread, told whether the item only reads
// the drawing (cursor motion, work posted with readsOnly), so that such a
// thread pauses for it, or stops before anything else.
class QueuedInputSource : public InputSource {
public:
    using Work = std::function<void()>;
    using Interrupt = std::function<void(bool readsOnly)>;

    explicit QueuedInputSource(bool script = false) : script_(script) {}

    void push(InputEvent event);
    // readsOnly: the work changes nothing in the drawing.
    void post(Work work, bool readsOnly = false);
    void close();
    // Set before the reading thread starts.
    void setIdleWork(Work idle, Interrupt interrupt = {})
    {
        idle_ = std::move(idle);
        interrupt_ = std::move(interrupt);
    }

    InputEvent next() override;
    bool isScript() const override { return script_; }

private:
    struct Posted {
        Work work;
        bool readsOnly = false;
    };
    using Item = std::variant<InputEvent, Posted>;

    bool add(Item item);

    const bool script_;
    std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<Item> items_;
    Work idle_;
    Interrupt interrupt_;
    bool closed_ = false;
};

}  // namespace kaldo
