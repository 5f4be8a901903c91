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
    bool read = false;
    bool tooLong = false;
    if (!ended_) {
        std::streambuf& bytes = *in_.rdbuf();
        for (int c = bytes.sbumpc(); c != std::char_traits<char>::eof(); c = bytes.sbumpc()) {
            read = true;
            if (c == '\n')
                break;
            if (line.size() < kLongestLine)
                line.push_back(static_cast<char>(c));
            else
                tooLong = true;
        }
    }
    if (!read) {
        ended_ = true;
        return InputEvent::end();
    }
    ++lineNumber_;
    if (tooLong)
        return InputEvent::cancel(L"Line " + std::to_wstring(lineNumber_) + L" of the input is longer than "
                                  + std::to_wstring(kLongestLine) + L" characters; it is left out.");
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
