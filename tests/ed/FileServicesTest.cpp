#include "EditorFixture.h"

#include "kxed.h"
#include "kxstring.h"

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace kaldo {
namespace {

class FileServices : public EditorFixture {
protected:
    FileServices()
    {
        root = fs::path(dir.path().toStdString());
        fs::create_directories(root / "Support");
        fs::create_directories(root / "drawings");
        std::ofstream(root / "Support" / "styles.mln") << "support";
        std::ofstream(root / "drawings" / "styles.mln") << "drawing";
        std::ofstream(root / "drawings" / "local.mln") << "drawing";
        host().supportDir = root / "Support";
        host().drawingDir = root / "drawings";
    }

    std::wstring find(const std::wstring& name)
    {
        wchar_t out[1024];
        return kxedFindFile(name.c_str(), out, 1024) == RTNORM ? std::wstring(out) : std::wstring();
    }

    int choose(const wchar_t* defaultName, int flags, std::wstring& chosen)
    {
        wchar_t* name = nullptr;
        const int result = getFileNameByFileDialog(L"Load", defaultName, L"mln", flags, name);
        chosen = name ? name : L"";
        kald_free(name);
        return result;
    }

    QTemporaryDir dir;
    fs::path root;
};

TEST_F(FileServices, FindFileSearchesSupportThenDrawingFolder)
{
    EXPECT_EQ(find(L"styles.mln"), (root / "Support" / "styles.mln").wstring());
    EXPECT_EQ(find(L"local.mln"), (root / "drawings" / "local.mln").wstring());
    const std::wstring absolute = (root / "drawings" / "styles.mln").wstring();
    EXPECT_EQ(find(absolute), absolute);
    EXPECT_EQ(find(L"missing.mln"), L"");
    EXPECT_EQ(find((root / "missing.mln").wstring()), L"");
    EXPECT_EQ(find(L""), L"");
    wchar_t small[8];
    ASSERT_EQ(kxedFindFile(L"styles.mln", small, 8), RTNORM);
    EXPECT_EQ(std::wcslen(small), 7u);
}

TEST_F(FileServices, ScriptsAnswerFileDialogsOnTheCommandLine)
{
    script("styles\nlocal.mln\n\nmissing\nnew-file\n^C\n");
    std::wstring chosen;
    ASSERT_EQ(choose(nullptr, 0, chosen), 0);
    EXPECT_EQ(chosen, (root / "Support" / "styles.mln").wstring());
    ASSERT_EQ(choose(nullptr, 0x1804, chosen), 0);
    EXPECT_EQ(chosen, (root / "drawings" / "local.mln").wstring());
    ASSERT_EQ(choose(L"local.mln", 0, chosen), 0);
    EXPECT_EQ(chosen, (root / "drawings" / "local.mln").wstring());
    EXPECT_EQ(choose(nullptr, 0, chosen), RTERROR);
    EXPECT_EQ(chosen, L"");
    ASSERT_EQ(choose(nullptr, 0x8080101, chosen), 0);
    EXPECT_EQ(chosen, L"new-file.mln");
    EXPECT_EQ(choose(nullptr, 0, chosen), RTCAN);
    EXPECT_NE(transcript.find(L"Enter file name: styles\n"), std::wstring::npos);
    EXPECT_NE(transcript.find(L"Enter file name <local.mln>: \n"), std::wstring::npos);
    EXPECT_NE(transcript.find(L"Cannot find the file \"missing.mln\"."), std::wstring::npos);
}

// A command may offer keywords at the file prompt: the prompt lists them,
// and a keyword typed comes back as one, not as a file name.
TEST_F(FileServices, KeywordsOfTheFilePromptAreListedAndTyped)
{
    script("E\nE\n");
    kxedInitGet(0, L"Exploded _Exploded");
    std::wstring chosen;
    EXPECT_EQ(choose(L"plan.dxf", 0x1, chosen), RTKWORD);
    wchar_t word[KXED_TEXT_SIZE];
    ASSERT_EQ(kxedGetInput(word), RTNORM);
    EXPECT_STREQ(word, L"Exploded");
    ASSERT_EQ(choose(L"plan.dxf", 0x1, chosen), 0);
    EXPECT_EQ(chosen, L"E.mln");
    EXPECT_EQ(transcript, L"Enter file name or [Exploded] <plan.dxf>: E\nEnter file name <plan.dxf>: E\n");
}

TEST_F(FileServices, FilediaZeroAsksOnTheCommandLineToo)
{
    QueuedInputSource window;
    editor.setInputSource(&window);
    editor.variables().set(L"FILEDIA", short(0));
    window.push(InputEvent::typed(L"keep.as.typed"));
    std::wstring chosen;
    ASSERT_EQ(choose(nullptr, 0x5, chosen), 0);
    EXPECT_EQ(chosen, L"keep.as.typed");
}

}  // namespace
}  // namespace kaldo
