// The value of the first group of a code among packed groups, for readers
// that want one group of an object's kept groups or of a record.
#pragma once

#include <optional>
#include <string_view>

#include "kxdbpackedgroups.h"

namespace kaldo {

inline std::optional<std::string_view> firstGroupValue(KxDbPackedGroupsView groups, int code)
{
    std::optional<std::string_view> found;
    groups.forEach([&](std::int16_t groupCode, std::uint8_t, std::string_view value) {
        if (groupCode == code)
            found = value;
        return !found;
    });
    return found;
}

}  // namespace kaldo
