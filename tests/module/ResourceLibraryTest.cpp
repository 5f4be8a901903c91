// The command-time resource library: its name and the scope that makes it
// the source of resource strings.
#include "TreePaths.h"
#include "rx/InstalledRuntime.h"

#include "host/ResourceLibraryNames.h"
#include "host/ResourceLibraryScope.h"

#include "kxhost.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

TEST(ResourceLibraryNames, EntryNameIsTheModuleFileNameWithRes)
{
    EXPECT_EQ(kdml::entryResourceLibraryName(L"/opt/kaldo/modules/KdMLStyle.krx"), L"KdMLStyleRes.so");
    EXPECT_EQ(kdml::entryResourceLibraryName(L"KdMLStyle.krx"), L"KdMLStyleRes.so");
    EXPECT_EQ(kdml::entryResourceLibraryName(L"/a.b/Module"), L"ModuleRes.so");
    EXPECT_EQ(kdml::entryResourceLibraryName(L"/x/My.Mod.krx"), L"My.ModRes.so");
    EXPECT_EQ(kdml::entryResourceLibraryName(L"a.so"), L"a.so") << "4 characters or fewer pass unchanged";
    EXPECT_EQ(kdml::entryResourceLibraryName(L""), L"");
}

TEST(ResourceLibraryNames, CommandNameFollowsTheProductPreName)
{
    InstalledRuntime installed;
    installed.runtime.setProductPreName(L"Kd");
    EXPECT_EQ(kdml::commandResourceLibraryName(), L"KdMLStyleRes.so");
    installed.runtime.setProductPreName(L"Zz");
    EXPECT_EQ(kdml::commandResourceLibraryName(), L"ZzMLStyleRes.so");
    installed.runtime.setProductPreName(std::nullopt);
    EXPECT_EQ(kdml::commandResourceLibraryName(), L"KdMLStyleRes.so");
}

TEST(ResourceLibraryScope, SwapsTheResourceLibraryForItsLifeOnly)
{
    InstalledRuntime installed;
    // The module finds the library beside itself through its RUNPATH; this
    // test program has none, so the library is made resident first and the
    // bare name then resolves to it.
    void* resident = dlopen((stagedPaths().modulesDir / "KdMLStyleRes.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(resident, nullptr) << dlerror();

    installed.runtime.setProductPreName(std::nullopt);
    {
        const kdml::ResourceLibraryScope scope;
        ASSERT_TRUE(scope.isLoaded());
        EXPECT_EQ(kxrxResourceHandle(), scope.library());
        EXPECT_STREQ(kxmdKxResourceString(4014, L"default"), L"MLEDIT");
        {
            const kdml::ResourceLibraryScope nested;
            EXPECT_EQ(kxrxResourceHandle(), nested.library());
        }
        EXPECT_EQ(kxrxResourceHandle(), scope.library()) << "the outer library is put back";
    }
    EXPECT_EQ(kxrxResourceHandle(), nullptr);
    EXPECT_STREQ(kxmdKxResourceString(4014, L"default"), L"default");

    installed.runtime.setProductPreName(L"Zz");
    {
        const kdml::ResourceLibraryScope scope;
        EXPECT_FALSE(scope.isLoaded());
        EXPECT_EQ(kxrxResourceHandle(), nullptr);
    }
    EXPECT_EQ(kxrxResourceHandle(), nullptr);
    dlclose(resident);
}
