// The name a drawing file gives an entity's kind ("LINE", "MLINE", or the
// kind an unmodelled record was read as), for messages.
#pragma once

#include <string>

class KxDbEntity;

namespace kaldo {

std::wstring entityKindName(const KxDbEntity& entity);

}  // namespace kaldo
