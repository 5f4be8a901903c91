#include <gtest/gtest.h>

#include <cwctype>
#include <string>

#include "MlnFixture.h"
#include "mlnfile/MlnReader.h"
#include "mlnfile/MlnStyleLoader.h"

using mlntest::elementOf;

namespace {

class SupportFilesTest : public mlntest::MlnFixture {};

std::wstring upper(std::wstring text)
{
    for (wchar_t& c : text)
        c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
    return text;
}

}  // namespace

TEST_F(SupportFilesTest, EveryStyleOfKaldoMlnLoadsWithItsLinetypesInBothUnits)
{
    const std::wstring path = (kaldo::host().supportDir / "KALDO.mln").wstring();
    const std::vector<std::wstring> names = kdml::listMlnStyleNames(path.c_str());
    ASSERT_GE(names.size(), 6u);
    EXPECT_EQ(names.front(), L"STANDARD");
    for (int measurement : {0, 1}) {
        KxDbDatabase drawing;
        drawing.setMeasurement(measurement);
        kaldo::host().database = &drawing;
        for (const std::wstring& name : names) {
            if (name == L"STANDARD")
                continue;
            ASSERT_TRUE(kdml::loadMlnStyleIntoDatabase(&drawing, name.c_str(), L"KALDO.mln")) << name;
            KxDbMlineStyle check;
            ASSERT_EQ(kdml::readMlnStyle(path.c_str(), name.c_str(), &check, &drawing, kdml::MlnReadMode::strict),
                      kdml::MlnReadResult::found);
            EXPECT_GE(check.numElements(), 2) << name;
            EXPECT_FALSE(std::wstring(check.description()).empty()) << name;
            for (int i = 0; i < check.numElements(); ++i) {
                const std::wstring linetype = elementOf(check, i).linetype;
                EXPECT_FALSE(linetype.empty()) << name << " " << i;
                // A name the drawing lacked was found in the linetype file,
                // not replaced by the fallback.
                if (upper(linetype) == L"CONTINUOUS")
                    ADD_FAILURE() << name << " element " << i << " fell back to Continuous";
            }
        }
        kaldo::host().database = &db;
    }
}
