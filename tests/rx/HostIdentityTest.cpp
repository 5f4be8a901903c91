#include "InstalledRuntime.h"

#include "kxhost.h"

#include <QGuiApplication>
#include <QIcon>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

std::wstring preName(int size = 64)
{
    std::wstring buf(static_cast<std::size_t>(size), L'#');
    const int reported = GetKaldProductPreName(buf.data(), size);
    const std::wstring text = buf.c_str();
    return reported ? text : L"<none:" + text + L">";
}

}  // namespace

TEST(HostIdentity, ProductPreNameComesFromTheSessionOrTheEnvironment)
{
    EXPECT_EQ(preName(), L"Kd") << "without a host";
    {
        ::unsetenv("KALDO_PRODUCT_PRENAME");
        InstalledRuntime installed;
        EXPECT_EQ(preName(), L"Kd");
        EXPECT_EQ(preName(2), L"K") << "cut to the buffer, still terminated";
        installed.runtime.setProductPreName(L"Zz");
        EXPECT_EQ(preName(), L"Zz");
        installed.runtime.setProductPreName(std::nullopt);
        EXPECT_EQ(preName(), L"<none:>");
        installed.runtime.setProductPreName(L"");
        EXPECT_FALSE(installed.runtime.productPreName().has_value());
    }
    {
        ::setenv("KALDO_PRODUCT_PRENAME", "Ab", 1);
        InstalledRuntime installed;
        EXPECT_EQ(preName(), L"Ab");
    }
    {
        ::setenv("KALDO_PRODUCT_PRENAME", "", 1);
        InstalledRuntime installed;
        EXPECT_EQ(preName(), L"<none:>");
    }
    ::unsetenv("KALDO_PRODUCT_PRENAME");
}

TEST(HostIdentity, ProductNameAndIcon)
{
    EXPECT_STREQ(GetOemProductName(), L"KALDO");
    int argc = 1;
    char name[] = "test_rx";
    char* argv[] = {name, nullptr};
    QGuiApplication app(argc, argv);
    const QIcon icon = GetOemAppIcon();
    ASSERT_FALSE(icon.isNull());
    EXPECT_FALSE(icon.pixmap(16, 16).isNull());
}
