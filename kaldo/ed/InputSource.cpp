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

bool QueuedInputSource::add(Item item)
{
    std::lock_guard lock(mutex_);
    if (closed_)
        return false;
    const auto isMotion = [](const Item& queued) {
        const auto* event = std::get_if<InputEvent>(&queued);
        return event && event->kind == InputEvent::Kind::Motion;
    };
    if (isMotion(item) && !items_.empty() && isMotion(items_.back()))
        items_.back() = std::move(item);
    else
        items_.push_back(std::move(item));
    return true;
}

void QueuedInputSource::push(InputEvent event)
{
    if (add(std::move(event)))
        ready_.notify_one();
}

void QueuedInputSource::post(Work work, bool readsOnly)
{
    if (add(Posted{std::move(work), readsOnly}))
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
    while (true) {
        if (items_.empty() && !closed_ && idle_) {
            lock.unlock();
            idle_();
            lock.lock();
        }
        ready_.wait(lock, [this] { return closed_ || !items_.empty(); });
        if (items_.empty()) {
            lock.unlock();
            if (interrupt_)
                interrupt_(false);
            return InputEvent::end();
        }
        Item item = std::move(items_.front());
        items_.pop_front();
        lock.unlock();
        auto* event = std::get_if<InputEvent>(&item);
        if (interrupt_)
            interrupt_(event ? event->kind == InputEvent::Kind::Motion : std::get<Posted>(item).readsOnly);
        if (event)
            return std::move(*event);
        std::get<Posted>(item).work();
        lock.lock();
    }
}

}  // namespace kaldo
