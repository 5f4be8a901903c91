// Command-line options of the kaldo executable.
//
// Exit codes: 0 when the session ends normally (QUIT, or the script's last
// line was read), 2 when a file or folder the user named cannot be used
// (script, profile, Support folder, crash folder, a module given with --load),
// 64 for bad usage (unknown option, missing argument).
#pragma once

#include "kaldo/view/PlotSettings.h"

#include <QStringList>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kaldo {

constexpr int kExitOk = 0;
constexpr int kExitBadFile = 2;
constexpr int kExitUsage = 64;

enum class ExportBackground { White, Dark };

struct Options {
    // The drawing opened at start; without it the session starts a new one.
    std::optional<std::filesystem::path> drawing;
    // "-" reads the script from standard input.
    std::optional<std::filesystem::path> script;
    std::optional<std::filesystem::path> saveAs;   // --save, after the script
    std::optional<std::filesystem::path> saveExploded;  // --save-exploded, after --save
    std::optional<std::filesystem::path> saveExplodedR12;  // --save-exploded-r12, after --save-exploded
    std::optional<std::filesystem::path> exportTo; // --export FILE.svg|FILE.png, after --save
    int exportSize = 1600;                          // longer side of the picture, in pixels
    ExportBackground exportBackground = ExportBackground::White;
    // --plot FILE.pdf: the extents plotted after --export, centred, with
    // lineweights, in colour; --paper, --orientation and --plot-scale
    // choose the rest (A4, landscape, Fit without them).
    std::optional<std::filesystem::path> plotTo;
    view::PlotSettings plot;
    std::optional<std::filesystem::path> profile;
    std::optional<std::filesystem::path> supportDir;
    std::optional<std::filesystem::path> crashDir;
    std::vector<std::filesystem::path> modules;  // --load, in the order given
    bool autoloadModules = true;                   // false with --no-modules
    bool showHelp = false;
    bool showVersion = false;
};

struct ParsedOptions {
    Options options;
    std::string error;  // empty when the arguments were understood
};

// Parses the arguments (args[0] is the program name).
ParsedOptions parseOptions(const QStringList& args);

// The texts that --help and --version print.
std::string usageText();
std::string versionText();

}  // namespace kaldo
