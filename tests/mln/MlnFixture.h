// A host with a new drawing, an editor (for MEASUREMENT and DIMZIN) and a
// Support folder holding our linetype files, and a temporary folder for the
// .mln files a test writes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <string>

#include "FileText.h"
#include "TreePaths.h"
#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kxdb.h"

namespace mlntest {

class MlnFixture : public ::testing::Test {
protected:
    MlnFixture() : saved_(kaldo::host())
    {
        kaldo::host().database = &db;
        kaldo::host().editor = &editor;
        kaldo::host().supportDir = sourceDir() / "support";
        editor.setTranscript([this](std::wstring_view text) { transcript += text; });
    }
    ~MlnFixture() override { kaldo::host() = saved_; }

    std::filesystem::path folder() const { return std::filesystem::path(dir_.path().toStdString()); }

    // Writes bytes as they are into a file of the temporary folder; returns
    // its path.
    std::wstring writeFile(const std::string& name, const std::string& bytes) const
    {
        const std::filesystem::path path = folder() / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path.wstring();
    }

    // The id of a style of the drawing's dictionary (null when missing).
    KxDbObjectId styleId(const wchar_t* name) const
    {
        KxDbObjectPtr<KxDbDictionary> dictionary(db.mlineStyleDictionaryId(), KxDb::kForRead);
        KxDbObjectId id;
        dictionary->getAt(name, id);
        return id;
    }

    // The name of a linetype by id.
    static std::wstring linetypeName(KxDbObjectId id)
    {
        KxDbObjectPtr<KxDbLinetypeTableRecord> record(id, KxDb::kForRead);
        return record ? record->name() : std::wstring();
    }

    KxDbDatabase db;
    kaldo::Editor editor;
    std::wstring transcript;

private:
    QTemporaryDir dir_;
    kaldo::HostState saved_;
};

// One element of a style as a test sees it.
struct ElementView {
    double offset = 0.0;
    KxCmColor color;
    std::wstring linetype;
};

inline ElementView elementOf(const KxDbMlineStyle& style, int index)
{
    ElementView e;
    KxDbObjectId linetype;
    style.getElementAt(index, e.offset, e.color, linetype);
    KxDbObjectPtr<KxDbLinetypeTableRecord> record(linetype, KxDb::kForRead);
    e.linetype = record ? record->name() : std::wstring();
    return e;
}

// An element (as elementOf sees it) of this offset, colour index and
// linetype name.
MATCHER_P3(IsElement, offset, colorIndex, linetype, "")
{
    *result_listener << "offset " << arg.offset << ", colour " << arg.color.colorIndex() << ", linetype \""
                     << QString::fromStdWString(arg.linetype).toStdString() << "\"";
    return ::testing::Value(arg.offset, ::testing::DoubleEq(offset)) && arg.color.colorIndex() == colorIndex
           && arg.linetype == std::wstring(linetype);
}

// The WALL block of the file format's description, lines joined by eol.
inline std::string wallBlock(const std::string& eol = "\r\n")
{
    std::string out;
    for (const char* line : {"MLSTYLE", "2", " WALL", "70", " 0", "3", " ", "62", " 256", "51", " 90.00000000000000",
                             "52", " 90.00000000000000", "71", " 2", "49", " 0.50000000000000", "62", " 256", "6",
                             " Continuous", "49", " -0.50000000000000", "62", " 256", "6", " Continuous", "0"})
        out += std::string(line) + eol;
    return out;
}

}  // namespace mlntest
