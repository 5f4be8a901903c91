// The runtime folder Qt asks the session for.
#pragma once

namespace kaldo {

// When XDG_RUNTIME_DIR is not set, names the private folder Qt would fall
// back to (made with mode 0700 in the temporary folder), so that Qt does not
// warn about it on standard error. Leaves the variable unset when that
// folder is not ours alone.
void provideRuntimeFolder();

}  // namespace kaldo
