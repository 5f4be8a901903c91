// The bundled example that 'make run' shows: every answer in it is taken,
// and the saved drawing holds what it draws.
#include "EzdxfReport.h"
#include "KaldoProcess.h"
#include "TreePaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>

#include <fstream>
#include <sstream>

using ::testing::HasSubstr;
using ::testing::Not;

TEST(ExampleSession, DrawsTheRoadsAndTheRoomWithoutARefusedAnswer)
{
    std::ifstream file(sourceDir() / "examples/first-session.scr");
    std::stringstream script;
    script << file.rdbuf();
    ASSERT_FALSE(script.str().empty());

    KaldoProcess kaldo;
    const std::string saved = (kaldo.dir() / "example.dxf").string();
    const KaldoRun run = kaldo.runScript(script.str(), {"--save", QString::fromStdString(saved)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    for (const char* refusal : {"Invalid", "Unknown command", "Unable", "not found", "*Cancel*"})
        EXPECT_THAT(run.out, Not(HasSubstr(refusal))) << run.out;
    EXPECT_THAT(run.out, HasSubstr("1 erased."));

    const EzdxfReport report = readWithEzdxf(saved);
    ASSERT_TRUE(report.ran) << report.problem;
    EXPECT_EQ(auditFindings(report), "");
    // Two roads and the room; the line drawn across the room was erased.
    EXPECT_EQ(report.file["mlines"].toArray().size(), 3);
}
