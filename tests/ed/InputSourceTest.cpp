#include "kaldo/ed/InputSource.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace kaldo {
namespace {

using Kind = InputEvent::Kind;

TEST(InputSource, ScriptLinesBecomeInputs)
{
    std::istringstream in("LINE\n0,0\n\n^C\r\n  spaced words \r\n^Cx\nlast");
    ScriptInputSource source(in);
    EXPECT_TRUE(source.isScript());
    const std::vector<std::pair<Kind, std::wstring>> expected = {
        {Kind::Text, L"LINE"}, {Kind::Text, L"0,0"},   {Kind::Enter, L""},     {Kind::Cancel, L""},
        {Kind::Text, L"  spaced words "}, {Kind::Text, L"^Cx"}, {Kind::Text, L"last"},
        {Kind::EndOfInput, L""}, {Kind::EndOfInput, L""},
    };
    for (const auto& [kind, text] : expected) {
        const InputEvent event = source.next();
        EXPECT_EQ(event.kind, kind);
        EXPECT_EQ(event.text, text);
    }
    EXPECT_EQ(source.lineNumber(), 7);
}

TEST(InputSource, EmptyScriptEndsAtOnce)
{
    ScriptInputSource source(std::make_unique<std::istringstream>(""));
    EXPECT_EQ(source.next().kind, Kind::EndOfInput);
    EXPECT_EQ(source.lineNumber(), 0);
}

TEST(InputSource, QueueHandsEventsFromAnotherThreadInOrder)
{
    QueuedInputSource queue;
    EXPECT_FALSE(queue.isScript());
    constexpr int kCount = 500;
    std::thread producer([&queue] {
        for (int i = 0; i < kCount; ++i)
            queue.push(i % 2 ? InputEvent::picked({double(i), 0, 0}) : InputEvent::typed(std::to_wstring(i)));
        queue.close();
        queue.push(InputEvent::typed(L"after close"));
    });
    for (int i = 0; i < kCount; ++i) {
        const InputEvent event = queue.next();
        if (i % 2) {
            ASSERT_EQ(event.kind, Kind::Point);
            EXPECT_EQ(event.point.x, i);
        } else {
            ASSERT_EQ(event.kind, Kind::Text);
            EXPECT_EQ(event.text, std::to_wstring(i));
        }
    }
    EXPECT_EQ(queue.next().kind, Kind::EndOfInput);
    producer.join();
    EXPECT_EQ(queue.next().kind, Kind::EndOfInput);
}

TEST(InputSource, QueueWakesAWaitingReader)
{
    QueuedInputSource queue(true);
    EXPECT_TRUE(queue.isScript());
    InputEvent received;
    std::thread reader([&] { received = queue.next(); });
    queue.push(InputEvent::cancel());
    reader.join();
    EXPECT_EQ(received.kind, Kind::Cancel);
}

// Work runs on the reading thread in order with the events; idle work runs
// each time the queue runs dry; unread motion is replaced by newer motion.
TEST(InputSource, QueueRunsPostedWorkOnTheReaderAndKeepsOnlyTheLatestMotion)
{
    QueuedInputSource queue;
    std::vector<std::string> log;
    std::thread::id workThread;
    // The queue runs dry once, after the last motion: idle work then ends it.
    queue.setIdleWork([&] {
        log.push_back("idle");
        queue.close();
    });
    queue.push(InputEvent::typed(L"first"));
    queue.post([&] {
        log.push_back("work");
        workThread = std::this_thread::get_id();
    });
    queue.push(InputEvent::moved({1, 0, 0}));
    queue.push(InputEvent::moved({2, 0, 0}));
    queue.push(InputEvent::picked({3, 0, 0}));
    queue.push(InputEvent::moved({4, 0, 0}));
    std::vector<InputEvent> events;
    std::thread::id readerThread;
    std::thread reader([&] {
        readerThread = std::this_thread::get_id();
        for (int i = 0; i < 5; ++i)
            events.push_back(queue.next());
    });
    reader.join();
    ASSERT_EQ(events.size(), 5u);
    EXPECT_EQ(events[0].text, L"first");
    EXPECT_EQ(events[1].kind, Kind::Motion);
    EXPECT_EQ(events[1].point.x, 2);
    EXPECT_EQ(events[2].kind, Kind::Point);
    EXPECT_EQ(events[3].point.x, 4);
    EXPECT_EQ(events[4].kind, Kind::EndOfInput);
    EXPECT_EQ(workThread, readerThread);
    EXPECT_EQ(log, (std::vector<std::string>{"work", "idle"}));
}

}  // namespace
}  // namespace kaldo
