// The editor's SDK functions: thin wrappers that reach the host's editor.
#include "kxed.h"

#include "kaldo/db/EntityPlane.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/PrintfText.h"
#include "kaldo/ed/Text.h"

#include <cstdarg>

using kaldo::currentEditor;

namespace {

KxGePoint3d pointOf(const double p[3])
{
    return {p[0], p[1], p[2]};
}

void store(const KxGePoint3d& p, double out[3])
{
    out[0] = p.x;
    out[1] = p.y;
    out[2] = p.z;
}

int copyText(int result, const std::wstring& text, wchar_t* out)
{
    if (result == RTNORM)
        kaldo::copyToBuffer(text, out, KXED_TEXT_SIZE);
    return result;
}

// A coordinate system given as a result buffer: world, user, or the plane
// of an entity's normal.
struct System {
    enum class Kind { World, User, Entity } kind;
    KxGeVector3d normal;
};

std::optional<System> systemOf(const kxresbuf* rb)
{
    if (!rb)
        return std::nullopt;
    if (rb->restype == RTSHORT && (rb->resval.rint == 0 || rb->resval.rint == 1))
        return System{rb->resval.rint == 0 ? System::Kind::World : System::Kind::User, {}};
    if (rb->restype == RT3DPOINT) {
        const KxGeVector3d normal(rb->resval.rpoint[0], rb->resval.rpoint[1], rb->resval.rpoint[2]);
        if (normal.length() > kxGeTolerance)
            return System{System::Kind::Entity, normalized(normal)};
    }
    return std::nullopt;
}

KxGePoint3d toWorld(const System& system, const KxGePoint3d& p, bool displacement)
{
    switch (system.kind) {
    case System::Kind::User: return kaldo::ucsToWorld(kaldo::currentUcs(), p, displacement);
    case System::Kind::Entity: {
        const kaldo::EntityPlane plane(system.normal);
        if (displacement) {
            const KxGeVector3d v = plane.toWorld(p - KxGePoint3d());
            return {v.x, v.y, v.z};
        }
        return plane.toWorld(p);
    }
    default: return p;
    }
}

KxGePoint3d fromWorld(const System& system, const KxGePoint3d& p, bool displacement)
{
    switch (system.kind) {
    case System::Kind::User: return kaldo::worldToUcs(kaldo::currentUcs(), p, displacement);
    case System::Kind::Entity: {
        const kaldo::EntityPlane plane(system.normal);
        if (displacement) {
            const KxGeVector3d v = plane.toPlane(p - KxGePoint3d());
            return {v.x, v.y, v.z};
        }
        return plane.toPlane(p);
    }
    default: return p;
    }
}

}  // namespace

int kxedInitGet(int flags, const wchar_t* keywords)
{
    if (!currentEditor())
        return RTERROR;
    currentEditor()->initGet(flags, keywords ? keywords : L"");
    return RTNORM;
}

int kxedGetPoint(const double* base, const wchar_t* prompt, double out[3])
{
    if (!currentEditor() || !out)
        return RTERROR;
    const KxGePoint3d basePoint = base ? pointOf(base) : KxGePoint3d();
    KxGePoint3d point;
    const int result = currentEditor()->getPoint(base ? &basePoint : nullptr, prompt ? prompt : L"", point);
    if (result == RTNORM)
        store(point, out);
    return result;
}

int kxedGetReal(const wchar_t* prompt, double* out)
{
    if (!currentEditor() || !out)
        return RTERROR;
    return currentEditor()->getReal(prompt ? prompt : L"", *out);
}

int kxedGetString(int acceptBlanks, const wchar_t* prompt, wchar_t* out)
{
    if (!currentEditor() || !out)
        return RTERROR;
    std::wstring text;
    const int result = currentEditor()->getString(acceptBlanks != 0, prompt ? prompt : L"", text);
    kaldo::copyToBuffer(text, out, KXED_TEXT_SIZE);
    return result;
}

int kxedGetKword(const wchar_t* prompt, wchar_t* out)
{
    if (!currentEditor() || !out)
        return RTERROR;
    std::wstring word;
    const int result = currentEditor()->getKeyword(prompt ? prompt : L"", word);
    kaldo::copyToBuffer(word, out, KXED_TEXT_SIZE);
    return result;
}

int kxedGetInput(wchar_t* out)
{
    if (!currentEditor() || !out)
        return RTERROR;
    std::wstring word;
    return copyText(currentEditor()->lastKeyword(word), word, out);
}

int kxedPrompt(const wchar_t* text)
{
    if (!currentEditor())
        return RTERROR;
    currentEditor()->write(text ? text : L"");
    return RTNORM;
}

int kxutPrintf(const wchar_t* format, ...)
{
    if (!currentEditor() || !format)
        return RTERROR;
    std::va_list args;
    va_start(args, format);
    const auto text = kaldo::printfText(format, args);
    va_end(args);
    if (!text)
        return RTERROR;
    currentEditor()->write(*text);
    return RTNORM;
}

std::wstring kxutFormatV(const wchar_t* format, std::va_list args)
{
    return format ? kaldo::printfText(format, args).value_or(std::wstring()) : std::wstring();
}

int kxedTextScr()
{
    if (!currentEditor())
        return RTERROR;
    currentEditor()->showTextScreen();
    return RTNORM;
}

int kxedRedraw(const kxds_name entity, int mode)
{
    if (!currentEditor())
        return RTERROR;
    currentEditor()->redraw(entity, mode);
    return RTNORM;
}

int kxedGetVar(const wchar_t* name, kxresbuf* out)
{
    if (!currentEditor() || !name || !out)
        return RTERROR;
    const auto value = currentEditor()->variables().get(name);
    if (!value)
        return RTERROR;
    kaldo::toResultBuffer(*value, *out);
    return RTNORM;
}

int kxedSetVar(const wchar_t* name, const kxresbuf* value)
{
    if (!currentEditor() || !name || !value)
        return RTERROR;
    const auto typed = kaldo::fromResultBuffer(*value);
    return typed ? currentEditor()->variables().set(name, *typed) : RTERROR;
}

int kxedTrans(const double pt[3], const kxresbuf* from, const kxresbuf* to, int disp, double out[3])
{
    const auto source = systemOf(from);
    const auto target = systemOf(to);
    if (!pt || !out || !source || !target)
        return RTERROR;
    store(fromWorld(*target, toWorld(*source, pointOf(pt), disp != 0), disp != 0), out);
    return RTNORM;
}

int kxdbUcs2Wcs(const double p[3], double out[3], int disp)
{
    if (!p || !out)
        return RTERROR;
    store(kaldo::ucsToWorld(kaldo::currentUcs(), pointOf(p), disp != 0), out);
    return RTNORM;
}

int kxdbWcs2Ucs(const double p[3], double out[3], int disp)
{
    if (!p || !out)
        return RTERROR;
    store(kaldo::worldToUcs(kaldo::currentUcs(), pointOf(p), disp != 0), out);
    return RTNORM;
}
