// Where a session finds and keeps its files.
#pragma once

#include <filesystem>

namespace kaldo {

struct SessionPaths {
    std::filesystem::path profile;     // the user's INI profile
    std::filesystem::path supportDir;  // KALDO.mln, kaldo.lin, kaldoiso.lin
    std::filesystem::path modulesDir;  // *.krx loaded at start
    std::filesystem::path crashDir;    // crash reports
};

// The defaults for an executable in exeDir (bin/ of the stage or of an
// installation under any prefix; the build fixes the relative folders):
//   profile  $XDG_CONFIG_HOME/kaldo/kaldo.ini (else ~/.config/kaldo/kaldo.ini)
//   support  <exeDir>/../share/kaldo/Support
//   modules  <exeDir>/../lib/<multiarch>/kaldo/modules
//   crash    $XDG_STATE_HOME/kaldo/crash (else ~/.local/state/kaldo/crash)
SessionPaths defaultSessionPaths(const std::filesystem::path& exeDir);

}  // namespace kaldo

namespace kaldo {

// The file a module name given by the user stands for: the name as given
// when that file exists, else the same name in modulesDir; ".krx" is added
// to a name without extension. Empty when no such file exists.
std::filesystem::path resolveModulePath(const std::filesystem::path& given,
                                        const std::filesystem::path& modulesDir);

}  // namespace kaldo
