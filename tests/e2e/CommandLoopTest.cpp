// The session and its command loop in process: the host is installed while
// a session lives and cleared after, and a command that throws is reported
// to the crash recorder while the loop goes on.
#include "FileText.h"
#include "kaldo/app/CommandLoop.h"
#include "kaldo/app/Session.h"
#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kaldo/rx/Runtime.h"
#include "kaldo/util/CrashRecorder.h"
#include "kxcrash.h"
#include "kxed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <sstream>
#include <stdexcept>

using ::testing::HasSubstr;

namespace {

void throwsStandardError()
{
    kxutPrintf(L"\nworking");
    throw std::runtime_error("disk on fire");
}

void throwsMessage()
{
    throw KdExceptionWithMsg(L"bad style", __FILE__, __LINE__);
}

void throwsStatus()
{
    throw KdErrorStatus(Kald::eWasErased, __FILE__, __LINE__);
}

kaldo::SessionPaths tempPaths(const QTemporaryDir& dir)
{
    const std::filesystem::path root = dir.path().toStdString();
    return {root / "kaldo.ini", root / "Support", root / "modules", root / "crash"};
}

}  // namespace

TEST(CommandLoop, SessionInstallsTheHostForItsLifetime)
{
    QTemporaryDir dir;
    {
        kaldo::Session session(tempPaths(dir));
        const kaldo::HostState& host = kaldo::host();
        EXPECT_EQ(kaldo::Session::current(), &session);
        EXPECT_EQ(host.database, &session.database());
        EXPECT_EQ(host.editor, &session.editor());
        EXPECT_EQ(host.runtime, &session.runtime());
        EXPECT_EQ(host.profile, &session.profile());
        EXPECT_EQ(host.crashRecorder, &session.crashRecorder());
        EXPECT_EQ(host.supportDir, tempPaths(dir).supportDir);
        EXPECT_EQ(session.runtime().modulesDir(), tempPaths(dir).modulesDir);
        EXPECT_NE(session.runtime().commands().lookupCmd(L"_LINE"), nullptr);
    }
    EXPECT_EQ(kaldo::Session::current(), nullptr);
    EXPECT_EQ(kaldo::host().database, nullptr);
    EXPECT_EQ(kaldo::host().editor, nullptr);
    EXPECT_EQ(kaldo::host().runtime, nullptr);
    EXPECT_TRUE(kaldo::host().supportDir.empty());
}

TEST(CommandLoop, ThrowingCommandsAreReportedAndTheLoopGoesOn)
{
    QTemporaryDir dir;
    kaldo::Session session(tempPaths(dir));
    KxEdCommandStack& commands = session.runtime().commands();
    commands.addCommand(L"TESTS", L"STDFAIL", L"STDFAIL", 0, throwsStandardError);
    commands.addCommand(L"TESTS", L"MSGFAIL", L"MSGFAIL", 0, throwsMessage);
    commands.addCommand(L"TESTS", L"STATUSFAIL", L"STATUSFAIL", 0, throwsStatus);

    std::istringstream script("STDFAIL\nMSGFAIL\nSTATUSFAIL\n\nQUIT\nLINE\n");
    kaldo::ScriptInputSource input(script);
    std::wstring transcript;
    session.editor().setInputSource(&input);
    session.editor().setTranscript([&](std::wstring_view text) { transcript += text; });
    kaldo::runCommandLoop(session);

    EXPECT_THAT(transcript, HasSubstr(L"Command: STDFAIL\nworking\nCommand STDFAIL failed: disk on fire\n"));
    EXPECT_THAT(transcript, HasSubstr(L"Command MSGFAIL failed: bad style\n"));
    EXPECT_THAT(transcript, HasSubstr(L"Command STATUSFAIL failed: error status 81\n"));
    // Enter repeats the failed command; QUIT ends the loop before LINE.
    const std::wstring statusFailure = L"Command STATUSFAIL failed";
    EXPECT_NE(transcript.find(statusFailure), transcript.rfind(statusFailure));
    EXPECT_TRUE(session.quitRequested());
    EXPECT_THAT(transcript, testing::Not(HasSubstr(L"Specify first point")));

    std::vector<std::filesystem::path> reports;
    for (const auto& entry : std::filesystem::directory_iterator(tempPaths(dir).crashDir))
        reports.push_back(entry.path());
    std::sort(reports.begin(), reports.end());
    ASSERT_EQ(reports.size(), 4u);
    EXPECT_THAT(fileText(reports[0] / "report.txt"), HasSubstr("disk on fire"));
    EXPECT_THAT(fileText(reports[1] / "report.txt"), HasSubstr("bad style"));
}

TEST(CommandLoop, RunCommandFindsCommandsThenVariables)
{
    QTemporaryDir dir;
    kaldo::Session session(tempPaths(dir));
    std::istringstream script("7\n");
    kaldo::ScriptInputSource input(script);
    session.editor().setInputSource(&input);
    session.editor().setTranscript([](std::wstring_view) {});

    EXPECT_TRUE(kaldo::runCommand(session, L"pickbox"));
    EXPECT_EQ(std::get<short>(*session.editor().variables().get(L"PICKBOX")), 7);
    EXPECT_TRUE(kaldo::runCommand(session, L"_commands"));
    EXPECT_FALSE(kaldo::runCommand(session, L"NOSUCHTHING"));
    EXPECT_FALSE(kaldo::runCommand(session, L"_PICKBOX"));
}
