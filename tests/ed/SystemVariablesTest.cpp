#include "EditorFixture.h"

#include "kaldo/ed/VariableText.h"
#include "kxed.h"
#include "kxstring.h"

namespace kaldo {
namespace {

class SystemVariablesTest : public EditorFixture {
protected:
    kxresbuf get(const wchar_t* name, int expected = RTNORM)
    {
        kxresbuf rb;
        EXPECT_EQ(kxedGetVar(name, &rb), expected) << name;
        return rb;
    }
    int setShort(const wchar_t* name, short value)
    {
        kxresbuf rb;
        rb.restype = RTSHORT;
        rb.resval.rint = value;
        return kxedSetVar(name, &rb);
    }
    int setReal(const wchar_t* name, double value)
    {
        kxresbuf rb;
        rb.restype = RTREAL;
        rb.resval.rreal = value;
        return kxedSetVar(name, &rb);
    }
    std::wstring getString(const wchar_t* name)
    {
        kxresbuf rb = get(name);
        EXPECT_EQ(rb.restype, RTSTR);
        std::wstring text = rb.resval.rstring;
        kald_free(rb.resval.rstring);
        return text;
    }
};

TEST_F(SystemVariablesTest, TypesAndDefaults)
{
    const std::pair<const wchar_t*, short> shorts[] = {
        {L"CMLJUST", 0}, {L"LISPCOMMANDHASMORE", 0}, {L"PICKBOX", 3}, {L"ERRNO", 0},   {L"MEASUREMENT", 0},
        {L"DIMZIN", 0},  {L"FILEDIA", 1},            {L"TILEMODE", 1}, {L"LUNITS", 2}, {L"LUPREC", 4},
        {L"AUNITS", 0},  {L"AUPREC", 0},             {L"ANGDIR", 0},
    };
    for (const auto& [name, value] : shorts) {
        const kxresbuf rb = get(name);
        EXPECT_EQ(rb.restype, RTSHORT) << name;
        EXPECT_EQ(rb.resval.rint, value) << name;
    }
    EXPECT_EQ(get(L"CMLSCALE").restype, RTREAL);
    EXPECT_EQ(get(L"cmlscale").resval.rreal, 1.0);
    EXPECT_EQ(get(L"ANGBASE").resval.rreal, 0.0);
    EXPECT_EQ(getString(L"CMLSTYLE"), L"STANDARD");
    const kxresbuf x = get(L"UCSXDIR");
    EXPECT_EQ(x.restype, RT3DPOINT);
    EXPECT_EQ(x.resval.rpoint[0], 1.0);
    EXPECT_EQ(get(L"UCSYDIR").resval.rpoint[1], 1.0);
    EXPECT_EQ(get(L"LASTPOINT").restype, RT3DPOINT);
    get(L"NOSUCHVAR", RTERROR);
}

TEST_F(SystemVariablesTest, RangesTypesAndReadOnly)
{
    EXPECT_EQ(setShort(L"CMLJUST", 2), RTNORM);
    EXPECT_EQ(setShort(L"CMLJUST", 3), RTERROR);
    EXPECT_EQ(setShort(L"CMLJUST", -1), RTERROR);
    EXPECT_EQ(setReal(L"CMLJUST", 1.0), RTERROR);
    EXPECT_EQ(get(L"CMLJUST").resval.rint, 2);
    EXPECT_EQ(setShort(L"PICKBOX", 50), RTNORM);
    EXPECT_EQ(setShort(L"PICKBOX", 51), RTERROR);
    EXPECT_EQ(setReal(L"CMLSCALE", -2.5), RTNORM);
    EXPECT_EQ(setReal(L"CMLSCALE", 0.0), RTNORM);
    EXPECT_EQ(setShort(L"CMLSCALE", 3), RTNORM);
    EXPECT_EQ(get(L"CMLSCALE").resval.rreal, 3.0);
    EXPECT_EQ(setShort(L"LISPCOMMANDHASMORE", 1), RTERROR);
    kxresbuf dir;
    dir.restype = RT3DPOINT;
    EXPECT_EQ(kxedSetVar(L"UCSXDIR", &dir), RTERROR);
    EXPECT_EQ(setShort(L"NOSUCHVAR", 1), RTERROR);
    kxresbuf text;
    text.restype = RTSTR;
    text.resval.rstring = kxutNewString(L"1");
    EXPECT_EQ(kxedSetVar(L"PICKBOX", &text), RTERROR);
    kald_free(text.resval.rstring);
}

TEST_F(SystemVariablesTest, DrawingVariablesLiveInTheDrawing)
{
    EXPECT_EQ(setShort(L"CMLJUST", 1), RTNORM);
    EXPECT_EQ(db.cmljust(), 1);
    EXPECT_EQ(setReal(L"CMLSCALE", 20.0), RTNORM);
    EXPECT_EQ(db.cmlscale(), 20.0);
    EXPECT_EQ(setShort(L"DIMZIN", 8), RTNORM);
    EXPECT_EQ(db.dimzin(), 8);
    EXPECT_EQ(setShort(L"MEASUREMENT", 1), RTNORM);
    EXPECT_EQ(db.measurement(), 1);
    ASSERT_EQ(db.setUcs({1, 2, 3}, {0, 1, 0}, {-1, 0, 0}), Kald::eOk);
    EXPECT_EQ(get(L"UCSXDIR").resval.rpoint[1], 1.0);
    EXPECT_EQ(get(L"UCSYDIR").resval.rpoint[0], -1.0);

    // The style must exist in the drawing; its name is found without case.
    kxresbuf style;
    style.restype = RTSTR;
    style.resval.rstring = kxutNewString(L"missing");
    EXPECT_EQ(kxedSetVar(L"CMLSTYLE", &style), RTERROR);
    kxutUpdString(L"standard", style.resval.rstring);
    EXPECT_EQ(kxedSetVar(L"CMLSTYLE", &style), RTNORM);
    kald_free(style.resval.rstring);
    // The name reads back as it was written, not as the dictionary spells it.
    EXPECT_EQ(getString(L"CMLSTYLE"), L"standard");

    // Host variables stay with the editor when the drawing goes.
    EXPECT_EQ(setShort(L"PICKBOX", 7), RTNORM);
    host().database = nullptr;
    get(L"CMLJUST", RTERROR);
    EXPECT_EQ(setShort(L"CMLJUST", 0), RTERROR);
    EXPECT_EQ(get(L"PICKBOX").resval.rint, 7);
}

TEST_F(SystemVariablesTest, ScriptInputShowsInLispCommandHasMore)
{
    EXPECT_EQ(get(L"LISPCOMMANDHASMORE").resval.rint, 0);
    script("");
    EXPECT_EQ(get(L"LISPCOMMANDHASMORE").resval.rint, 1);
    QueuedInputSource window;
    editor.setInputSource(&window);
    EXPECT_EQ(get(L"LISPCOMMANDHASMORE").resval.rint, 0);
}

// The values of every type as SETVAR shows, takes and refuses them are
// checked in a session (SetvarSession); here the rest: names that are no
// variable, blanks round a number, a relative point and an angle.
TEST_F(SystemVariablesTest, VariablesAsText)
{
    EXPECT_TRUE(isSystemVariable(L"cmlscale"));
    EXPECT_FALSE(isSystemVariable(L"LINE"));
    EXPECT_EQ(variableAsText(L"NOSUCHVAR"), L"");
    EXPECT_EQ(setVariableFromText(L"NOSUCHVAR", L"1"), RTERROR);

    EXPECT_EQ(setVariableFromText(L"CMLSCALE", L" 2.5 "), RTNORM);
    EXPECT_EQ(db.cmlscale(), 2.5);
    EXPECT_EQ(setVariableFromText(L"LASTPOINT", L"@1,2"), RTERROR);
    EXPECT_EQ(setVariableFromText(L"ANGBASE", L"90"), RTNORM);
    EXPECT_EQ(variableAsText(L"ANGBASE"), L"90");
}

}  // namespace
}  // namespace kaldo
