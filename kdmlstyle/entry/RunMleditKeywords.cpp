#include "entry/CommandBodies.h"

#include "kxed.h"
#include "kxhost.h"
#include "mledit/MleditDispatch.h"

namespace kdml {

namespace {

constexpr unsigned kToolKeywords = 4000;
constexpr unsigned kToolPrompt = 4001;

}  // namespace

// -MLEDIT: the tool by its two-letter code; cancel, empty input or an
// unknown code runs none.
void runMleditKeywords()
{
    kxedInitGet(0, kxmdKxResourceString(kToolKeywords, L""));
    wchar_t code[KXED_TEXT_SIZE] = {};
    if (kxedGetKword(kxmdKxResourceString(kToolPrompt, L""), code) != RTNORM)
        return;
    dispatchMleditTool(toolFromKeyword(code));
}

}  // namespace kdml
