// The module's commands: their group, names, descriptions, flags and
// handlers.
#pragma once

#include "kxrxcommands.h"

#include <span>

namespace kdml {

inline constexpr const wchar_t* kCommandGroup = L"KALDO_KDMLSTYLEGROUP";

struct CommandRow {
    const wchar_t* globalName;
    unsigned localNameId;    // string id in the entry-time resource library
    unsigned descriptionId;  // the same for the one line HELP shows
    int flags;
    KxRxFunctionPtr handler;
};

// The rows in the order of registration.
std::span<const CommandRow> commandTable();

}  // namespace kdml
