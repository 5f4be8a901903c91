// The host's runtime: the system registry with the command stack, the
// service dictionary and the dynamic linker, the product pre-name, the
// modules folder and the current resource library. A Session owns one and
// installs it in kaldo::host(); destroy it while it is installed, so that the
// modules it unloads can still reach the registry.
#pragma once

#include "kxrx.h"
#include "kxrxcommands.h"
#include "kxrxlinker.h"

#include <filesystem>
#include <optional>
#include <string>

namespace kaldo {

class Runtime {
public:
    // The default product pre-name.
    static constexpr const wchar_t* kDefaultPreName = L"Kd";

    // Reads the pre-name from KALDO_PRODUCT_PRENAME when that is set.
    Runtime();
    // Unloads every module still loaded.
    ~Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    // The registry owns the objects below; they live as long as the runtime
    // unless someone takes them out of the registry.
    KxRxDictionary& registry() { return registry_; }
    KxEdCommandStack& commands() { return *commands_; }
    KxRxDictionary& services() { return *services_; }
    KxRxDynamicLinker& linker() { return *linker_; }

    // Empty or nullopt: the host reports no pre-name.
    void setProductPreName(std::optional<std::wstring> preName);
    const std::optional<std::wstring>& productPreName() const { return preName_; }

    // Where LoadResourceDll looks when the initialising module's folder does
    // not hold the library.
    void setModulesDir(std::filesystem::path dir) { modulesDir_ = std::move(dir); }
    const std::filesystem::path& modulesDir() const { return modulesDir_; }

    void* resourceHandle() const { return resourceHandle_; }
    void setResourceHandle(void* handle) { resourceHandle_ = handle; }

private:
    KxRxDictionary registry_;
    KxEdCommandStack* commands_;
    KxRxDictionary* services_;
    KxRxDynamicLinker* linker_;
    std::optional<std::wstring> preName_;
    std::filesystem::path modulesDir_;
    void* resourceHandle_ = nullptr;
};

}  // namespace kaldo
