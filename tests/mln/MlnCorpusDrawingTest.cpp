// Every style of the .mln fuzz corpus, loaded into a drawing, goes through a
// saved DXF whole: the drawing reopens and saves again to the same bytes.
#include "MlnFixture.h"
#include "TreePaths.h"
#include "dxf/DxfText.h"

#include "kaldo/dxf/DxfError.h"
#include "mlnfile/MlnReader.h"
#include "mlnfile/MlnStyleLoader.h"

namespace {

class MlnCorpusDrawing : public mlntest::MlnFixture {};

}  // namespace

TEST_F(MlnCorpusDrawing, EveryStyleLoadedIntoADrawingSavesAndReopensTheSame)
{
    int loaded = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(sourceDir() / "fuzz/corpus/fuzz_mln_reader")) {
        const std::wstring path = entry.path().wstring();
        for (const std::wstring& name : kdml::listMlnStyleNames(path.c_str()))
            loaded += !kdml::loadMlnStyleIntoDictionary(db.mlineStyleDictionaryId(), name.c_str(), path.c_str()).isNull();
    }
    EXPECT_GT(loaded, 0);
    kaldo::dxf::KeptSections kept;
    const std::string first = toDxfText(db, kept);
    try {
        kaldo::dxf::DxfDrawing reopened = fromDxfText(first);
        EXPECT_EQ(toDxfText(reopened), first);
    } catch (const kaldo::dxf::DxfError& e) {
        FAIL() << "the saved drawing does not open: " << e.what();
    }
}
