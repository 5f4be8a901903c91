#include "EditorFixture.h"

#include "kxed.h"
#include "kxgs.h"

#include <numbers>

namespace kaldo {
namespace {

class EditorInput : public EditorFixture {};

TEST_F(EditorInput, CommandWordsEnterCancelAndEnd)
{
    script("line 1,2\n\n  \n^C\n");
    std::wstring word;
    EXPECT_EQ(editor.getCommand(word), RTNORM);
    EXPECT_EQ(word, L"line");
    // The rest of the line answers the next request.
    KxGePoint3d p;
    EXPECT_EQ(editor.getPoint(nullptr, L"\nFrom point: ", p), RTNORM);
    EXPECT_EQ(p.x, 1);
    EXPECT_EQ(p.y, 2);
    EXPECT_EQ(editor.getCommand(word), RTNONE);
    EXPECT_EQ(editor.getCommand(word), RTNONE);
    EXPECT_EQ(editor.getCommand(word), RTCAN);
    EXPECT_EQ(editor.getCommand(word), Editor::kEndOfInput);
    EXPECT_EQ(transcript,
              L"Command: line 1,2\nFrom point: 1,2\nCommand: \nCommand:   \nCommand: *Cancel*\nCommand: \n");
}

TEST_F(EditorInput, PointsAbsoluteRelativeAndRetriedAfterJunk)
{
    script("3,4\n@1,1\n@2<90\nnonsense\n5,6,7\n\n^C\n");
    KxGePoint3d p;
    ASSERT_EQ(editor.getPoint(nullptr, L"\nPoint: ", p), RTNORM);
    EXPECT_EQ(editor.variables().pointValue(L"LASTPOINT").x, 3);
    ASSERT_EQ(editor.getPoint(nullptr, L"\nPoint: ", p), RTNORM);
    EXPECT_EQ(p.x, 4);
    EXPECT_EQ(p.y, 5);
    const KxGePoint3d base(10, 10, 0);
    ASSERT_EQ(editor.getPoint(&base, L"\nPoint: ", p), RTNORM);
    EXPECT_NEAR(p.x, 10, 1e-12);
    EXPECT_NEAR(p.y, 12, 1e-12);
    transcript.clear();
    ASSERT_EQ(editor.getPoint(nullptr, L"\nPoint: ", p), RTNORM);
    EXPECT_EQ(transcript, L"Point: nonsense\nInvalid point.\nPoint: 5,6,7\n");
    EXPECT_EQ(p.z, 7);
    EXPECT_EQ(editor.getPoint(nullptr, L"\nPoint: ", p), RTNONE);
    EXPECT_EQ(editor.getPoint(nullptr, L"\nPoint: ", p), RTCAN);
    EXPECT_EQ(editor.getPoint(nullptr, L"\nPoint: ", p), RTCAN);
    EXPECT_EQ(editor.variables().pointValue(L"LASTPOINT").z, 7);
}

TEST_F(EditorInput, KeywordsAndFlagsHoldForOneRequest)
{
    script("\ns\nU\n_close\nc\n");
    KxGePoint3d p;
    std::wstring word;
    editor.initGet(RSG_NONULL, L"Schliessen Undo _Close Undo");
    EXPECT_EQ(editor.getPoint(nullptr, L"\nNext: ", p), RTKWORD);
    ASSERT_EQ(editor.lastKeyword(word), RTNORM);
    EXPECT_EQ(word, L"Close");
    editor.initGet(0, L"Close Undo _Close Undo");
    EXPECT_EQ(editor.getPoint(nullptr, L"\nNext: ", p), RTKWORD);
    EXPECT_EQ(editor.lastKeyword(word), RTNORM);
    EXPECT_EQ(word, L"Undo");
    editor.initGet(0, L"Schliessen Undo _Close Undo");
    EXPECT_EQ(editor.getPoint(nullptr, L"\nNext: ", p), RTKWORD);
    EXPECT_EQ(editor.lastKeyword(word), RTNORM);
    EXPECT_EQ(word, L"Close");
    // The keyword list is gone: "c" is no point and no keyword now.
    EXPECT_EQ(editor.getPoint(nullptr, L"\nNext: ", p), RTCAN);
    EXPECT_NE(transcript.find(L"Invalid point."), std::wstring::npos);
}

TEST_F(EditorInput, RealsWithRestrictions)
{
    script("abc\n0\n-2\n2.5\n-1\nS\n\n");
    double value = 0;
    editor.initGet(RSG_NOZERO | RSG_NONEG, L"Scale");
    ASSERT_EQ(editor.getReal(L"\nScale: ", value), RTNORM);
    EXPECT_EQ(value, 2.5);
    EXPECT_EQ(transcript,
              L"Scale: abc\nRequires a number.\nScale: 0\nValue must not be zero.\nScale: -2\n"
              L"Value must be positive.\nScale: 2.5\n");
    ASSERT_EQ(editor.getReal(L"\nScale: ", value), RTNORM);
    EXPECT_EQ(value, -1);
    editor.initGet(0, L"Scale");
    EXPECT_EQ(editor.getReal(L"\nScale: ", value), RTKWORD);
    EXPECT_EQ(editor.getReal(L"\nScale: ", value), RTNONE);
    EXPECT_EQ(value, -1);
}

TEST_F(EditorInput, StringsWithAndWithoutBlanks)
{
    script("first second\n  with blanks  \n\n");
    std::wstring text;
    ASSERT_EQ(editor.getString(false, L"\nName: ", text), RTNORM);
    EXPECT_EQ(text, L"first");
    ASSERT_EQ(editor.getString(false, L"\nName: ", text), RTNORM);
    EXPECT_EQ(text, L"second");
    ASSERT_EQ(editor.getString(true, L"\nText: ", text), RTNORM);
    EXPECT_EQ(text, L"  with blanks  ");
    EXPECT_EQ(editor.getString(true, L"\nText: ", text), RTNONE);
    EXPECT_EQ(text, L"");
}

TEST_F(EditorInput, KeywordRequests)
{
    script("x\nb\n^C\n");
    std::wstring word;
    editor.initGet(0, L"Oben Null Unten _Top Zero Bottom");
    ASSERT_EQ(editor.getKeyword(L"\nType: ", word), RTCAN);
    script("x\nU\nanything\n\n");
    editor.initGet(0, L"Oben Null Unten _Top Zero Bottom");
    ASSERT_EQ(editor.getKeyword(L"\nType: ", word), RTNORM);
    EXPECT_EQ(word, L"Bottom");
    EXPECT_NE(transcript.find(L"Invalid option keyword."), std::wstring::npos);
    editor.initGet(RSG_OTHER, L"Top");
    ASSERT_EQ(editor.getKeyword(L"\nType: ", word), RTNORM);
    EXPECT_EQ(word, L"anything");
    EXPECT_EQ(editor.getKeyword(L"\nType: ", word), RTNONE);
}

TEST_F(EditorInput, PointsAreInUserCoordinates)
{
    // User x along world y, origin at (10, 0, 0).
    ASSERT_EQ(db.setUcs({10, 0, 0}, {0, 1, 0}, {-1, 0, 0}), Kald::eOk);
    QueuedInputSource queue;
    editor.setInputSource(&queue);
    queue.push(InputEvent::typed(L"1,2"));
    queue.push(InputEvent::moved({100, 100, 0}));
    queue.push(InputEvent::picked({10, 5, 0}));
    queue.push(InputEvent::typed(L"@1<0"));
    KxGePoint3d p;
    ASSERT_EQ(editor.getPoint(nullptr, L"", p), RTNORM);
    EXPECT_EQ(p.x, 1);
    EXPECT_EQ(p.y, 2);
    // A pick is a world point; cursor motion is no answer.
    ASSERT_EQ(editor.getPoint(nullptr, L"", p), RTNORM);
    EXPECT_NEAR(p.x, 5, 1e-12);
    EXPECT_NEAR(p.y, 0, 1e-12);
    ASSERT_EQ(editor.getPoint(nullptr, L"", p), RTNORM);
    EXPECT_NEAR(p.x, 6, 1e-12);
    EXPECT_NEAR(p.y, 0, 1e-12);
    // The pick is echoed as its typed coordinates would be, in user units.
    EXPECT_EQ(transcript, L"1,2\n5.0000,0.0000\n@1<0\n");
}

TEST_F(EditorInput, SdkFunctionsCopyIntoCallerBuffers)
{
    script("4,5\nst\n" + std::string(3000, 'a') + "\n");
    double p[3] = {};
    const double base[3] = {1, 1, 0};
    ASSERT_EQ(kxedGetPoint(base, L"\nPoint: ", p), RTNORM);
    EXPECT_EQ(p[1], 5);
    wchar_t text[KXED_TEXT_SIZE];
    kxedInitGet(0, L"Justification Scale STyle _Justification Scale Style");
    ASSERT_EQ(kxedGetKword(L"\nOption: ", text), RTNORM);
    EXPECT_STREQ(text, L"Style");
    wchar_t last[KXED_TEXT_SIZE];
    ASSERT_EQ(kxedGetInput(last), RTNORM);
    EXPECT_STREQ(last, L"Style");
    ASSERT_EQ(kxedGetString(1, L"\nText: ", text), RTNORM);
    EXPECT_EQ(std::wstring(text), std::wstring(KXED_TEXT_SIZE - 1, L'a'));
    EXPECT_EQ(kxutPrintf(L"\n%ls has %d items at %.2f\n", L"list", 3, 1.5), RTNORM);
    EXPECT_NE(transcript.find(L"list has 3 items at 1.50\n"), std::wstring::npos);
}

TEST_F(EditorInput, NoEditorNoInput)
{
    host().editor = nullptr;
    double p[3];
    wchar_t text[KXED_TEXT_SIZE];
    EXPECT_EQ(kxedGetPoint(nullptr, L"", p), RTERROR);
    EXPECT_EQ(kxedGetString(0, L"", text), RTERROR);
    EXPECT_EQ(kxedPrompt(L"x"), RTERROR);
    EXPECT_EQ(kxgsActiveView(), nullptr);
}

}  // namespace
}  // namespace kaldo
