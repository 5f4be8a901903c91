// The rubber band of the modify commands in process: while the cursor moves
// at MOVE's, ROTATE's, SCALE's and MIRROR's second prompts and STRETCH's,
// the drag listener (what the window draws) receives the selected entities
// as the command would leave them with the point under the cursor; the
// drawing itself changes only when the point is given. 'HELP at a prompt
// describes the running command, and an alias runs its command.
#include "kaldo/app/CommandLoop.h"
#include "kaldo/app/Session.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kxdb.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cmath>
#include <fstream>
#include <numbers>

using ::testing::HasSubstr;

namespace {

constexpr double kTol = 1e-9;

class ModifyDrag : public ::testing::Test {
protected:
    ModifyDrag()
    {
        const std::filesystem::path root = dir_.path().toStdString();
        std::filesystem::create_directories(root / "Support");
        std::ofstream(root / "Support" / "kaldo.pgp") << "M,*MOVE\nRO,*ROTATE\n";
        session_ = std::make_unique<kaldo::Session>(
            kaldo::SessionPaths{root / "kaldo.ini", root / "Support", root / "modules", root / "crash"});
        EXPECT_TRUE(session_->loadAliases().empty());
        kaldo::Editor& editor = session_->editor();
        editor.setTranscript([this](std::wstring_view text) { transcript_ += text; });
        editor.setDragListener([this](std::span<const KxDbEntity* const> entities) {
            std::vector<std::pair<KxGePoint3d, KxGePoint3d>> frame;
            for (const KxDbEntity* entity : entities)
                if (const KxDbLine* line = KxDbLine::cast(entity))
                    frame.emplace_back(line->startPoint(), line->endPoint());
            frames_.push_back(frame);
        });
        auto* line = new KxDbLine({0, 0, 0}, {10, 0, 0});
        session_->database().addToCurrentSpace(line, line_);
        line->close();
    }

    // Runs command with the events queued, then the input ends.
    void run(const std::wstring& command, const std::vector<kaldo::InputEvent>& events)
    {
        queue_ = std::make_unique<kaldo::QueuedInputSource>();
        for (const kaldo::InputEvent& event : events)
            queue_->push(event);
        queue_->close();
        session_->editor().setInputSource(queue_.get());
        frames_.clear();
        ASSERT_TRUE(kaldo::runCommand(*session_, command));
    }

    std::pair<KxGePoint3d, KxGePoint3d> line() const
    {
        const KxDbObjectPtr<KxDbLine> line(line_, KxDb::kForRead);
        return {line->startPoint(), line->endPoint()};
    }

    static bool near(const KxGePoint3d& a, const KxGePoint3d& b) { return distance(a, b) < kTol; }

    QTemporaryDir dir_;
    std::unique_ptr<kaldo::Session> session_;
    std::unique_ptr<kaldo::QueuedInputSource> queue_;
    std::wstring transcript_;
    std::vector<std::vector<std::pair<KxGePoint3d, KxGePoint3d>>> frames_;
    KxDbObjectId line_;
};

using kaldo::InputEvent;

TEST_F(ModifyDrag, TheListenerReceivesTheSelectionAsTheCommandWouldLeaveIt)
{
    // MOVE by its alias: the cursor at (3, 4) from the base point (0, 0).
    run(L"M", {InputEvent::typed(L"5,0"), InputEvent::enter(), InputEvent::typed(L"0,0"), InputEvent::moved({3, 4, 0}),
               InputEvent::picked({1, 1, 0})});
    ASSERT_EQ(frames_.size(), 1u);
    ASSERT_EQ(frames_[0].size(), 1u);
    EXPECT_TRUE(near(frames_[0][0].first, {3, 4, 0}));
    EXPECT_TRUE(near(frames_[0][0].second, {13, 4, 0}));
    EXPECT_TRUE(near(line().first, {1, 1, 0}));

    // ROTATE about (1, 1): the cursor straight above the base turns by 90
    // degrees.
    run(L"RO", {InputEvent::typed(L"6,1"), InputEvent::enter(), InputEvent::typed(L"1,1"), InputEvent::moved({1, 5, 0}),
                InputEvent::typed(L"0")});
    ASSERT_EQ(frames_.size(), 1u);
    EXPECT_TRUE(near(frames_[0][0].second, {1, 11, 0}));
    EXPECT_TRUE(near(line().second, {11, 1, 0}));

    // SCALE about (1, 1): the cursor 3 away scales by 3.
    run(L"SCALE", {InputEvent::typed(L"6,1"), InputEvent::enter(), InputEvent::typed(L"1,1"),
                   InputEvent::moved({1, 4, 0}), InputEvent::enter()});
    ASSERT_EQ(frames_.size(), 1u);
    EXPECT_TRUE(near(frames_[0][0].second, {31, 1, 0}));
    EXPECT_TRUE(near(line().second, {11, 1, 0}));

    // MIRROR in the line x = 0 shown by the cursor, then kept as a copy.
    run(L"MIRROR", {InputEvent::typed(L"6,1"), InputEvent::enter(), InputEvent::typed(L"0,0"),
                    InputEvent::moved({0, 7, 0}), InputEvent::typed(L"0,3"), InputEvent::enter()});
    ASSERT_EQ(frames_.size(), 1u);
    EXPECT_TRUE(near(frames_[0][0].second, {-11, 1, 0}));
    EXPECT_TRUE(near(line().second, {11, 1, 0}));

    // STRETCH with the line's end in the window: only that end follows.
    run(L"STRETCH", {InputEvent::typed(L"C"), InputEvent::typed(L"12,-1"), InputEvent::typed(L"9,3"),
                     InputEvent::enter(), InputEvent::typed(L"0,0"), InputEvent::moved({2, 2, 0}), InputEvent::enter()});
    ASSERT_EQ(frames_.size(), 1u);
    EXPECT_TRUE(near(frames_[0][0].first, {1, 1, 0}));
    EXPECT_TRUE(near(frames_[0][0].second, {13, 3, 0}));
}

TEST_F(ModifyDrag, HelpAtAPromptDescribesTheRunningCommand)
{
    run(L"MOVE", {InputEvent::typed(L"'HELP"), InputEvent::typed(L"5,0"), InputEvent::enter(), InputEvent::typed(L"'?"),
                  InputEvent::cancel()});
    const std::string said = QString::fromStdWString(transcript_).toStdString();
    EXPECT_THAT(said, HasSubstr("Select objects: 'HELP\nMOVE: Moves the selected objects by a displacement.\n  Aliases: M\n"
                                "Select objects: 5,0"));
    EXPECT_THAT(said, HasSubstr("'?\nInvalid point.\n"));
    run(L"HELP", {InputEvent::typed(L"ro")});
    EXPECT_THAT(QString::fromStdWString(transcript_).toStdString(),
                HasSubstr("Enter a command name or <list all>: ro\nROTATE: Turns the selected objects about a base point.\n"
                          "  Aliases: RO\n"));
}

}  // namespace
