#include "FileText.h"
#include "kaldo/core/Host.h"
#include "kaldo/util/CrashRecorder.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <clocale>

namespace {

int countReports(const std::filesystem::path& crashDir)
{
    int n = 0;
    for (const auto& entry : std::filesystem::directory_iterator(crashDir))
        n += entry.is_directory();
    return n;
}

TEST(CrashRecorder, FaultReportWithMessageAndAttachedFile)
{
    QTemporaryDir dir;
    const std::filesystem::path root = dir.path().toStdString();
    const auto attached = root / "broken.mln";
    std::ofstream(attached) << "1\nBROKEN\n";
    kaldo::CrashRecorder recorder(root / "crash");
    kaldo::host().crashRecorder = &recorder;

    KxCrashRecorder* sdk = kaldGetCrashRecorder();
    ASSERT_EQ(sdk, &recorder);
    sdk->recordFault(0xC0000005, nullptr, "mlnfile/reader", 441);
    sdk->logMessage(L"Reading a style file failed.");
    sdk->attachFile(attached.wstring().c_str(), L"The file that was being read.");

    const std::string text = fileText(recorder.latestReport() / "report.txt");
    EXPECT_NE(text.find("Fault 0xc0000005 at mlnfile/reader:441"), std::string::npos) << text;
    EXPECT_NE(text.find("Message: Reading a style file failed."), std::string::npos);
    EXPECT_NE(text.find("The file that was being read."), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(recorder.latestReport() / "broken.mln"));

    sdk->attachFile(L"/no/such/file", L"gone");  // a missing attachment is noted, not fatal
    EXPECT_NE(fileText(recorder.latestReport() / "report.txt").find("could not be copied"), std::string::npos);
    EXPECT_EQ(countReports(root / "crash"), 1);

    sdk->receiveError(KdErrorStatus(Kald::eWasOpenForWrite, "db.cpp", 12));
    sdk->receiveError(KdExceptionWithMsg(L"bad name", "dlg.cpp", 34));
    EXPECT_EQ(countReports(root / "crash"), 3);
    EXPECT_NE(fileText(recorder.latestReport() / "report.txt").find("Error: bad name at dlg.cpp:34"), std::string::npos);
    kaldo::host().crashRecorder = nullptr;
    EXPECT_EQ(kaldGetCrashRecorder(), nullptr);
}

// The report goes to standard error instead, its control characters
// shown: a message may quote a file.
TEST(CrashRecorder, UnwritableFolderNeverStopsTheHost)
{
    const std::string locale = std::setlocale(LC_CTYPE, nullptr);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    kaldo::CrashRecorder recorder("/proc/no-crash-reports-here");
    testing::internal::CaptureStderr();
    recorder.report("something happened");
    recorder.logMessage(L"and more \x1b[2J \u009B2J");
    const std::string printed = testing::internal::GetCapturedStderr();
    std::setlocale(LC_CTYPE, locale.c_str());
    EXPECT_TRUE(recorder.latestReport().empty());
    EXPECT_NE(printed.find("kaldo: crash report: something happened\n"), std::string::npos) << printed;
    EXPECT_NE(printed.find("Message: and more ^[[2J M-^[2J\n"), std::string::npos) << printed;
}

}  // namespace
