// The host's dynamic linker: loads modules (.krx shared libraries) and
// unloads them, and takes the registrations a module makes for itself while
// it initialises.
//
// A module exports, with C linkage:
//   int kxrxEntryPoint(int message, void* appHandle);   // required
//   unsigned kxrxGetApiVersion();                      // optional
// The host sends Kald::kInitAppMsg after loading and Kald::kUnloadAppMsg
// before unloading; appHandle is the module's library handle. The entry
// point answers Kald::eRetOK or Kald::eRetError.
#pragma once

#include "kxrx.h"

#include <cstdint>
#include <string>
#include <vector>

// The interface version this host implements: year 2021, release 50.
inline constexpr std::uint32_t kxrxApiVersion = 0x07E50032;

using KxRxEntryPointFn = int (*)(int message, void* appHandle);
using KxRxApiVersionFn = std::uint32_t (*)();

struct KxRxModuleInfo {
    std::wstring name;   // file name without extension, e.g. "KdMLStyle"
    std::wstring path;   // full path as loaded
    void* handle = nullptr;
    // Registrations the module made for itself, in call order:
    // L"multiDocument", L"unloadable".
    std::vector<std::wstring> registrations;
};

class KxRxDynamicLinker : public KxRxObject {
public:
    KxRxDynamicLinker() = default;
    ~KxRxDynamicLinker() override;
    KxRxDynamicLinker(const KxRxDynamicLinker&) = delete;
    KxRxDynamicLinker& operator=(const KxRxDynamicLinker&) = delete;

    KX_RX_DECLARE_MEMBERS(KxRxDynamicLinker)

    // Loads the module at path and initialises it. On failure returns false
    // and, when message is given, says why: the file is missing, it is not a
    // loadable library, it has no entry point, it was built for another
    // interface version, it is already loaded, or its initialisation failed
    // (the library is then unloaded again).
    bool loadModule(const wchar_t* path, std::wstring* message = nullptr);
    // Sends the unload message and unloads the module given by name (with or
    // without extension, case ignored) or by full path.
    bool unloadModule(const wchar_t* nameOrPath, std::wstring* message = nullptr);
    // Unloads every module, the latest loaded first.
    void unloadAll();

    // Loaded modules in load order; the one initialising is not listed yet.
    const std::vector<KxRxModuleInfo>& loadedModules() const { return modules_; }
    // The module whose entry point is running (init or unload), or null.
    const KxRxModuleInfo* moduleInEntry() const { return inEntry_; }

    // Registrations a module makes for itself during initialisation, in this
    // order: it works with several open drawings; it may be unloaded while
    // the host runs. Each returns false for a handle that is not a module
    // being initialised or loaded.
    bool registerMultiDocumentApp(void* appHandle);
    bool registerUnloadableApp(void* appHandle);

private:
    bool record(void* appHandle, const wchar_t* registration);
    void unload(std::size_t index);

    std::vector<KxRxModuleInfo> modules_;
    KxRxModuleInfo* inEntry_ = nullptr;
};
