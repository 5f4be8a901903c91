#include "kaldo/app/Session.h"

#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/rx/Runtime.h"
#include "kaldo/util/CrashRecorder.h"
#include "kaldo/util/Profile.h"
#include "kxdbdatabase.h"

#include <algorithm>

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
}

Session::~Session()
{
    // Modules unload while the host is still installed: their unload
    // reaches the registry through it.
    runtime_.reset();
    host() = HostState{};
    running = nullptr;
}

Session* Session::current()
{
    return running;
}

void Session::openDrawing(const std::filesystem::path& path)
{
    dxf::DxfDrawing drawing = dxf::readDxfFile(path);
    std::swap(database_, drawing.database);
    keptSections_ = std::move(drawing.kept);
    drawingPath_ = std::filesystem::absolute(path);
    host().database = database_.get();
    host().drawingDir = drawingPath_.parent_path();
    savedChanges_ = database_->changeCount();
    ++drawingSerial_;
}

void Session::saveDrawing(const std::filesystem::path& path, bool replaceReadOnly)
{
    dxf::saveDxfFile(path, *database_, keptSections_, replaceReadOnly);
    drawingPath_ = std::filesystem::absolute(path);
    host().drawingDir = drawingPath_.parent_path();
    savedChanges_ = database_->changeCount();
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
