#include "kaldo/app/Session.h"

#include "kaldo/app/CommandLoop.h"
#include "kaldo/app/MlineExplosion.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/GroupReader.h"
#include "kaldo/dxf/R12Writer.h"
#include "kaldo/dxf/TablesSection.h"
#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/rx/Runtime.h"
#include "kaldo/util/CrashRecorder.h"
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/Profile.h"
#include "kaldo/view/ColorPalette.h"
#include "kxdbdatabase.h"
#include "kxrxcommands.h"
#include "kxstring.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

namespace kaldo {

namespace {
Session* running = nullptr;
}

Session::Session(SessionPaths paths) : paths_(std::move(paths))
{
    try {
        profile_ = std::make_unique<Profile>(paths_.profile);
    } catch (const std::exception& e) {
        throw SessionError(e.what());
    }
    crashRecorder_ = std::make_unique<CrashRecorder>(paths_.crashDir);
    database_ = std::make_unique<KxDbDatabase>();
    savedChanges_ = database_->changeCount();
    editor_ = std::make_unique<Editor>();
    runtime_ = std::make_unique<Runtime>();
    runtime_->setModulesDir(paths_.modulesDir);

    HostState& state = host();
    state.database = database_.get();
    state.editor = editor_.get();
    state.runtime = runtime_.get();
    state.profile = profile_.get();
    state.crashRecorder = crashRecorder_.get();
    state.supportDir = paths_.supportDir;
    state.drawingDir.clear();
    running = this;

    registerHostCommands(runtime_->commands());
    // A transparent command typed with an apostrophe at a prompt runs
    // there, unless it is the command that asks.
    editor_->setTransparentHandler([this](std::wstring_view typed) {
        const KxEdCommand* command = findCommand(std::wstring(typed));
        if (!command || !(command->flags & KxCmdFlags::kTransparent) || command->globalName == editor_->runningCommand())
            return false;
        const KxRxFunctionPtr handler = command->handler;
        handler();
        return true;
    });
    editor_->setGripHandler([this](const KxDbObjectId& entity, int index, const KxGePoint3d& grip) {
        runGripDrag(*this, entity, index, grip);
    });
}

Session::~Session()
{
    // Modules unload while the host is still installed: their unload
    // reaches the registry through it.
    runtime_.reset();
    host() = HostState{};
    running = nullptr;
}

std::unique_ptr<KxDbDatabase> Session::releaseDrawingAtExit()
{
    return std::move(database_);
}

std::map<std::string, std::string> Session::textStyleFonts() const
{
    return dxf::textStyleFonts(keptSections_);
}

Session* Session::current()
{
    return running;
}

std::vector<std::string> Session::openDrawing(const std::filesystem::path& path, const dxf::ProgressReport& report)
{
    dxf::DxfDrawing drawing = dxf::readDxfFile(path, report);
    std::swap(database_, drawing.database);
    keptSections_ = std::move(drawing.kept);
    drawingPath_ = std::filesystem::absolute(path);
    host().database = database_.get();
    host().drawingDir = drawingPath_.parent_path();
    savedChanges_ = database_->changeCount();
    ++drawingSerial_;
    // What the reading took for its batches is free now: it goes back to the
    // system before the drawing is worked on and saved, instead of staying
    // in the heaps as a part of every later peak.
    malloc_trim(0);
    return std::move(drawing.repairs);
}

void Session::newDrawing()
{
    database_ = std::make_unique<KxDbDatabase>();
    keptSections_ = {};
    drawingPath_.clear();
    host().database = database_.get();
    host().drawingDir.clear();
    savedChanges_ = database_->changeCount();
    ++drawingSerial_;
}

std::vector<std::wstring> Session::loadAliases()
{
    const std::filesystem::path file = paths_.supportDir / "kaldo.pgp";
    std::error_code ec;
    if (!std::filesystem::exists(file, ec))
        return {};
    std::vector<std::wstring> problems;
    std::string bytes;
    try {
        bytes = readFile(file);
    } catch (const FileError& e) {
        return {kxutFromMultiByte(e.what())};
    }
    aliases_ = CommandAliases::parse(kxutFromMultiByte(bytes), problems);
    for (const CommandAliases::Alias& alias : aliases_.aliases()) {
        if (!runtime_->commands().lookupCmd(alias.command.c_str()))
            problems.push_back(L"line " + std::to_wstring(alias.line) + L": the alias " + alias.alias
                               + L" names no command (" + alias.command + L").");
    }
    for (std::wstring& problem : problems)
        problem = L"kaldo.pgp " + problem;
    return problems;
}

const KxEdCommand* Session::findCommand(const std::wstring& typed) const
{
    if (const KxEdCommand* command = runtime_->commands().lookupCmd(typed.c_str()))
        return command;
    const std::wstring aliased = aliases_.commandFor(typed);
    return aliased.empty() ? nullptr : runtime_->commands().lookupCmd(aliased.c_str());
}

void Session::saveDrawing(const std::filesystem::path& path, bool replaceReadOnly, const dxf::ProgressReport& report)
{
    dxf::saveDxfFile(path, *database_, keptSections_, replaceReadOnly, report);
    drawingPath_ = std::filesystem::absolute(path);
    host().drawingDir = drawingPath_.parent_path();
    savedChanges_ = database_->changeCount();
}

// The copy is the drawing written and read back, so that it shares nothing
// with the working drawing; it is written into memory, not beside the file.
int Session::saveExplodedCopy(const std::filesystem::path& path, bool replaceReadOnly, CopyVersion version)
{
    const auto failed = [] { return dxf::DxfError(0, std::string("cannot make the copy: ") + std::strerror(errno)); };
    const int fd = memfd_create("kaldo-exploded-copy", MFD_CLOEXEC);
    if (fd < 0)
        throw failed();
    const std::unique_ptr<const int, void (*)(const int*)> closer(&fd, [](const int* open) { ::close(*open); });
    dxf::writeDxf(fd, *database_, keptSections_);
    std::string text;
    char buffer[1 << 16];
    for (off_t at = 0;;) {
        const ssize_t got = ::pread(fd, buffer, sizeof buffer, at);
        if (got < 0)
            throw failed();
        if (got == 0)
            break;
        text.append(buffer, std::size_t(got));
        at += got;
    }
    dxf::GroupReader reader(text);
    dxf::DxfDrawing copy = dxf::readDxf(reader);
    if (version == CopyVersion::Current) {
        const int exploded = explodeAllMlines(*copy.database, {FillForm::Hatch, true, true});
        dxf::saveDxfFile(path, *copy.database, copy.kept, replaceReadOnly);
        return exploded;
    }
    const int exploded = explodeAllMlines(*copy.database, {FillForm::Solids, true, false});
    const dxf::LeftOutKinds leftOut =
        dxf::saveDxfFileR12(path, *copy.database, copy.kept, view::nearestColorIndex, replaceReadOnly);
    if (!leftOut.empty()) {
        std::wstring kinds;
        for (const auto& [kind, count] : leftOut)
            kinds += (kinds.empty() ? L"" : L", ") + std::to_wstring(count) + L" " + kxutFromMultiByte(kind);
        editor_->write(L"\nLeft out of the R12 copy, which cannot hold them: " + kinds + L".\n");
    }
    return exploded;
}

bool Session::modified() const
{
    return database_->changeCount() != savedChanges_;
}

bool Session::loadModule(const std::filesystem::path& module, std::wstring& message)
{
    const std::filesystem::path path = resolveModulePath(module, paths_.modulesDir);
    if (path.empty()) {
        message = L"Cannot find module \"" + module.wstring() + L"\".";
        return false;
    }
    return runtime_->linker().loadModule(path.wstring().c_str(), &message);
}

bool Session::unloadModule(const std::wstring& module, std::wstring& message)
{
    return runtime_->linker().unloadModule(module.c_str(), &message);
}

std::vector<std::wstring> Session::loadModulesFolder()
{
    const auto isLoaded = [this](const std::filesystem::path& module) {
        const auto& loaded = runtime_->linker().loadedModules();
        return std::any_of(loaded.begin(), loaded.end(), [&](const KxRxModuleInfo& info) {
            std::error_code ec;
            return std::filesystem::equivalent(info.path, module, ec);
        });
    };
    std::vector<std::filesystem::path> modules;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(paths_.modulesDir, ec)) {
        if (entry.is_regular_file(ec) && entry.path().extension() == ".krx" && !isLoaded(entry.path()))
            modules.push_back(entry.path());
    }
    std::sort(modules.begin(), modules.end());
    std::vector<std::wstring> failures;
    for (const std::filesystem::path& module : modules) {
        std::wstring message;
        if (!loadModule(module, message))
            failures.push_back(message);
    }
    return failures;
}

}  // namespace kaldo
