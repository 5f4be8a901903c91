#include "kaldo/db/StateBytes.h"

#include "kaldo/db/RecordRun.h"

#include <cwchar>

#include "kxdbdict.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

namespace kaldo {

namespace {

// Above the size of every class of database object, so that the fixed part
// is never undercounted.
constexpr std::size_t kObjectBytes = 256;
// A dictionary entry: its map node, key and name.
constexpr std::size_t kDictionaryEntryBytes = 128;
constexpr std::size_t kStyleElementBytes = 64;

// A multiline's vertices and their lists, those neighbours share once.
std::size_t mlineBytes(const KxDbMline& mline)
{
    std::size_t bytes = 0;
    KxDbMlineVertexLists before;
    for (int v = 0; v < mline.numVertices(); ++v) {
        bytes += sizeof(KxDbMlineVertex);
        const KxDbMlineVertexLists lists = mline.parametersAt(v);
        if (v == 0 || !lists.sharesStorageWith(before))
            bytes += lists.values().size_bytes() + lists.ends().size_bytes();
        before = lists;
    }
    return bytes;
}

std::size_t contentBytes(const KxDbObject& obj)
{
    if (const auto* mline = KxDbMline::cast(&obj))
        return mlineBytes(*mline);
    if (const auto* polyline = KxDbPolyline::cast(&obj))
        return polyline->vertexBytes();
    if (const auto* dictionary = KxDbDictionary::cast(&obj))
        return std::size_t(dictionary->numEntries()) * kDictionaryEntryBytes;
    if (const auto* style = KxDbMlineStyle::cast(&obj))
        return std::size_t(style->numElements()) * kStyleElementBytes + std::wcslen(style->description()) * sizeof(wchar_t);
    // A table's records and a block's entities are no part of a copy.
    if (const auto* linetype = KxDbLinetypeTableRecord::cast(&obj))
        return linetype->dashes().size() * sizeof(double) + linetype->description().size() * sizeof(wchar_t)
               + linetype->name().size() * sizeof(wchar_t);
    if (const auto* record = KxDbSymbolTableRecord::cast(&obj))
        return record->name().size() * sizeof(wchar_t);
    if (const auto* run = ObjectRecordRun::cast(&obj))
        return run->byteSize();
    if (const auto* record = KxDbUnmodelledObject::cast(&obj))
        return record->byteSize();
    if (const auto* run = RecordRun::cast(&obj))
        return run->byteSize();
    if (const auto* record = KxDbUnmodelledEntity::cast(&obj))
        return record->byteSize();
    return 0;
}

}  // namespace

std::size_t stateBytes(const KxDbObject& obj)
{
    return kObjectBytes + obj.keptGroups().bytes().size() + contentBytes(obj);
}

}  // namespace kaldo
