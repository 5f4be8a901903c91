#include <gtest/gtest.h>

#include "kxdb.h"
#include "kaldo/core/Host.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/db/UndoHistory.h"
#include "kxstring.h"

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

struct StyleDictionary {
    KxDbDatabase db;
    KxDbObjectPtr<KxDbDictionary> dict{db.mlineStyleDictionaryId(), KxDb::kForWrite};

    KxDbObjectId add(const wchar_t* name)
    {
        auto* style = new KxDbMlineStyle;
        style->setName(name);
        KxDbObjectId id;
        EXPECT_EQ(dict->setAt(name, style, id), Kald::eOk);
        style->close();
        return id;
    }
};

}  // namespace

TEST(Dictionary, KeysKeepSpellingAndMatchWithoutCase)
{
    StyleDictionary s;
    const KxDbObjectId id = s.add(L"Walls");
    KxDbObjectId found;
    EXPECT_EQ(s.dict->getAt(L"WALLS", found), Kald::eOk);
    EXPECT_EQ(found, id);
    EXPECT_EQ(s.dict->getAt(L"walls", found), Kald::eOk);
    EXPECT_EQ(s.dict->getAt(L"wall", found), Kald::eKeyNotFound);
    EXPECT_TRUE(found.isNull());

    wchar_t* name = nullptr;
    ASSERT_EQ(s.dict->nameAt(id, name), Kald::eOk);
    EXPECT_STREQ(name, L"Walls");
    kald_free(name);

    // Same key in another case replaces the entry and erases the old object.
    const KxDbObjectId replacement = s.add(L"WALLS");
    EXPECT_NE(replacement, id);
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(s.dict->numEntries(), 2);
    std::wstring spelled;
    s.dict->nameAt(replacement, spelled);
    EXPECT_EQ(spelled, L"WALLS");
}

TEST(Dictionary, SetNameRefusesDuplicatesAndAllowsCaseChange)
{
    StyleDictionary s;
    const KxDbObjectId a = s.add(L"A");
    s.add(L"B");
    EXPECT_EQ(s.dict->setName(L"a", L"b"), Kald::eDuplicateKey);
    EXPECT_EQ(s.dict->setName(L"missing", L"C"), Kald::eKeyNotFound);
    EXPECT_EQ(s.dict->setName(L"A", L"a"), Kald::eOk);
    EXPECT_EQ(s.dict->setName(L"a", L"Renamed"), Kald::eOk);
    KxDbObjectId found;
    EXPECT_EQ(s.dict->getAt(L"RENAMED", found), Kald::eOk);
    EXPECT_EQ(found, a);
    EXPECT_FALSE(s.dict->has(L"A"));
}

TEST(Dictionary, RemoveAndIterationSkipErased)
{
    StyleDictionary s;
    const KxDbObjectId keep = s.add(L"Keep");
    const KxDbObjectId gone = s.add(L"Gone");
    const KxDbObjectId erased = s.add(L"Erased");

    KxDbObjectId removed;
    EXPECT_EQ(s.dict->remove(L"GONE", removed), Kald::eOk);
    EXPECT_EQ(removed, gone);
    EXPECT_TRUE(removed.isValid());  // the object stays in the drawing
    EXPECT_EQ(s.dict->remove(L"Gone"), Kald::eKeyNotFound);
    {
        KxDbObjectPtr<KxDbMlineStyle> style(erased, KxDb::kForWrite);
        ASSERT_TRUE(style);
        EXPECT_EQ(style->erase(), Kald::eOk);
    }
    EXPECT_FALSE(s.dict->has(L"Erased"));

    std::vector<std::wstring> names;
    for (auto it = s.dict->newIterator(); !it->done(); it->next())
        names.push_back(it->name());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Keep", L"STANDARD"}));
    EXPECT_EQ(s.dict->numEntries(), 2);
    EXPECT_TRUE(s.dict->has(keep));
}

// Each object has one entry: put under another key it leaves its old one;
// its key follows renames and removal, and undo brings both back.
TEST(Dictionary, ObjectsFoundByIdThroughMovesRenamesAndUndo)
{
    StyleDictionary s;
    const KxDbObjectId a = s.add(L"A");
    const KxDbObjectId b = s.add(L"B");
    KxDbObjectId id;
    ASSERT_EQ(s.dict->setAt(L"C", s.db.peekObject(b), id), Kald::eOk);
    EXPECT_FALSE(s.dict->has(L"B"));
    std::wstring name;
    EXPECT_EQ(s.dict->nameAt(b, name), Kald::eOk);
    EXPECT_EQ(name, L"C");
    s.add(L"a");
    EXPECT_EQ(s.dict->nameAt(a, name), Kald::eKeyNotFound) << "the replaced object";
    EXPECT_EQ(s.dict->numEntries(), 3);

    kaldo::UndoHistory& history = s.db.undoHistory();
    history.beginStep(L"RENAME");
    EXPECT_EQ(s.dict->setName(L"c", L"D"), Kald::eOk);
    EXPECT_EQ(s.dict->nameAt(b, name), Kald::eOk);
    EXPECT_EQ(name, L"D");
    EXPECT_EQ(s.dict->remove(b), Kald::eOk);
    EXPECT_FALSE(s.dict->has(b));
    history.endStep();
    history.undo(1);
    EXPECT_TRUE(s.dict->has(b));
    EXPECT_EQ(s.dict->nameAt(b, name), Kald::eOk);
    EXPECT_EQ(name, L"C");
    EXPECT_EQ(s.dict->getAt(L"c", id), Kald::eOk);
    EXPECT_EQ(id, b);
}

// Many entries, put, moved and removed in any order: each is found by its
// name in any case and by its object, iterators give them in the order of
// their names in upper case (characters past ASCII and past 16 bits
// included), and an object put by id (as a reader links records) keeps
// the rules of keys.
TEST(Dictionary, ManyEntriesFoundAndIteratedByNameInUpperCase)
{
    StyleDictionary s;
    const std::wstring letters = L"aBcXyZ\u00e9\u00c9\u00df\u01c5\u4e2d\U0001F600_0";
    std::mt19937 random(5);
    KxDbObjectId standard;
    ASSERT_EQ(s.dict->getAt(L"Standard", standard), Kald::eOk);
    // Each key (the name in upper case) with the name as spelled and its object.
    std::map<std::wstring, std::pair<std::wstring, KxDbObjectId>> byKey{{L"STANDARD", {L"STANDARD", standard}}};
    while (byKey.size() < 3000) {
        std::wstring name;
        for (std::size_t n = 1 + random() % 6; n > 0; --n)
            name.push_back(letters[random() % letters.size()]);
        if (byKey.count(kaldo::foldName(name)) == 0)
            byKey[kaldo::foldName(name)] = {name, s.add(name.c_str())};
    }
    int i = 0;
    for (auto it = byKey.begin(); it != byKey.end(); ++i) {
        if (i % 3 == 0) {
            EXPECT_EQ(i % 2 == 0 ? s.dict->remove(it->second.second) : s.dict->remove(it->first.c_str()), Kald::eOk);
            it = byKey.erase(it);
        } else {
            ++it;
        }
    }
    std::vector<std::wstring> inOrder;
    for (const auto& [key, entry] : byKey) {
        inOrder.push_back(key);
        KxDbObjectId found;
        EXPECT_EQ(s.dict->getAt(key.c_str(), found), Kald::eOk) << key;
        EXPECT_EQ(found, entry.second);
        std::wstring name;
        EXPECT_EQ(s.dict->nameAt(entry.second, name), Kald::eOk);
        EXPECT_EQ(name, entry.first);
    }
    std::vector<std::wstring> keys;
    for (auto it = s.dict->newIterator(); !it->done(); it->next())
        keys.push_back(kaldo::foldName(it->name()));
    EXPECT_EQ(keys, inOrder);
    EXPECT_EQ(s.dict->numEntries(), int(inOrder.size()));

    const KxDbObjectId taken = byKey.begin()->second.second;
    const KxDbObjectId loose = s.add(L"loose");
    ASSERT_EQ(s.dict->remove(loose), Kald::eOk);
    EXPECT_EQ(s.dict->setIdAt(byKey.begin()->first.c_str(), loose), Kald::eDuplicateKey);
    EXPECT_EQ(s.dict->setIdAt(L"self", s.dict->objectId()), Kald::eInvalidInput);
    EXPECT_EQ(s.dict->setIdAt(L"Linked", loose), Kald::eOk);
    EXPECT_EQ(s.dict->setIdAt(L"LINKED", loose), Kald::eOk);
    std::wstring name;
    EXPECT_EQ(s.dict->nameAt(loose, name), Kald::eOk);
    EXPECT_EQ(name, L"LINKED");
    EXPECT_TRUE(s.dict->has(taken));
}

TEST(Dictionary, SearchByEntityNames)
{
    KxDbDatabase db;
    kaldo::HostState saved = kaldo::host();
    kaldo::host().database = &db;
    kxds_name named{};
    ASSERT_EQ(kxdbNamedObjDict(named), RTNORM);
    kxresbuf* list = kxdbDictSearch(named, L"acad_mlinestyle", 0);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->restype, -1);
    KxDbObjectId id;
    ASSERT_EQ(kxdbGetObjectId(id, list->resval.rlname), Kald::eOk);
    EXPECT_EQ(id, db.mlineStyleDictionaryId());
    EXPECT_EQ(kxutRelRb(list), RTNORM);
    EXPECT_EQ(kxdbDictSearch(named, L"NO_SUCH_KEY", 0), nullptr);
    kaldo::host() = saved;
}
