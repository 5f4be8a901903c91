// The host's command stack: commands that modules and the host register in
// named groups, each with a global (language-independent) name and a local
// name, looked up by either without regard to case.
#pragma once

#include "kxrx.h"
#include "kxtypes.h"

#include <string>
#include <vector>

using KxRxFunctionPtr = void (*)();

// Command flag bits. The stack stores them with the command; the command
// loop reads them.
namespace KxCmdFlags {
constexpr int kModal = 0;        // runs only at the command prompt
constexpr int kTransparent = 1;  // may run while another command waits
constexpr int kUsePickSet = 2;   // may use the objects selected before it started
}  // namespace KxCmdFlags

struct KxEdCommand {
    std::wstring group;
    std::wstring globalName;
    std::wstring localName;
    int flags = 0;
    KxRxFunctionPtr handler = nullptr;
    void* uiContext = nullptr;       // kept for the caller, never used by the stack
    int functionCode = -1;           // kept for the caller, never used by the stack
    void* resourceHandle = nullptr;  // kept for the caller, never used by the stack
    std::wstring description;        // one line saying what it does (HELP lists it)
};

struct KxEdCommandGroup {
    std::wstring name;
    std::vector<KxEdCommand> commands;  // in the order they were added
};

class KxEdCommandStack : public KxRxObject {
public:
    KX_RX_DECLARE_MEMBERS(KxEdCommandStack)

    // Adds a command to group (created on first use, on top of the stack).
    // A null or empty local name means the global one. Fails with
    // eInvalidInput for a missing group, global name or handler, and with
    // eDuplicateKey when the group already holds the global or local name.
    // created, when given, receives the stored command (valid until the
    // stack changes).
    Kald::ErrorStatus addCommand(const wchar_t* group, const wchar_t* globalName,
                                 const wchar_t* localName, int flags, KxRxFunctionPtr handler,
                                 void* uiContext = nullptr, int functionCode = -1,
                                 void* resourceHandle = nullptr, KxEdCommand** created = nullptr);
    // Gives the command of group with that global name its one-line
    // description (eKeyNotFound when there is none).
    Kald::ErrorStatus setDescription(const wchar_t* group, const wchar_t* globalName, const wchar_t* description);
    // Removes the group and all its commands (eKeyNotFound when missing).
    Kald::ErrorStatus removeGroup(const wchar_t* group);

    // The command a typed name runs, or null. A leading "_" matches global
    // names only; otherwise global and local names match. Case is ignored.
    // Groups are searched from the top (the latest added) down. The command
    // stays valid until the stack changes: copy it before running it.
    const KxEdCommand* lookupCmd(const wchar_t* name) const;

    // The groups, oldest (bottom of the stack) first.
    const std::vector<KxEdCommandGroup>& groups() const { return groups_; }
    const KxEdCommandGroup* group(const wchar_t* name) const;

private:
    std::vector<KxEdCommandGroup> groups_;
};
