// Records a file reader keeps as read until they are first opened: a file
// can spend a few bytes on an entity or object whose object costs a
// hundred. The reader checks such a record in full, then keeps its packed
// groups in one store of the database (no allocation per record) with
// what the reader resolved by name (its look: kind, owner, layer,
// linetype, and the reader's code that makes it); the registry's slot for
// its id names the record instead of an object and knows its class and
// database, the handle table its handle. An entity's block lists its id;
// a symbol table record's table lists it and reads its name from its one
// group 2 (kaldo/db/TableRecords.h); an object is in no block. A block's
// record holds its entities beside its groups while they are one run of
// consecutive ids (as a file's blocks give them), until it is opened. Whatever looks the id up (every open,
// peekObject) gets an object made from the record by the reader's own
// code, which the store holds from then on; making one changes nothing
// else (no undo record, no change counted), so it is invisible. The
// database lists every record kept, opened or not, in the place among its
// objects where it was kept (listWith), so that objects keep the file's
// order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kaldo/db/ByteChunks.h"
#include "kaldo/db/RunMap.h"
#include "kxdbid.h"
#include "kxdbidruns.h"
#include "kxdbunmodelled.h"

class KxDbDatabase;
class KxDbObject;
class KxRxClass;

namespace kaldo {

class UnopenedRecords {
public:
    struct Look;
    // Makes the object from its record's groups and look, as the reader
    // would have made it.
    using Maker = std::unique_ptr<KxDbObject> (*)(const Look& look, KxDbPackedGroupsView groups);
    // What a record does not say by itself: the names it gives resolved to
    // records, whether it spells them otherwise than they are spelled, and
    // the code that makes its object.
    struct Look {
        std::string kind;
        // An entity's block, an object's owner.
        KxDbObjectId owner;
        // An object that names an owner, and an entity of a block read from
        // the BLOCKS section, keeps it with its record instead: a file's
        // objects name many owners, and a file may hold many blocks.
        bool ownerInRecord = false;
        KxDbObjectId layer, linetype;
        // A record whose layer or linetype is kept with it instead (see
        // keep): records that name many layers or linetypes, one each. A
        // record kept so without a linetype has room for one (setLinetype).
        bool layerInRecord = false;
        bool linetypeInRecord = false;
        bool layerSpelledOtherwise = false;
        bool linetypeSpelledOtherwise = false;
        // A multiline's style, and whether its vertices are laid out anew
        // in it rather than kept as listed.
        KxDbObjectId style;
        bool layOut = false;
        // A block's record: room for its entities is kept with it.
        bool holdsEntities = false;
        Maker maker = nullptr;
        friend bool operator==(const Look&, const Look&) = default;
    };

    explicit UnopenedRecords(KxDbDatabase& db) : m_db(db) {}
    // Takes the ids of the records kept, opened or not, out of the registry.
    ~UnopenedRecords();
    UnopenedRecords(const UnopenedRecords&) = delete;
    UnopenedRecords& operator=(const UnopenedRecords&) = delete;

    // Keeps a record of class cls under handle (a new one when 0 or
    // taken), as addObject would add the object made, an entity appended
    // to look.owner (a block) as appendKxDbEntity would, and a symbol
    // table record added to look.owner (its table, which must not hold its
    // name) as the table's add would; null, keeping nothing, while the undo
    // history records (the object must then be added as one) or when an
    // entity's or record's owner is no block or table.
    // lookLater leaves room for setLook. owner is the record's own when
    // the look says so (an object's null while not known yet, see
    // setOwner), an entity's block then. Once many looks are kept, an
    // entity whose look is new keeps its layer or linetype (or both) with
    // its record, and shares its look, and a layer keeps its linetype so;
    // a layer's look that keeps its linetype there already is kept as
    // given (room for a linetype given later when it has none).
    KxDbObjectId keep(const KxRxClass* cls, const Look& look, KxDbPackedGroupsView groups, std::uint64_t handle,
                      bool lookLater = false, KxDbObjectId owner = {});
    // Appends entity (kept or added just now, while no undo step records)
    // to block when block is a record kept unopened that holds its
    // entities and entity follows them in one run; false, appending
    // nothing, else (the block must be opened to take it).
    bool appendEntity(KxDbObjectId block, KxDbObjectId entity);
    // Gives a record kept with lookLater, not opened yet, another look
    // (a multiline's style, found once the whole file is read), which
    // keeps with the record what its look kept there (a look kept() gave).
    void setLook(KxDbObjectId id, const Look& look);
    // Gives a record kept with its linetype in it (its look says so), not
    // opened yet, the linetype: false when id names no such record or the
    // linetype's step does not fit the room kept (the record must then be
    // opened).
    bool setLinetype(KxDbObjectId id, KxDbObjectId linetype);
    // Gives an object's record not opened yet another owner: one kept with
    // its owner (not known yet, or known) in the room kept there, another
    // in its look (a dictionary found to own it once the whole file is
    // read); false when id names no object's record kept unopened, or the
    // owner's serial or the look's place does not fit the room kept (the
    // record must then be opened).
    bool setOwner(KxDbObjectId id, KxDbObjectId owner);
    // Makes the multilines kept to be laid out anew in style when made, so
    // that they take the style as it is before it changes.
    void makeLaidOutIn(KxDbObjectId style);
    // The look, owner, layer, linetype and groups of a record kept
    // unopened (owner, layer and linetype the look's or the record's own);
    // nothing for any other id.
    struct Kept {
        const Look* look = nullptr;
        KxDbObjectId owner;
        KxDbObjectId layer, linetype;
        KxDbPackedGroupsView groups;
    };
    std::optional<Kept> kept(KxDbObjectId id) const;
    // The handle of a record kept, opened or not, or of any other object
    // of the drawing.
    std::uint64_t handleOf(KxDbObjectId id) const;
    // The run of ids (serials) with consecutive handles that holds id, or
    // one of count 0: the handles of the ids around it, without a lookup
    // each while the drawing does not change.
    RunMap::Run handleRunOf(KxDbObjectId id) const;
    // Calls see(id, kept) for every record kept with its owner not known
    // (see setOwner), opened since or not.
    void forEachOwnerUnknown(const std::function<void(KxDbObjectId, const Kept&)>& see) const;
    // The object the registry names by entry for id, made now (or just
    // before, on another thread).
    KxDbObject* make(KxDbObjectId id, std::uint64_t entry);
    // When id names a record kept unopened, an object made from it for a
    // moment (saving writes it so), which the drawing does not hold: the id
    // and owner of the kept one, closed. Else null.
    std::unique_ptr<KxDbObject> makeAside(KxDbObjectId id) const;
    // Lists the ids of objects, with those of the records kept (opened or
    // not) in their places among them.
    void listWith(const KxDbIdRuns& objects, KxDbIdRuns& ids) const;
    // Objects were put in after others (by serial, the last of them put
    // in after each; the records of a run taken apart, which the file gave
    // before the records kept after the run): the records kept after those
    // follow them.
    void followInserted(const std::unordered_map<std::uint64_t, KxDbObjectId>& lastInsertedAfter);

private:
    std::size_t placeOf(const Look& look);
    // setOwner for a record (its packed bytes at record) whose look holds
    // its owner, its look's place placeWidth bytes.
    bool setLookOwner(char* record, Look look, int placeWidth, KxDbObjectId owner);
    // The look to keep an entity's record under (see keep).
    Look lookToKeep(const Look& look);
    // The look to keep a layer's record under: its linetype with its record
    // once many looks are kept and its look is new.
    Look layerLookToKeep(const Look& look) const;
    // The place in the entry of the linetype a record keeps, when its look
    // says it does.
    std::optional<std::uint64_t> linetypeAt(std::uint64_t entry) const;
    Kept keptAt(KxDbObjectId id, std::uint64_t entry) const;
    // The place of the room for a block's entities in the entry, when its
    // look holds them.
    std::optional<std::uint64_t> entitiesAt(std::uint64_t entry) const;
    std::unique_ptr<KxDbObject> makeFrom(KxDbObjectId id, std::uint64_t entry) const;
    // Notes a record kept after the database's latest object.
    void noteListed();

    KxDbDatabase& m_db;
    // Every record kept, in one chunk: the place of its look (a byte while below 128,
    // more as needed; always five when kept with lookLater), its owner's
    // serial so when the look keeps it there (five bytes while not known),
    // a block's entities when the look holds them (how far the first one's
    // serial lies past the block's and how many, in room of fixed width),
    // its layer's and linetype's serials so when the look keeps them there
    // (each as its step from the record's own serial, zigzagged: a layer
    // made for the record just before it takes a byte; no linetype yet as 0
    // in five bytes, the room for its step), its groups' length
    // so, then the groups.
    ByteChunks m_records;
    std::vector<Look> m_looks;
    struct LookHash {
        std::size_t operator()(const Look& look) const;
    };
    std::unordered_map<Look, std::size_t, LookHash> m_lookPlaces;
    std::size_t m_latestLook = 0;
    // The look asked for by the record kept before, as given.
    Look m_lookBefore;
    // The ids kept, in order: a file's records get consecutive ids.
    KxDbIdRuns m_ids;
    // Where they lie among the database's objects: so many after the
    // object named (null: before all), in the order of m_ids.
    struct Listed {
        KxDbObjectId after;
        std::size_t count = 0;
    };
    std::vector<Listed> m_listed;
    // The objects made from records kept, and the records' entries.
    std::vector<std::unique_ptr<KxDbObject>> m_made;
    std::vector<std::uint64_t> m_madeEntries;
    std::mutex m_making;
};

}  // namespace kaldo
