// Entities a file reader keeps as their records until they are first
// opened: a file can spend a few bytes on an entity whose object costs a
// hundred. The reader checks such a record in full, then keeps its packed
// groups in one store of the database (no allocation per record) with
// what the reader resolved by name (its look: kind, block, layer,
// linetype); the registry's slot for its id names the record instead of
// an object and knows its class and database, the handle table its
// handle, its block lists its id. Whatever looks the id up (every open,
// peekObject) gets an object made from the record by the reader's own
// code, kept from then on; making one changes nothing else (no undo
// record, no change counted), so it is invisible.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kxdbid.h"
#include "kxdbidruns.h"
#include "kxdbunmodelled.h"

class KxDbDatabase;
class KxDbEntity;
class KxRxClass;

namespace kaldo {

class UnopenedEntities {
public:
    // What an entity's record does not say by itself: the names it gives
    // resolved to records, and whether it spells them otherwise than they
    // are spelled.
    struct Look {
        std::string kind;
        KxDbObjectId block, layer, linetype;
        bool layerSpelledOtherwise = false;
        bool linetypeSpelledOtherwise = false;
        // A multiline's style, and whether its vertices are laid out anew
        // in it rather than kept as listed.
        KxDbObjectId style;
        bool layOut = false;
        friend bool operator==(const Look&, const Look&) = default;
    };
    // Makes the entity from its record's groups and look, as the reader
    // would have made it.
    using Maker = std::unique_ptr<KxDbEntity> (*)(const Look& look, KxDbPackedGroupsView groups);

    explicit UnopenedEntities(KxDbDatabase& db) : m_db(db) {}
    // Takes the ids of entities never opened out of the registry.
    ~UnopenedEntities();
    UnopenedEntities(const UnopenedEntities&) = delete;
    UnopenedEntities& operator=(const UnopenedEntities&) = delete;

    // Keeps an entity of class cls under handle (a new one when 0 or
    // taken), appended to look.block, as addObject and appendKxDbEntity
    // would add the entity made; null, keeping nothing, while the undo
    // history records (the entity must then be added as an object).
    // lookLater leaves room for setLook.
    KxDbObjectId keep(const KxRxClass* cls, const Look& look, KxDbPackedGroupsView groups, std::uint64_t handle,
                      Maker maker, bool lookLater = false);
    // Gives an entity kept with lookLater, not opened yet, another look
    // (a multiline's style, found once the whole file is read).
    void setLook(KxDbObjectId id, const Look& look);
    // Makes the multilines kept to be laid out anew in style when made, so
    // that they take the style as it is before it changes.
    void makeLaidOutIn(KxDbObjectId style);
    // The look and groups of an entity kept unopened; nothing for any
    // other id.
    struct Kept {
        const Look* look = nullptr;
        KxDbPackedGroupsView groups;
    };
    std::optional<Kept> kept(KxDbObjectId id) const;
    // The entity the registry names by entry for id, made now (or just
    // before, on another thread).
    KxDbObject* make(KxDbObjectId id, std::uint64_t entry);
    // When id names an entity kept unopened, an entity made from its record
    // for a moment (saving writes it so), which the drawing does not hold:
    // the id and owner of the kept one, closed. Else null.
    std::unique_ptr<KxDbEntity> makeAside(KxDbObjectId id) const;
    // Appends the ids of the entities never opened, in the order kept.
    void appendIds(KxDbIdRuns& ids) const;

private:
    std::size_t placeOf(const Look& look);
    Kept keptAt(std::uint64_t entry) const;
    std::unique_ptr<KxDbEntity> makeFrom(KxDbObjectId id, std::uint64_t entry) const;

    KxDbDatabase& m_db;
    Maker m_maker = nullptr;
    // Every record kept: the place of its look (a byte while below 128,
    // more as needed; always five when kept with lookLater), its groups'
    // length so, then the groups.
    std::string m_records;
    std::vector<Look> m_looks;
    // The ids kept, in order: a file's entities get consecutive ids.
    KxDbIdRuns m_ids;
    std::mutex m_making;
};

}  // namespace kaldo
