#include "kxrxlinker.h"

#include "kxstring.h"
#include "kxtypes.h"

#include <QString>

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>

namespace {

std::wstring lastDlError()
{
    const char* error = dlerror();
    return error ? kxutFromMultiByte(error) : std::wstring(L"unknown error");
}

bool sameText(const std::wstring& a, const std::wstring& b)
{
    return QString::fromStdWString(a).compare(QString::fromStdWString(b), Qt::CaseInsensitive) == 0;
}

// Sets *message to text with its %1, %2, ... filled in, and returns false.
template <class... Args>
bool fail(std::wstring* message, const char* text, const Args&... args)
{
    if (message)
        *message = QString(text).arg(args...).toStdWString();
    return false;
}

QString q(const std::wstring& text)
{
    return QString::fromStdWString(text);
}

QString hex(std::uint32_t value)
{
    return QStringLiteral("0x%1").arg(value, 8, 16, QLatin1Char('0'));
}

// Points inEntry at info while an entry point runs.
class EntryScope {
public:
    EntryScope(KxRxModuleInfo*& slot, KxRxModuleInfo* info) : slot_(slot), previous_(slot)
    {
        slot_ = info;
    }
    ~EntryScope() { slot_ = previous_; }
    EntryScope(const EntryScope&) = delete;
    EntryScope& operator=(const EntryScope&) = delete;

private:
    KxRxModuleInfo*& slot_;
    KxRxModuleInfo* previous_;
};

}  // namespace

KX_RX_DEFINE_MEMBERS(KxRxDynamicLinker, KxRxObject)

KxRxDynamicLinker::~KxRxDynamicLinker()
{
    unloadAll();
}

bool KxRxDynamicLinker::loadModule(const wchar_t* path, std::wstring* message)
{
    namespace fs = std::filesystem;
    const std::wstring given = path ? path : L"";
    std::error_code ec;
    if (given.empty() || !fs::is_regular_file(fs::path(given), ec))
        return fail(message, "Cannot find the module file \"%1\".", q(given));
    const fs::path full = fs::absolute(fs::path(given), ec).lexically_normal();
    const auto already = std::find_if(modules_.begin(), modules_.end(), [&](const KxRxModuleInfo& m) {
        return fs::equivalent(fs::path(m.path), full, ec);
    });
    if (already != modules_.end())
        return fail(message, "The module \"%1\" is already loaded.", q(already->name));

    void* handle = dlopen(kxutToMultiByte(full.wstring()).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        return fail(message, "\"%1\" is not a loadable module: %2", q(full.wstring()),
                    q(lastDlError()));
    const auto entry = reinterpret_cast<KxRxEntryPointFn>(dlsym(handle, "kxrxEntryPoint"));
    if (!entry) {
        dlclose(handle);
        return fail(message, "\"%1\" is not a module: it has no kxrxEntryPoint.",
                        q(full.wstring()));
    }
    if (const auto version = reinterpret_cast<KxRxApiVersionFn>(dlsym(handle, "kxrxGetApiVersion"))) {
        const std::uint32_t built = version();
        if (built != kxrxApiVersion) {
            dlclose(handle);
            return fail(message,
                        "\"%1\" was built for interface version %2; this host provides %3.",
                        q(full.wstring()), hex(built), hex(kxrxApiVersion));
        }
    }

    KxRxModuleInfo info{full.stem().wstring(), full.wstring(), handle, {}};
    int result = Kald::eRetError;
    {
        EntryScope scope(inEntry_, &info);
        result = entry(Kald::kInitAppMsg, handle);
    }
    if (result != Kald::eRetOK) {
        dlclose(handle);
        return fail(message, "The module \"%1\" failed to initialise (result %2).", q(info.name),
                    QString::number(result));
    }
    modules_.push_back(std::move(info));
    return true;
}

bool KxRxDynamicLinker::unloadModule(const wchar_t* nameOrPath, std::wstring* message)
{
    const std::wstring wanted = nameOrPath ? nameOrPath : L"";
    const std::filesystem::path asPath(wanted);
    const auto it = std::find_if(modules_.begin(), modules_.end(), [&](const KxRxModuleInfo& m) {
        const std::filesystem::path path(m.path);
        return sameText(m.name, wanted) || sameText(path.filename().wstring(), wanted) ||
               m.path == std::filesystem::absolute(asPath).lexically_normal().wstring();
    });
    if (wanted.empty() || it == modules_.end())
        return fail(message, "The module \"%1\" is not loaded.", q(wanted));
    unload(static_cast<std::size_t>(it - modules_.begin()));
    return true;
}

void KxRxDynamicLinker::unloadAll()
{
    while (!modules_.empty())
        unload(modules_.size() - 1);
}

void KxRxDynamicLinker::unload(std::size_t index)
{
    KxRxModuleInfo info = std::move(modules_[index]);
    modules_.erase(modules_.begin() + static_cast<std::ptrdiff_t>(index));
    if (const auto entry = reinterpret_cast<KxRxEntryPointFn>(dlsym(info.handle, "kxrxEntryPoint"))) {
        EntryScope scope(inEntry_, &info);
        entry(Kald::kUnloadAppMsg, info.handle);
    }
    dlclose(info.handle);
}

bool KxRxDynamicLinker::registerMultiDocumentApp(void* appHandle)
{
    return record(appHandle, L"multiDocument");
}

bool KxRxDynamicLinker::registerUnloadableApp(void* appHandle)
{
    return record(appHandle, L"unloadable");
}

bool KxRxDynamicLinker::record(void* appHandle, const wchar_t* registration)
{
    KxRxModuleInfo* module = inEntry_ && inEntry_->handle == appHandle ? inEntry_ : nullptr;
    if (!module) {
        const auto it = std::find_if(modules_.begin(), modules_.end(),
                                     [appHandle](const KxRxModuleInfo& m) { return m.handle == appHandle; });
        module = it == modules_.end() ? nullptr : &*it;
    }
    if (!module || !appHandle)
        return false;
    module->registrations.emplace_back(registration);
    return true;
}
