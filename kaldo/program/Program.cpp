// The kaldo program, run by the launcher (kaldo/main.cpp): parses the
// command line, checks the files it names, starts a session and runs its
// command loop: on a script, or - without one and with a display - in the
// window, where commands run on a command thread of their own. Exit codes:
// see kaldo/app/Options.h.
#include "kaldo/program/ProgramEntry.h"

#include "kaldo/app/CommandLoop.h"
#include "kaldo/app/Options.h"
#include "kaldo/app/Plotting.h"
#include "kaldo/app/RuntimeFolder.h"
#include "kaldo/app/Session.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kaldo/ui/WindowSession.h"
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileStreamBuffer.h"
#include "kaldo/util/TerminalText.h"
#include "kaldo/view/PictureExport.h"
#include "kxdbdatabase.h"
#include "kxstring.h"

#include <QApplication>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// Without a display, Qt would refuse to start: dialogs then go offscreen.
void chooseOffscreenWithoutDisplay()
{
    if (!std::getenv("QT_QPA_PLATFORM") && !std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

// Messages name files and quote drawings: they reach the terminal with
// their control characters shown.
void complain(std::string_view message)
{
    std::cerr << "kaldo: " << kaldo::terminalText(message) << "\n";
}

void complain(std::wstring_view message)
{
    std::cerr << "kaldo: " << kaldo::terminalText(message) << "\n";
}

int fail(const std::string& message, int code)
{
    complain(message);
    return code;
}

// The paths of the session: the defaults, overridden by the options.
kaldo::SessionPaths sessionPaths(const kaldo::Options& options)
{
    kaldo::SessionPaths paths =
        kaldo::defaultSessionPaths(QCoreApplication::applicationDirPath().toStdString());
    if (options.profile)
        paths.profile = *options.profile;
    if (options.supportDir)
        paths.supportDir = *options.supportDir;
    if (options.crashDir)
        paths.crashDir = *options.crashDir;
    return paths;
}

// Why the files and folders the session needs cannot be used; empty when
// they can. A profile named that does not exist yet is made, empty, as a
// first run makes the default one.
std::string checkPaths(const kaldo::Options& options, const kaldo::SessionPaths& paths)
{
    std::error_code ec;
    if (options.profile) {
        if (!std::filesystem::exists(*options.profile, ec)) {
            if (options.profile->has_parent_path())
                std::filesystem::create_directories(options.profile->parent_path(), ec);
            if (!std::ofstream(*options.profile, std::ios::app))
                return "cannot create the profile '" + options.profile->string() + "'.";
        }
        try {
            kaldo::openForReading(*options.profile);
        } catch (const kaldo::FileError& e) {
            return std::string("the profile: ") + e.what();
        }
    }
    if (!std::filesystem::is_directory(paths.supportDir, ec))
        return "the Support folder '" + paths.supportDir.string() + "' does not exist (choose one with --support DIR).";
    return {};
}

void printTranscript(std::wstring_view text)
{
    std::cout << kaldo::terminalText(text) << std::flush;
}

}  // namespace

int kaldoRunProgram(int argc, char** argv)
{
    chooseOffscreenWithoutDisplay();
    kaldo::provideRuntimeFolder();
    QApplication app(argc, argv);
    const kaldo::ParsedOptions parsed = kaldo::parseOptions(app.arguments());
    if (!parsed.error.empty()) {
        complain(parsed.error);
        std::cerr << kaldo::usageText();
        return kaldo::kExitUsage;
    }
    const kaldo::Options& options = parsed.options;
    if (options.showHelp) {
        std::cout << kaldo::usageText();
        return kaldo::kExitOk;
    }
    if (options.showVersion) {
        std::cout << kaldo::versionText();
        return kaldo::kExitOk;
    }

    const bool window = !options.script && kaldo::ui::haveDisplay();
    std::unique_ptr<kaldo::FileStreamBuffer> scriptBytes;
    std::unique_ptr<std::istream> scriptFile;
    if (!options.script && !window) {
        std::cerr << "kaldo: no display for the window; reading commands from standard input.\n";
    } else if (options.script && *options.script != "-") {
        try {
            scriptBytes = std::make_unique<kaldo::FileStreamBuffer>(*options.script);
        } catch (const kaldo::FileError& e) {
            return fail(std::string("the script: ") + e.what(), kaldo::kExitBadFile);
        }
        scriptFile = std::make_unique<std::istream>(scriptBytes.get());
    }
    const kaldo::SessionPaths paths = sessionPaths(options);
    if (const std::string problem = checkPaths(options, paths); !problem.empty())
        return fail(problem, kaldo::kExitBadFile);

    std::unique_ptr<kaldo::Session> session;
    try {
        session = std::make_unique<kaldo::Session>(paths);
    } catch (const kaldo::SessionError& e) {
        return fail(e.what(), kaldo::kExitBadFile);
    }
    std::vector<std::string> repairs;
    if (options.drawing) {
        try {
            repairs = session->openDrawing(*options.drawing);
        } catch (const kaldo::dxf::DxfError& e) {
            return fail(std::string("cannot open the drawing: ") + e.what(), kaldo::kExitBadFile);
        }
    }
    // Lines typed by a person at a terminal are no script: dialogs may open.
    const bool personTypes = !options.script && isatty(STDIN_FILENO);
    kaldo::ScriptInputSource input(scriptFile ? *scriptFile : std::cin, !personTypes);
    session->editor().setInputSource(&input);
    session->editor().setTranscript(printTranscript);
    for (const std::string& repair : repairs)
        session->editor().write(L"Repaired: " + kxutFromMultiByte(repair) + L"\n");

    for (const std::filesystem::path& module : options.modules) {
        std::wstring message;
        if (!session->loadModule(module, message)) {
            complain(message);
            return kaldo::kExitBadFile;
        }
    }
    if (options.autoloadModules) {
        for (const std::wstring& message : session->loadModulesFolder())
            complain(message);
    }
    for (const std::wstring& problem : session->loadAliases())
        std::cerr << "kaldo: " << kxutToMultiByte(problem) << "\n";

    if (window) {
        kaldo::ui::runWindowSession(*session);
        session->editor().setTranscript(printTranscript);
    } else {
        kaldo::runCommandLoop(*session);
    }
    session->editor().write(L"\n");
    // A script that could not be read to its end ran only in part: nothing
    // is saved or exported from it.
    if (scriptBytes && !scriptBytes->problem().empty())
        return fail("the script: " + scriptBytes->problem(), kaldo::kExitBadFile);
    if (options.saveAs) {
        try {
            session->saveDrawing(*options.saveAs);
        } catch (const kaldo::dxf::DxfError& e) {
            return fail(std::string("the drawing was not saved: ") + e.what(), kaldo::kExitBadFile);
        }
    }
    if (options.saveExploded) {
        try {
            session->saveExplodedCopy(*options.saveExploded);
        } catch (const kaldo::dxf::DxfError& e) {
            return fail(std::string("the exploded copy was not saved: ") + e.what(), kaldo::kExitBadFile);
        }
    }
    if (options.saveExplodedR12) {
        try {
            session->saveExplodedCopy(*options.saveExplodedR12, false, kaldo::CopyVersion::R12);
        } catch (const kaldo::dxf::DxfError& e) {
            return fail(std::string("the R12 exploded copy was not saved: ") + e.what(), kaldo::kExitBadFile);
        }
    }
    if (options.exportTo) {
        const kaldo::view::Background background = options.exportBackground == kaldo::ExportBackground::Dark
                                                       ? kaldo::view::Background::Dark
                                                       : kaldo::view::Background::White;
        kaldo::view::RenderNotes notes;
        const std::string problem = kaldo::view::exportPicture(session->database(), *options.exportTo,
                                                               {options.exportSize, background}, &notes,
                                                               session->textStyleFonts());
        session->editor().write(kaldo::view::describeNotes(notes, L"the picture"));
        if (!problem.empty())
            return fail(problem, kaldo::kExitBadFile);
    }
    if (options.plotTo) {
        std::string problem;
        std::wstring report;
        try {
            problem = kaldo::DrawingPlot(*session).write(options.plot, *options.plotTo, report);
        } catch (...) {
            problem = "cannot plot '" + options.plotTo->string()
                + "': " + kaldo::view::failureReason(std::current_exception()) + ".";
        }
        session->editor().write(report);
        if (!problem.empty())
            return fail(problem, kaldo::kExitBadFile);
    }
    // The session ends (modules unload), but the drawing is not torn down
    // object by object: its memory goes back in bulk with the process's.
    const std::unique_ptr<KxDbDatabase> drawing = session->releaseDrawingAtExit();
    session.reset();
    std::cout.flush();
    std::cerr.flush();
    std::_Exit(kaldo::kExitOk);
}
