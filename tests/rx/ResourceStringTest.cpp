#include "InstalledRuntime.h"
#include "TreePaths.h"

#include "kxhost.h"
#include "kxrxlibrary.h"

#include <QString>
#include <QStringList>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {


// The library opened by path for the length of a test.
struct OpenedLibrary {
    void* handle = dlopen((stagedPaths().modulesDir / "KdMLStyleRes.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ~OpenedLibrary()
    {
        if (handle)
            dlclose(handle);
    }
};

// The global words of a keyword list "Local words _Global words".
QStringList globalKeywords(const wchar_t* list)
{
    const QString text = QString::fromWCharArray(list);
    return text.mid(text.indexOf('_') + 1).split(' ', Qt::SkipEmptyParts);
}

}  // namespace

TEST(ResourceStrings, TextsComeFromTheCurrentLibraryElseTheDefault)
{
    InstalledRuntime installed;
    EXPECT_STREQ(kxmdKxResourceString(6015, L"default"), L"default") << "no current library";

    OpenedLibrary library;
    ASSERT_NE(library.handle, nullptr) << dlerror();
    kxrxSetResourceHandle(library.handle);
    EXPECT_EQ(kxrxResourceHandle(), library.handle);
    EXPECT_STREQ(kxmdKxResourceString(6015, L"default"), L"\nNext point :");
    EXPECT_STREQ(kxmdKxResourceString(5000, nullptr), L"MLINE");
    EXPECT_STREQ(kxmdKxResourceString(9999, L"default"), L"default");

    // A library without a string table gives the defaults.
    void* self = dlopen(nullptr, RTLD_NOW);
    kxrxSetResourceHandle(self);
    EXPECT_STREQ(kxmdKxResourceString(6015, L"default"), L"default");
    kxrxSetResourceHandle(nullptr);
}

TEST(ResourceStrings, LoadStringCopiesWithinTheBuffer)
{
    OpenedLibrary library;
    ASSERT_NE(library.handle, nullptr) << dlerror();
    std::array<wchar_t, 64> buf{};
    EXPECT_EQ(kxLoadString(library.handle, 4015, buf.data(), 64), 7);
    EXPECT_STREQ(buf.data(), L"-MLEDIT");
    EXPECT_EQ(kxLoadString(library.handle, 4015, buf.data(), 4), 3);
    EXPECT_STREQ(buf.data(), L"-ML");
    EXPECT_EQ(kxLoadString(library.handle, 12345, buf.data(), 64), 0);
    EXPECT_STREQ(buf.data(), L"");
    EXPECT_EQ(kxLoadString(nullptr, 4015, buf.data(), 64), 0);
}

TEST(ResourceStrings, TheLibraryHoldsEveryTextTheModuleAsksFor)
{
    OpenedLibrary library;
    ASSERT_NE(library.handle, nullptr) << dlerror();
    for (unsigned id : {1u, 2u, 3u, 4u, 5u, 13u, 15u, 16u, 25u, 26u, 27u}) {
        EXPECT_NE(kxResourceText(library.handle, id), nullptr) << id;
    }
    for (unsigned id = 4000; id <= 4018; ++id)
        EXPECT_NE(kxResourceText(library.handle, id), nullptr) << id;
    for (unsigned id = 6001; id <= 6023; ++id) {
        if (id == 6020 || id == 6022)
            continue;
        EXPECT_NE(kxResourceText(library.handle, id), nullptr) << id;
    }

    EXPECT_EQ(globalKeywords(kxResourceText(library.handle, 4000)),
              QStringList({"CC", "OC", "MC", "CT", "OT", "MT", "CJ", "AV", "DV", "CS", "CA", "WA"}));
    EXPECT_TRUE(globalKeywords(kxResourceText(library.handle, 4002)).contains("UNDO"));
    EXPECT_EQ(globalKeywords(kxResourceText(library.handle, 6001)),
              QStringList({"Justification", "Scale", "STyle"}));
    EXPECT_EQ(globalKeywords(kxResourceText(library.handle, 6013)), QStringList({"Close", "Undo"}));

    // Formats the module fills in keep their conversions.
    EXPECT_TRUE(QString::fromWCharArray(kxResourceText(library.handle, 6018)).contains("%ls"));
    EXPECT_TRUE(QString::fromWCharArray(kxResourceText(library.handle, 27)).contains("%d"));
    EXPECT_EQ(QString::fromWCharArray(kxResourceText(library.handle, 6017)).count('%'), 3);
}

TEST(ResourceStrings, ResourceLibrariesAreFoundBesideTheModuleOrInTheModulesFolder)
{
    InstalledRuntime installed;
    EXPECT_EQ(LoadResourceDll(L"KdMLStyleRes.so"), nullptr) << "no modules folder set";
    installed.runtime.setModulesDir(stagedPaths().modulesDir);
    void* handle = LoadResourceDll(L"KdMLStyleRes.so");
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(kxResourceText(handle, 4013), nullptr);
    EXPECT_EQ(LoadResourceDll(L"NoSuchRes.so"), nullptr);
    EXPECT_EQ(LoadResourceDll(L""), nullptr);
}
