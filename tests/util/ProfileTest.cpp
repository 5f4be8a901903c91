#include "kaldo/core/Host.h"
#include "kaldo/util/Profile.h"
#include "kxprofile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>

namespace {

std::filesystem::path tempPath(const QTemporaryDir& dir, const char* name)
{
    return std::filesystem::path(dir.path().toStdString()) / name;
}

TEST(Profile, ValuesSurviveAReopen)
{
    QTemporaryDir dir;
    const auto path = tempPath(dir, "sub/kaldo.ini");  // folder made on first write
    {
        kaldo::Profile profile(path);
        EXPECT_FALSE(profile.getInt(L"Settings", L"MlstylePosLeft"));
        EXPECT_TRUE(profile.setInt(L"Settings", L"MlstylePosLeft", -10000));
        EXPECT_TRUE(profile.setString(L"Settings", L"MlstyleFile", L"/tmp/Wände & Straßen.mln"));
        EXPECT_TRUE(profile.setBinary(L"ListCtrls", L"Widths", {0, 1, 255, 10, 13}));
    }
    kaldo::Profile again(path);
    EXPECT_EQ(again.getInt(L"Settings", L"MlstylePosLeft"), -10000);
    EXPECT_EQ(again.getString(L"Settings", L"MlstyleFile"), L"/tmp/Wände & Straßen.mln");
    EXPECT_EQ(again.getBinary(L"ListCtrls", L"Widths"), (std::vector<unsigned char>{0, 1, 255, 10, 13}));
    EXPECT_FALSE(again.getInt(L"ListCtrls", L"MlstylePosLeft"));  // sections are separate
    EXPECT_FALSE(again.getInt(L"Settings", L"MlstyleFile"));      // not a number
}

TEST(Profile, BadFilesAreRefusedWithAMessage)
{
    QTemporaryDir dir;
    EXPECT_THROW(kaldo::Profile(std::filesystem::path(dir.path().toStdString())), std::runtime_error);
    const auto binary = tempPath(dir, "garbage.ini");
    std::ofstream(binary) << "[Settings\n\x01\x02=\n";
    EXPECT_THROW(kaldo::Profile{binary}, std::runtime_error);
}

TEST(Profile, HostFunctionsUseTheSessionProfileOrDefaults)
{
    QTemporaryDir dir;
    kaldo::Profile profile(tempPath(dir, "kaldo.ini"));
    EXPECT_EQ(kxGetProfileInt(L"Settings", L"X", 7), 7);  // no host profile yet
    EXPECT_FALSE(kxWriteProfileInt(L"Settings", L"X", 1));

    kaldo::host().profile = &profile;
    EXPECT_TRUE(kxWriteProfileInt(L"Settings", L"X", 42));
    EXPECT_EQ(kxGetProfileInt(L"Settings", L"X", 7), 42);
    EXPECT_EQ(kxGetProfileString(L"Settings", L"Name", L"none"), L"none");
    EXPECT_TRUE(kxWriteProfileString(L"Settings", L"Name", L"WALL"));
    EXPECT_EQ(kxGetProfileString(L"Settings", L"Name", L"none"), L"WALL");
    std::vector<unsigned char> bytes;
    EXPECT_FALSE(kxGetProfileBinary(L"ListCtrls", L"Cols", bytes));
    EXPECT_TRUE(kxWriteProfileBinary(L"ListCtrls", L"Cols", {9, 8}));
    EXPECT_TRUE(kxGetProfileBinary(L"ListCtrls", L"Cols", bytes));
    EXPECT_EQ(bytes, (std::vector<unsigned char>{9, 8}));
    kaldo::host().profile = nullptr;
}

}  // namespace
