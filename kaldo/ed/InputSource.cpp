#include "kaldo/ed/InputSource.h"

#include "kxstring.h"

namespace kaldo {

ScriptInputSource::ScriptInputSource(std::istream& in, bool script) : in_(in), script_(script) {}

ScriptInputSource::ScriptInputSource(std::unique_ptr<std::istream> owned)
    : owned_(std::move(owned)), in_(*owned_)
{
}

InputEvent ScriptInputSource::next()
{
    std::string line;
    if (ended_ || !std::getline(in_, line)) {
        ended_ = true;
        return InputEvent::end();
    }
    ++lineNumber_;
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    if (line.empty())
        return InputEvent::enter();
    if (line == "^C")
        return InputEvent::cancel();
    return InputEvent::typed(kxutFromMultiByte(line));
}

void QueuedInputSource::push(InputEvent event)
{
    {
        std::lock_guard lock(mutex_);
        if (closed_)
            return;
        events_.push_back(std::move(event));
    }
    ready_.notify_one();
}

void QueuedInputSource::close()
{
    {
        std::lock_guard lock(mutex_);
        closed_ = true;
    }
    ready_.notify_all();
}

InputEvent QueuedInputSource::next()
{
    std::unique_lock lock(mutex_);
    ready_.wait(lock, [this] { return closed_ || !events_.empty(); });
    if (events_.empty())
        return InputEvent::end();
    InputEvent event = std::move(events_.front());
    events_.pop_front();
    return event;
}

}  // namespace kaldo
