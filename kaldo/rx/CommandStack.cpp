#include "kxrxcommands.h"

#include <QString>

#include <algorithm>

namespace {

bool sameName(const std::wstring& a, const wchar_t* b)
{
    return QString::fromStdWString(a).compare(QString::fromWCharArray(b), Qt::CaseInsensitive) == 0;
}

bool holdsName(const KxEdCommandGroup& group, const wchar_t* name)
{
    return std::any_of(group.commands.begin(), group.commands.end(), [name](const KxEdCommand& c) {
        return sameName(c.globalName, name) || sameName(c.localName, name);
    });
}

bool isEmpty(const wchar_t* text)
{
    return !text || !*text;
}

}  // namespace

KX_RX_DEFINE_MEMBERS(KxEdCommandStack, KxRxObject)

Kald::ErrorStatus KxEdCommandStack::addCommand(const wchar_t* group, const wchar_t* globalName,
                                               const wchar_t* localName, int flags,
                                               KxRxFunctionPtr handler, void* uiContext,
                                               int functionCode, void* resourceHandle,
                                               KxEdCommand** created)
{
    if (isEmpty(group) || isEmpty(globalName) || !handler)
        return Kald::eInvalidInput;
    if (isEmpty(localName))
        localName = globalName;

    auto it = std::find_if(groups_.begin(), groups_.end(),
                           [group](const KxEdCommandGroup& g) { return g.name == group; });
    if (it != groups_.end() && (holdsName(*it, globalName) || holdsName(*it, localName)))
        return Kald::eDuplicateKey;
    if (it == groups_.end()) {
        groups_.push_back(KxEdCommandGroup{group, {}});
        it = groups_.end() - 1;
    }
    it->commands.push_back(KxEdCommand{group, globalName, localName, flags, handler, uiContext,
                                       functionCode, resourceHandle, {}});
    if (created)
        *created = &it->commands.back();
    return Kald::eOk;
}

Kald::ErrorStatus KxEdCommandStack::setDescription(const wchar_t* group, const wchar_t* globalName,
                                                  const wchar_t* description)
{
    for (KxEdCommandGroup& g : groups_) {
        if (!group || g.name != group)
            continue;
        for (KxEdCommand& c : g.commands) {
            if (globalName && sameName(c.globalName, globalName)) {
                c.description = description ? description : L"";
                return Kald::eOk;
            }
        }
    }
    return Kald::eKeyNotFound;
}

Kald::ErrorStatus KxEdCommandStack::removeGroup(const wchar_t* group)
{
    const auto removed = std::erase_if(groups_, [group](const KxEdCommandGroup& g) {
        return group && g.name == group;
    });
    return removed ? Kald::eOk : Kald::eKeyNotFound;
}

const KxEdCommand* KxEdCommandStack::lookupCmd(const wchar_t* name) const
{
    if (isEmpty(name))
        return nullptr;
    const bool globalOnly = name[0] == L'_';
    if (globalOnly)
        ++name;
    if (!*name)
        return nullptr;
    for (auto g = groups_.rbegin(); g != groups_.rend(); ++g) {
        for (const KxEdCommand& c : g->commands) {
            if (sameName(c.globalName, name) || (!globalOnly && sameName(c.localName, name)))
                return &c;
        }
    }
    return nullptr;
}

const KxEdCommandGroup* KxEdCommandStack::group(const wchar_t* name) const
{
    const auto it = std::find_if(groups_.begin(), groups_.end(),
                                 [name](const KxEdCommandGroup& g) { return name && g.name == name; });
    return it == groups_.end() ? nullptr : &*it;
}
