#include <gtest/gtest.h>

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "MlnFixture.h"
#include "host/FaultGuard.h"
#include "kaldo/util/CrashRecorder.h"
#include "mlnfile/MlnReader.h"

namespace {

// A page that faults on any access, for injecting a real invalid access.
class ForbiddenPage {
public:
    ForbiddenPage()
        : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          page_(mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
    }
    ~ForbiddenPage() { munmap(page_, size_); }
    ForbiddenPage(const ForbiddenPage&) = delete;
    ForbiddenPage& operator=(const ForbiddenPage&) = delete;
    volatile int* address() const { return static_cast<volatile int*>(page_); }

private:
    std::size_t size_;
    void* page_;
};

bool blocked(int signal)
{
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

void otherHandler(int) {}

}  // namespace

TEST(FaultGuard, InjectedFaultsEndTheStepAndTheThreadCarriesOn)
{
    ForbiddenPage page;
    kdml::FaultGuard guard;
    int stepsDone = 0;

    auto writeToForbiddenPage = [&] {
        ++stepsDone;
        *page.address() = 1;
        ++stepsDone;
    };
    EXPECT_FALSE(guard.run(writeToForbiddenPage));
    EXPECT_EQ(stepsDone, 1);
    EXPECT_EQ(guard.faultSignal(), SIGSEGV);
    ASSERT_NE(guard.faultContext(), nullptr);
    EXPECT_FALSE(blocked(SIGSEGV));

    auto arithmeticTrap = [&] { raise(SIGFPE); };
    EXPECT_FALSE(guard.run(arithmeticTrap));
    EXPECT_EQ(guard.faultSignal(), SIGFPE);
    EXPECT_FALSE(blocked(SIGFPE));

    // The same guard runs further steps normally, and faults again.
    auto plain = [&] { stepsDone = 10; };
    EXPECT_TRUE(guard.run(plain));
    EXPECT_EQ(stepsDone, 10);
    EXPECT_FALSE(guard.run(writeToForbiddenPage));
    EXPECT_EQ(guard.faultSignal(), SIGSEGV);
}

TEST(FaultGuard, PutsThePreviousHandlersBack)
{
    struct sigaction mine {};
    mine.sa_handler = &otherHandler;
    sigemptyset(&mine.sa_mask);
    struct sigaction saved {};
    sigaction(SIGBUS, &mine, &saved);
    {
        kdml::FaultGuard guard;
        struct sigaction during {};
        sigaction(SIGBUS, nullptr, &during);
        EXPECT_NE(during.sa_handler, &otherHandler);
    }
    struct sigaction after {};
    sigaction(SIGBUS, nullptr, &after);
    EXPECT_EQ(after.sa_handler, &otherHandler);
    sigaction(SIGBUS, &saved, nullptr);
}

class MlnFaultReportTest : public mlntest::MlnFixture {};

TEST_F(MlnFaultReportTest, FaultGoesToTheCrashRecorderWithTheFileAttached)
{
    const std::wstring path = writeFile("faulty.mln", mlntest::wallBlock());
    kdml::reportMlnReadFault(SIGSEGV, nullptr, path.c_str());  // no recorder: absorbed

    kaldo::CrashRecorder recorder(folder() / "crashes");
    kaldo::host().crashRecorder = &recorder;
    kdml::reportMlnReadFault(SIGSEGV, &recorder, path.c_str());
    ASSERT_FALSE(recorder.latestReport().empty());
    const std::string report = fileText(recorder.latestReport() / "report.txt");
    EXPECT_NE(report.find("Fault 0x0000000b"), std::string::npos) << report;
    EXPECT_NE(report.find("internalcmds\\kdentityeditcmds\\krxmlstyle\\src\\kaldmlinestyleloaddialog"),
              std::string::npos)
        << report;
    EXPECT_NE(report.find("441"), std::string::npos) << report;
    EXPECT_NE(report.find("An error was occurred while loading a mlstyle file."), std::string::npos) << report;
    EXPECT_NE(report.find("A MLSTYLE file that cause an error while loading."), std::string::npos) << report;
    EXPECT_EQ(fileText(recorder.latestReport() / "faulty.mln"), mlntest::wallBlock());
}
