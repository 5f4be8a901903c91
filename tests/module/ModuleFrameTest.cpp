// The real module loaded through the host's dynamic linker.
#include "TreePaths.h"
#include "rx/InstalledRuntime.h"

#include "kxhost.h"
#include "kxrx.h"
#include "kxrxcommands.h"
#include "kxrxlinker.h"
#include "kxstring.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

fs::path modulesDir()
{
    return stagedPaths().modulesDir;
}

fs::path modulePath()
{
    return modulesDir() / "KdMLStyle.krx";
}
constexpr const wchar_t* kGroup = L"KALDO_KDMLSTYLEGROUP";
constexpr const wchar_t* kService = L"KdMLStyleApps";

class ModuleFrame : public ::testing::Test {
protected:
    ModuleFrame() { runtime().setModulesDir(modulesDir()); }

    kaldo::Runtime& runtime() { return installed_.runtime; }
    KxEdCommandStack& commands() { return runtime().commands(); }

    void load(const fs::path& path = modulePath())
    {
        std::wstring message;
        ASSERT_TRUE(runtime().linker().loadModule(path.wstring().c_str(), &message))
            << kxutToMultiByte(message);
    }
    KxRxEntryPointFn entryPoint()
    {
        const auto& modules = runtime().linker().loadedModules();
        if (modules.empty())
            return nullptr;
        return reinterpret_cast<KxRxEntryPointFn>(dlsym(modules.front().handle, "kxrxEntryPoint"));
    }
    std::vector<std::wstring> groupNames()
    {
        std::vector<std::wstring> names;
        for (const KxEdCommandGroup& g : commands().groups())
            names.push_back(g.name);
        return names;
    }

private:
    InstalledRuntime installed_;
};

// A folder of its own under the system's temporary folder, removed at the end.
struct TempFolder {
    fs::path path = fs::temp_directory_path() /
                    ("kdml-" + std::to_string(::getpid()) + "-" +
                     ::testing::UnitTest::GetInstance()->current_test_info()->name());
    TempFolder() { fs::create_directories(path); }
    ~TempFolder() { fs::remove_all(path); }
};

}  // namespace

TEST_F(ModuleFrame, InitialisationRegistersTheServiceAndTheCommandTableInOrder)
{
    load();
    const KxEdCommandGroup* group = commands().group(kGroup);
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(group->commands.size(), 4u);
    const wchar_t* globals[] = {L"MLSTYLE", L"MLEDIT", L"-MLEDIT", L"MLINE"};
    const int flags[] = {2, 2, 2, 0};
    for (std::size_t i = 0; i < 4; ++i) {
        const KxEdCommand& cmd = group->commands[i];
        EXPECT_EQ(cmd.globalName, globals[i]);
        EXPECT_EQ(cmd.localName, globals[i]) << "local names come from the resource library";
        EXPECT_EQ(cmd.flags, flags[i]);
        EXPECT_NE(cmd.handler, nullptr);
        EXPECT_EQ(cmd.uiContext, nullptr);
        EXPECT_EQ(cmd.functionCode, -1);
        EXPECT_EQ(cmd.resourceHandle, nullptr);
    }
    EXPECT_NE(commands().lookupCmd(L"_mline"), nullptr);
    EXPECT_NE(commands().lookupCmd(L"-mledit"), nullptr);
    EXPECT_NE(kxrxServiceAt(kService), nullptr);

    const auto& modules = runtime().linker().loadedModules();
    ASSERT_EQ(modules.size(), 1u);
    EXPECT_EQ(modules[0].name, L"KdMLStyle");
    EXPECT_EQ(modules[0].registrations, (std::vector<std::wstring>{L"multiDocument", L"unloadable"}));

    const auto version =
        reinterpret_cast<KxRxApiVersionFn>(dlsym(modules[0].handle, "kxrxGetApiVersion"));
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(version(), 0x07E50032u);
}

TEST_F(ModuleFrame, OtherMessagesAnswerZeroAndChangeNothing)
{
    load();
    KxRxEntryPointFn entry = entryPoint();
    ASSERT_NE(entry, nullptr);
    const void* appHandle = runtime().linker().loadedModules().front().handle;
    for (int message : {0, 3, 4, 99, -1}) {
        EXPECT_EQ(entry(message, const_cast<void*>(appHandle)), 0) << message;
        ASSERT_NE(commands().group(kGroup), nullptr);
        EXPECT_EQ(commands().group(kGroup)->commands.size(), 4u);
        EXPECT_NE(kxrxServiceAt(kService), nullptr);
        EXPECT_EQ(runtime().services().numEntries(), 1u);
    }
}

// Unloading removes the module's own group and service, and nothing of the
// host's or of another module's, also when its service has gone already.
TEST_F(ModuleFrame, UnloadRemovesTheServiceAndTheGroupOnly)
{
    commands().addCommand(L"HOSTGROUP", L"LINE", L"LINE", 0, [] {});
    load();
    std::wstring message;
    ASSERT_TRUE(runtime().linker().unloadModule(L"kdmlstyle", &message));
    EXPECT_EQ(commands().group(kGroup), nullptr);
    EXPECT_EQ(commands().lookupCmd(L"MLINE"), nullptr);
    EXPECT_EQ(kxrxServiceAt(kService), nullptr);
    EXPECT_EQ(groupNames(), std::vector<std::wstring>{L"HOSTGROUP"});
    EXPECT_TRUE(runtime().linker().loadedModules().empty());
    EXPECT_FALSE(runtime().linker().unloadModule(L"KdMLStyle", &message));
    EXPECT_NE(message.find(L"not loaded"), std::wstring::npos);

    load();
    delete runtime().services().remove(kService);
    kxrxRegisterService(L"OtherApps");
    ASSERT_TRUE(runtime().linker().unloadModule(modulePath().wstring().c_str()));
    EXPECT_EQ(groupNames(), std::vector<std::wstring>{L"HOSTGROUP"});
    EXPECT_NE(kxrxServiceAt(L"OtherApps"), nullptr);
    EXPECT_EQ(runtime().services().numEntries(), 1u);
}

TEST_F(ModuleFrame, RegistryEntriesOfTheWrongClassAreNotUsed)
{
    // The command stack's key holds a service: no command is added, the rest
    // of initialisation goes on.
    KxRxObject* stack = runtime().registry().atPut(kxrxCommandStackKey, new KxRxService(L"NotAStack"));
    load();
    EXPECT_NE(kxrxServiceAt(kService), nullptr);
    EXPECT_EQ(commands().group(kGroup), nullptr);
    delete runtime().registry().atPut(kxrxCommandStackKey, stack);
    runtime().linker().unloadAll();

    // No dynamic linker entry: the module makes no registrations for itself.
    KxRxObject* linker = runtime().registry().remove(kxrxDynamicLinkerKey);
    load();
    EXPECT_TRUE(runtime().linker().loadedModules().front().registrations.empty());
    EXPECT_NE(commands().group(kGroup), nullptr);
    runtime().registry().atPut(kxrxDynamicLinkerKey, linker);
}

TEST_F(ModuleFrame, WithoutItsResourceLibraryTheModuleFailsToInitialiseAndRegistersNothing)
{
    TempFolder folder;
    fs::copy_file(modulePath(), folder.path / "KdMLStyle.krx");
    runtime().setModulesDir(folder.path);
    std::wstring message;
    const fs::path copy = folder.path / "KdMLStyle.krx";
    EXPECT_FALSE(runtime().linker().loadModule(copy.wstring().c_str(), &message));
    EXPECT_NE(message.find(L"failed to initialise (result 3)"), std::wstring::npos);
    EXPECT_TRUE(runtime().linker().loadedModules().empty());
    EXPECT_TRUE(commands().groups().empty());
    EXPECT_EQ(runtime().services().numEntries(), 0u);

    // With the library beside it, the copy loads.
    fs::copy_file(modulesDir() / "KdMLStyleRes.so", folder.path / "KdMLStyleRes.so");
    load(copy);
    EXPECT_NE(commands().group(kGroup), nullptr);
}

TEST_F(ModuleFrame, LoadFailuresSayWhy)
{
    TempFolder folder;
    std::wstring message;
    auto& linker = runtime().linker();
    EXPECT_FALSE(linker.loadModule((folder.path / "Missing.krx").wstring().c_str(), &message));
    EXPECT_NE(message.find(L"Cannot find"), std::wstring::npos);

    std::ofstream(folder.path / "Text.krx") << "not a library\n";
    EXPECT_FALSE(linker.loadModule((folder.path / "Text.krx").wstring().c_str(), &message));
    EXPECT_NE(message.find(L"not a loadable module"), std::wstring::npos);

    EXPECT_FALSE(linker.loadModule((modulesDir() / "KdMLStyleRes.so").wstring().c_str(), &message));
    EXPECT_NE(message.find(L"no kxrxEntryPoint"), std::wstring::npos);

    load();
    EXPECT_FALSE(linker.loadModule(modulePath().wstring().c_str(), &message));
    EXPECT_NE(message.find(L"already loaded"), std::wstring::npos);
    EXPECT_EQ(linker.loadedModules().size(), 1u);
    EXPECT_EQ(commands().group(kGroup)->commands.size(), 4u);
}

TEST_F(ModuleFrame, CommandsRunInsideTheirResourceLibraryAndPutTheHandleBack)
{
    load();
    for (const KxEdCommand& cmd : commands().group(kGroup)->commands) {
        for (const auto& preName : {std::optional<std::wstring>(), std::optional<std::wstring>(L"Kd"),
                                    std::optional<std::wstring>(L"Zz")}) {
            runtime().setProductPreName(preName);
            cmd.handler();
            EXPECT_EQ(kxrxResourceHandle(), nullptr);
        }
    }
}
