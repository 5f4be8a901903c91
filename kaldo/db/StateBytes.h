// An estimate of the memory a copy of a database object holds: what the
// undo history counts against its budget.
#pragma once

#include <cstddef>

class KxDbObject;

namespace kaldo {

// The object itself at a fixed size, plus what its lists and texts hold,
// read through the classes' public interfaces.
std::size_t stateBytes(const KxDbObject& obj);

}  // namespace kaldo
