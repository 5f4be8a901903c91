#include "styledlg/StyleUse.h"

#include <cwchar>
#include <unordered_map>

#include "kxdb.h"

namespace kdml {

namespace {

// Whether the style behind id is named name, each style id looked at once.
class StyleNameMatch {
public:
    explicit StyleNameMatch(const wchar_t* name) : m_name(name) {}

    bool operator()(KxDbObjectId id)
    {
        const auto known = m_answers.find(id);
        if (known != m_answers.end())
            return known->second;
        const KxDbObjectPtr<KxDbMlineStyle> style(id, KxDb::kForRead);
        const bool same = style && ::wcscasecmp(style->name(), m_name) == 0;
        m_answers.emplace(id, same);
        return same;
    }

private:
    const wchar_t* m_name;
    std::unordered_map<KxDbObjectId, bool> m_answers;
};

bool blockUsesStyle(const KxDbBlockTableRecord& block, StyleNameMatch& matches)
{
    const auto entities = block.newIterator();
    for (entities->start(); !entities->done(); entities->step()) {
        // Only multilines are opened: the id answers for the class.
        if (entities->getEntityId().objectClass() != KxDbMline::desc())
            continue;
        KxDbEntity* opened = nullptr;
        if (entities->getEntity(opened, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbEntity> entity(opened);
        if (matches(static_cast<const KxDbMline*>(opened)->style()))
            return true;
    }
    return false;
}

}  // namespace

bool isStyleInUse(KxDbDatabase* database, const wchar_t* name)
{
    if (!database || !name)
        return false;
    KxDbBlockTable* opened = nullptr;
    if (database->getBlockTable(opened, KxDb::kForRead) != Kald::eOk)
        return false;
    const KxDbObjectPtr<KxDbBlockTable> table(opened);
    StyleNameMatch matches(name);
    const auto records = table->newIterator();
    for (records->start(); !records->done(); records->step()) {
        KxDbSymbolTableRecord* record = nullptr;
        if (records->getRecord(record, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbSymbolTableRecord> block(record);
        const auto* blockRecord = KxDbBlockTableRecord::cast(record);
        if (blockRecord && blockUsesStyle(*blockRecord, matches))
            return true;
    }
    return false;
}

}  // namespace kdml
