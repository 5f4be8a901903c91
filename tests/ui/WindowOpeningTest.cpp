// Where the window opens: inside the available part of its screen, on a
// share of it the first time, and where it was later, fitted in when the
// screen is smaller than the window was.
#include "WindowFixture.h"

#include <QScreen>
#include <QStatusBar>
#include <QLineEdit>

namespace {

// The widget's rectangle on the screen.
QRect onScreen(const QWidget& widget)
{
    return {widget.mapToGlobal(QPoint()), widget.size()};
}

}  // namespace

class FirstOpening : public WindowFixture {
protected:
    FirstOpening() : WindowFixture([](kaldo::Profile&) {}) {}
};

TEST_F(FirstOpening, TakesAShareOfTheScreenWithTheCommandLineInSight)
{
    const QRect available = window().screen()->availableGeometry();
    EXPECT_TRUE(available.contains(window().frameGeometry()));
    EXPECT_GE(window().width(), available.width() / 2);
    EXPECT_GE(window().height(), available.height() / 2);
    EXPECT_TRUE(available.contains(onScreen(*window().commandLine()->input())));
    EXPECT_TRUE(available.contains(onScreen(*window().statusBar())));
}

class StoredGeometry : public WindowFixture {
protected:
    // A window kept from a screen far larger than this one.
    StoredGeometry()
        : WindowFixture([](kaldo::Profile& profile) {
              QMainWindow large;
              large.setGeometry(QRect(900, 700, 2600, 1800));
              const QByteArray bytes = large.saveGeometry();
              profile.setBinary(L"Window", L"Geometry", {bytes.begin(), bytes.end()});
          })
    {
    }
};

TEST_F(StoredGeometry, IsFittedIntoTheScreen)
{
    const QRect available = window().screen()->availableGeometry();
    ASSERT_LT(available.width(), 2600);
    EXPECT_TRUE(available.contains(window().frameGeometry()));
    EXPECT_TRUE(available.contains(onScreen(*window().commandLine()->input())));
    EXPECT_TRUE(available.contains(onScreen(*window().statusBar())));
}
