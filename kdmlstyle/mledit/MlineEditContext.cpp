#include "mledit/MlineEditContext.h"

#include <cwchar>

#include "kxhost.h"

namespace kdml {

namespace {

constexpr std::size_t kScratchRoom = 128;

}  // namespace

void MlinePick::markHit()
{
    markPoint = hitPoint;
    markDistance = hitDistance;
    markSegment = hitSegment;
    markElement = hitElement;
}

bool sameEntity(const MlinePick& a, const MlinePick& b)
{
    return a.name.id[0] == b.name.id[0];
}

MlineEditContext::MlineEditContext()
{
    paramScratch.reserve(kScratchRoom);
}

MlineEditContext::~MlineEditContext()
{
    closePicks(*this);
}

const wchar_t* loadText(MlineEditContext& context, unsigned id)
{
    std::wcsncpy(context.text, kxmdKxResourceString(id, L""), KXED_TEXT_SIZE - 1);
    context.text[KXED_TEXT_SIZE - 1] = L'\0';
    return context.text;
}

void closePicks(MlineEditContext& context)
{
    const bool shared = context.second.mline == context.first.mline;
    if (context.first.mline)
        context.first.mline->close();
    if (context.second.mline && !shared)
        context.second.mline->close();
    context.first.mline = nullptr;
    context.second.mline = nullptr;
}

}  // namespace kdml
