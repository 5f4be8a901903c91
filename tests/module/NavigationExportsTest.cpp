// The module exports its instantiations of the host library's navigation
// arrays and the navigation destructors; calls through the exported symbols
// do what the templates do.
#include "TreePaths.h"
#include "kxuinav.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

template <class Function>
Function exported(void* module, const char* symbol)
{
    return reinterpret_cast<Function>(dlsym(module, symbol));
}

}  // namespace

TEST(NavigationExports, ArraysAndDestructorsCallableThroughTheModule)
{
    void* module = dlopen((stagedPaths().modulesDir / "KdMLStyle.krx").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();

    // Member functions take the object as their first argument.
    using Rows = CNavArray<CNavData>;
    const auto add = exported<int (*)(Rows*, const CNavData&)>(module, "_ZN9CNavArrayI8CNavDataE3AddERKS0_");
    const auto size = exported<int (*)(const Rows*)>(module, "_ZNK9CNavArrayI8CNavDataE7GetSizeEv");
    const auto removeAt = exported<void (*)(Rows*, int, int)>(module, "_ZN9CNavArrayI8CNavDataE8RemoveAtEii");
    const auto at = exported<const CNavData& (*)(const Rows*, int)>(module, "_ZNK9CNavArrayI8CNavDataE5GetAtEi");
    ASSERT_TRUE(add && size && removeAt && at);
    Rows rows;
    EXPECT_EQ(add(&rows, {L"STANDARD", 1}), 0);
    EXPECT_EQ(add(&rows, {L"WALL", 2}), 1);
    EXPECT_EQ(add(&rows, {L"PIPE", 3}), 2);
    removeAt(&rows, 0, 1);
    EXPECT_EQ(size(&rows), 2);
    EXPECT_EQ(at(&rows, 0).text, L"WALL");
    EXPECT_EQ(rows.GetAt(1).data, 3u);

    using Filters = CNavArray<CNavFilter>;
    const auto addFilter = exported<int (*)(Filters*, const CNavFilter&)>(module, "_ZN9CNavArrayI10CNavFilterE3AddERKS0_");
    ASSERT_TRUE(addFilter);
    Filters filters;
    addFilter(&filters, {L"W", 0});
    EXPECT_EQ(filters.GetAt(0).pattern, L"W");

    using Pointers = CTypedPtrArray<CPtrArray, CNavData*>;
    const auto addPointer =
        exported<int (*)(Pointers*, CNavData*)>(module, "_ZN14CTypedPtrArrayI9CNavArrayIPvEP8CNavDataE3AddES4_");
    const auto pointerAt =
        exported<CNavData* (*)(const Pointers*, int)>(module, "_ZNK14CTypedPtrArrayI9CNavArrayIPvEP8CNavDataE5GetAtEi");
    ASSERT_TRUE(addPointer && pointerAt);
    Pointers pointers;
    CNavData row{L"ROW", 9};
    EXPECT_EQ(addPointer(&pointers, &row), 0);
    EXPECT_EQ(pointerAt(&pointers, 0), &row);

    for (const char* destructor : {"_ZN12CNavListCtrlD0Ev", "_ZN12CNavListCtrlD1Ev", "_ZN14CNavDropSourceD0Ev",
                                   "_ZN14CNavDropSourceD1Ev"})
        EXPECT_NE(dlsym(module, destructor), nullptr) << destructor;
    dlclose(module);
}
