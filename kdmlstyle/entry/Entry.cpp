// The module's entry points: initialisation registers the presence service
// and the commands, unload removes them.
#include "entry/CommandTable.h"
#include "entry/ModuleState.h"
#include "host/ResourceLibraryNames.h"

#include "kxhost.h"
#include "kxrx.h"
#include "kxrxcommands.h"
#include "kxrxlibrary.h"
#include "kxrxlinker.h"
#include "kxstring.h"
#include "kxtypes.h"

#include <dlfcn.h>

#include <array>

namespace kdml {

namespace {

constexpr const wchar_t* kPresenceService = L"KdMLStyleApps";

template <class T>
T* registryEntry(const wchar_t* key)
{
    KxRxDictionary* registry = kxrxSysRegistry();
    return registry ? T::cast(registry->at(key)) : nullptr;
}

// The entry-time resource library, found by the host from the name of the
// module's own file.
void* loadEntryResources()
{
    Dl_info info{};
    const void* instance = moduleState().instance;
    if (!instance || !dladdr(instance, &info) || !info.dli_fname || !*info.dli_fname)
        return nullptr;
    return LoadResourceDll(entryResourceLibraryName(kxutFromMultiByte(info.dli_fname)).c_str());
}

int initModule(void* appHandle)
{
    ModuleState& state = moduleState();
    state.entryResources = loadEntryResources();
    if (!state.entryResources)
        return Kald::eRetError;

    if (auto* linker = registryEntry<KxRxDynamicLinker>(kxrxDynamicLinkerKey))
        linker->registerMultiDocumentApp(appHandle);
    if (auto* linker = registryEntry<KxRxDynamicLinker>(kxrxDynamicLinkerKey))
        linker->registerUnloadableApp(appHandle);

    if (!kxrxServiceAt(kPresenceService))
        kxrxRegisterService(kPresenceService);
    for (const CommandRow& row : commandTable()) {
        auto* commands = registryEntry<KxEdCommandStack>(kxrxCommandStackKey);
        if (!commands)
            continue;
        std::array<wchar_t, 1024> localName{};
        kxLoadString(state.entryResources, row.localNameId, localName.data(),
                     static_cast<int>(localName.size()));
        commands->addCommand(kCommandGroup, row.globalName, localName.data(), row.flags, row.handler,
                             nullptr, -1, nullptr, nullptr);
        std::array<wchar_t, 1024> description{};
        kxLoadString(state.entryResources, row.descriptionId, description.data(),
                     static_cast<int>(description.size()));
        commands->setDescription(kCommandGroup, row.globalName, description.data());
    }
    return Kald::eRetOK;
}

int unloadModule()
{
    if (kxrxServiceAt(kPresenceService)) {
        if (auto* services = registryEntry<KxRxDictionary>(kxrxServiceDictionaryKey))
            delete services->remove(kPresenceService);
    }
    if (auto* commands = registryEntry<KxEdCommandStack>(kxrxCommandStackKey))
        commands->removeGroup(kCommandGroup);
    return Kald::eRetOK;
}

}  // namespace

}  // namespace kdml

extern "C" __attribute__((visibility("default"))) int kxrxEntryPoint(int message, void* appHandle)
{
    switch (message) {
    case Kald::kInitAppMsg:
        return kdml::initModule(appHandle);
    case Kald::kUnloadAppMsg:
        return kdml::unloadModule();
    default:
        return Kald::eRetOK;
    }
}

extern "C" __attribute__((visibility("default"))) std::uint32_t kxrxGetApiVersion()
{
    return kxrxApiVersion;
}
