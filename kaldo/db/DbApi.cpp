#include "kxdbapi.h"

#include <filesystem>

#include "kaldo/core/Host.h"
#include "kaldo/db/LinetypeFile.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/util/FileAccess.h"
#include "kxdbdatabase.h"
#include "kxdbdict.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxstring.h"

Kald::ErrorStatus kxdbGetObjectId(KxDbObjectId& id, const kxds_name name)
{
    id = KxDbObjectId::fromOldId(static_cast<std::uint64_t>(name[0]));
    if (id.isNull())
        return Kald::eNullObjectId;
    return id.isValid() ? Kald::eOk : Kald::eKeyNotFound;
}

Kald::ErrorStatus kxdbGetEntityName(kxds_name name, KxDbObjectId id)
{
    name[0] = static_cast<std::int64_t>(id.asOldId());
    name[1] = 0;
    if (id.isNull())
        return Kald::eNullObjectId;
    return id.isValid() ? Kald::eOk : Kald::eKeyNotFound;
}

int kxdbNamedObjDict(kxds_name name)
{
    const KxDbDatabase* db = kaldo::host().database;
    if (!db)
        return RTERROR;
    return kxdbGetEntityName(name, db->namedObjectsDictionaryId()) == Kald::eOk ? RTNORM : RTERROR;
}

namespace {

const wchar_t* typeName(const KxDbObject* obj)
{
    if (KxDbMlineStyle::cast(obj))
        return L"MLINESTYLE";
    if (KxDbDictionary::cast(obj))
        return L"DICTIONARY";
    return obj->isA()->name();
}

kxresbuf* stringRb(int type, const std::wstring& text)
{
    kxresbuf* rb = kxutNewRb(type);
    rb->resval.rstring = kxutNewString(text.c_str());
    return rb;
}

}  // namespace

kxresbuf* kxdbDictSearch(const kxds_name dict, const wchar_t* key, int)
{
    KxDbObjectId dictId;
    if (!key || kxdbGetObjectId(dictId, dict) != Kald::eOk)
        return nullptr;
    const auto* dictionary = KxDbDictionary::cast(kaldo::lookupObject(dictId));
    KxDbObjectId id;
    if (!dictionary || dictionary->isErased() || dictionary->getAt(key, id) != Kald::eOk)
        return nullptr;
    const KxDbObject* obj = kaldo::lookupObject(id);
    std::wstring spelled;
    dictionary->nameAt(id, spelled);

    kxresbuf* head = kxutNewRb(-1);
    kxdbGetEntityName(head->resval.rlname, id);
    kxresbuf* tail = head->rbnext = stringRb(0, typeName(obj));
    tail = tail->rbnext = stringRb(5, obj->handleText());
    tail->rbnext = stringRb(3, spelled);
    return head;
}

bool kxutRbHoldsString(int type)
{
    return type == RTSTR || (type >= 0 && type <= 9) || (type >= 100 && type <= 109) || (type >= 300 && type <= 309) ||
           type == 1000;
}

kxresbuf* kxutNewRb(int type)
{
    auto* rb = new kxresbuf;
    rb->restype = static_cast<short>(type);
    return rb;
}

int kxutRelRb(kxresbuf* list)
{
    while (list) {
        kxresbuf* next = list->rbnext;
        if (kxutRbHoldsString(list->restype))
            kald_free(list->resval.rstring);
        delete list;
        list = next;
    }
    return RTNORM;
}

namespace {

std::filesystem::path findLinetypeFile(const wchar_t* fileName)
{
    std::error_code ec;
    const std::filesystem::path given(fileName);
    if (std::filesystem::is_regular_file(given, ec))
        return given;
    const std::filesystem::path& support = kaldo::host().supportDir;
    if (!support.empty() && !given.is_absolute()) {
        const std::filesystem::path inSupport = support / given;
        if (std::filesystem::is_regular_file(inSupport, ec))
            return inSupport;
    }
    return {};
}

}  // namespace

Kald::ErrorStatus kxdbLoadLinetypeFromFile(const wchar_t* fileName, const wchar_t* linetypeName, KxDbObjectId& id,
                                           KxDbDatabase* db, int)
{
    id.setNull();
    if (!fileName || !*fileName || !linetypeName || !*linetypeName || !db)
        return Kald::eInvalidInput;
    const std::filesystem::path path = findLinetypeFile(fileName);
    if (path.empty())
        return Kald::eFileNotFound;
    std::string text;
    try {
        text = kaldo::readFile(path);
    } catch (const kaldo::FileError&) {
        return Kald::eFileNotFound;
    }

    for (const kaldo::LinetypeDefinition& def : kaldo::parseLinetypeFile(text)) {
        if (!kaldo::sameName(def.name, linetypeName))
            continue;
        KxDbLinetypeTable* table = nullptr;
        if (const Kald::ErrorStatus es = db->getLinetypeTable(table, KxDb::kForWrite); es != Kald::eOk)
            return es;
        const KxDbObjectPtr<KxDbLinetypeTable> tableScope(table);
        if (table->getAt(def.name.c_str(), id) == Kald::eOk)
            return Kald::eOk;
        auto* record = new KxDbLinetypeTableRecord;
        record->setName(def.name.c_str());
        record->setDescription(def.description.c_str());
        record->setDashes(def.dashes);
        if (const Kald::ErrorStatus es = table->add(record, id); es != Kald::eOk) {
            delete record;
            return es;
        }
        record->close();
        return Kald::eOk;
    }
    return Kald::eKeyNotFound;
}

const wchar_t* kxdbGetReservedString(int kind, bool)
{
    switch (kind) {
    case 0:
        return L"ByLayer";
    case 1:
        return L"ByBlock";
    case 3:
        return L"Continuous";
    default:
        return nullptr;
    }
}
