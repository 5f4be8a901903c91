// The kinds of entity the host's own code tells apart, and the name a
// drawing file gives an entity's kind ("LINE", "MLINE", or the kind an
// unmodelled record was read as), for messages.
#pragma once

#include <string>

class KxDbEntity;

namespace kaldo {

// A class derived from one of these kinds is of that kind.
enum class EntityKind { Line, Arc, Circle, Polyline, Mline, Unmodelled, Other };

// One walk up the entity's class and its parents: the reader, the writer
// and the extents ask it of every entity of a drawing.
EntityKind entityKind(const KxDbEntity& entity);

std::wstring entityKindName(const KxDbEntity& entity);

}  // namespace kaldo
