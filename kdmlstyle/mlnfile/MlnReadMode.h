// How a .mln style block is read, and what came of it.
#pragma once

namespace kdml {

// lenient: the load dialog's reading (forgiving, under the fault guard);
// strict: MLINE's reading (a block out of form is refused).
enum class MlnReadMode { lenient, strict };

// found: the block was found and read; notFound: no block of that name (or
// no file); broken: strict reading found the block cut off or out of form.
enum class MlnReadResult { found, notFound, broken };

}  // namespace kdml
