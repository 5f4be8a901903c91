// The records a symbol table lists, in the order added (runs of ids), and
// their index by name in upper case. The index holds no names: it reads
// each where the record holds it, in its object or, for a record kept
// unopened, in its one group 2 (kaldo/db/UnopenedRecords.h), so that a
// table of many records costs a few bytes a record beside them. Records of
// one name (erased ones beside a live one) are found in the order they
// were indexed.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kaldo/db/HashSlots.h"
#include "kxdbid.h"
#include "kxdbidruns.h"

class KxDbDatabase;

namespace kaldo {

class TableRecords {
public:
    // The name of a listed record as it gives it, without opening it.
    static std::wstring nameOf(KxDbObjectId id);
    // So for any id: the name when id names a symbol table record of db,
    // else nothing.
    static std::optional<std::wstring> nameIn(const KxDbDatabase& db, KxDbObjectId id);

    // The first record indexed under name (case aside) that accept takes,
    // or null.
    KxDbObjectId find(std::wstring_view name, const std::function<bool(KxDbObjectId)>& accept) const;
    void index(KxDbObjectId id, std::wstring_view name);
    void unindex(KxDbObjectId id, std::wstring_view name);

    KxDbIdRuns ids;

private:
    HashSlots m_byName;
};

}  // namespace kaldo
