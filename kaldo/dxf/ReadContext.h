// The state of one read of a drawing file: the database being built, the
// kept sections, and references that can only be resolved once the whole
// file or section is read (owners, dictionary entries, multiline styles,
// layers' linetypes).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "kaldo/db/HandleSet.h"
#include "kaldo/dxf/KeptMlines.h"
#include "kaldo/dxf/KeptSections.h"
#include "kaldo/dxf/MlineRecord.h"
#include "kaldo/dxf/PendingDictionaryEntries.h"
#include "kaldo/dxf/ReadExtents.h"
#include "kaldo/dxf/Record.h"
#include "kaldo/dxf/SectionRecords.h"
#include "kxdbdatabase.h"
#include "kxdbidruns.h"
#include "kxdbmline.h"

class KxDbBlockTableRecord;
class KxDbEntity;
class KxDbSymbolTable;

namespace kaldo::dxf {

struct ReadContext {
    explicit ReadContext(KxDbDatabase& database, KeptSections& keptSections) : db(database), kept(keptSections) {}

    KxDbDatabase& db;
    KeptSections& kept;
    KxDbDatabaseRoots roots;
    std::uint64_t maxHandle = 0;
    std::string cmlstyleName;
    std::string clayerName;
    std::string celtypeName;
    std::uint64_t mlineStyleDictionaryHandle = 0;

    struct StyleReference {
        KxDbObjectId mline;
        std::uint64_t handle;
        std::wstring name;
        long line;
    };
    // The multilines made when read.
    std::vector<StyleReference> styleReferences;
    // The multilines kept unopened, with what the check found.
    KeptMlines keptMlines;
    PendingDictionaryEntries dictionaryEntries;
    // Styles whose elements the file lists in another order than by offset,
    // or more of them than a style holds: how many the file lists and, for
    // each element kept in file order, its place in the style. The lists of
    // the style's multilines are kept and put in order the same way.
    struct StyleElementOrder {
        std::size_t listed = 0;
        std::vector<std::size_t> places;
    };
    std::unordered_map<std::uint64_t, StyleElementOrder> styleElementOrders;
    // What the reader repaired so that the drawing opens, a sentence each.
    std::vector<std::string> repairs;
    struct OwnerReference {
        KxDbObjectId object;
        std::uint64_t owner;
    };
    std::vector<OwnerReference> ownerReferences;
    // Objects kept unopened whose owners were not read before them: their
    // records give the owners once the whole file is read.
    std::size_t keptOwnersUnknown = 0;
    // Layers whose linetypes are found once the whole TABLES section is
    // read (the LTYPE table may follow the LAYER table), in the order read:
    // a layer kept unopened gives its linetype's name in its record, a
    // layer read as an object by its entry in layerLinetypeNames.
    KxDbIdRuns layersOfLinetypesLater;
    struct LayerLinetype {
        KxDbObjectId layer;
        std::string linetype;
    };
    std::vector<LayerLinetype> layerLinetypeNames;
    // The lists of the multiline being read, whose room the next reuses.
    KxDbMlineListStore mlineLists;
    // Records of one kind that nothing reads by name and that name no
    // owner or look, either all without handles or all with handles that
    // no object or run has, gathered to become one entity of their block
    // (kaldo/db/RecordRun.h) once a record of another kind or block comes.
    struct PendingRun {
        KxDbObjectId block;
        std::string kind;
        std::uint64_t firstHandle = 0;
        std::uint64_t lastHandle = 0;
        std::uint64_t greatestHandle = 0;
        std::string firstGroups;
        std::string further;
        std::size_t count = 0;
    };
    PendingRun run;
    // Model space's extents, measured as its entities are added.
    ReadExtents extents;
    // The handles of the records runs hold after their first (whose handle
    // is the run's): a record that names one of them later gets a new
    // handle, as it would have were each record of a run an object of its
    // own.
    HandleSet runRecordHandles;
    // Notes the handle of a record a run holds after its first, and
    // reserves it in the drawing: once the seed passes the top of the range,
    // new objects take the lowest free handles, which pass over it.
    void holdRunRecordHandle(std::uint64_t handle)
    {
        runRecordHandles.insert(handle);
        db.reserveHandle(handle);
    }
    // Every run of more than one record, in the order added.
    std::vector<KxDbObjectId> runs;

    // Adds a new object under its file handle (a new one when the file gave
    // none or a taken one) and closes it; remembers its owner for later.
    KxDbObjectId add(KxDbObject* obj, RecordBasics&& basics);
    // The handle a record gave to add its object under: 0 (a new one) when
    // a run holds it.
    std::uint64_t fileHandle(std::uint64_t handle) const;

    // A layer or linetype by name (as spelled, then without regard to
    // case); a missing one is added to its table so that nothing is lost.
    // spelledAsRecord tells whether the name is spelled as the record is.
    KxDbObjectId layer(std::string_view name, bool* spelledAsRecord = nullptr);
    KxDbObjectId linetype(std::string_view name, bool* spelledAsRecord = nullptr);
    // linetype("ByLayer"), the linetype of every entity that names none,
    // looked up once it is found.
    KxDbObjectId byLayerLinetype();
    // The linetype of the name (found so) when the LTYPE table is read and
    // holds it, else null: nothing is added.
    KxDbObjectId knownLinetype(std::string_view name);

    // The block the handle names, or null. The entities of a section name
    // the same few blocks as their owners: the last block found is kept,
    // sparing a search of the handle table per entity.
    KxDbObjectId blockByHandle(std::uint64_t handle);
    // Whether id names a block of the drawing, told without opening it.
    bool isBlock(KxDbObjectId id) const;
    // The block id names when it is opened (model and paper space always
    // are), else null: nothing is opened. The entities of a section go to
    // the same few blocks: the last one found is kept.
    KxDbBlockTableRecord* openedBlock(KxDbObjectId id);

    // What readEntity takes an entity record apart into on this thread,
    // reused from record to record so that its room (a polyline's
    // vertices) is made once.
    std::unique_ptr<RecordAhead> entityParts;

private:
    std::uint64_t lastBlockHandle_ = 0;
    KxDbObjectId lastBlock_;
    KxDbObjectId byLayerLinetype_;
    KxDbObjectId lastOpenedBlockId_;
    KxDbBlockTableRecord* lastOpenedBlock_ = nullptr;
    struct Found {
        KxDbObjectId id;
        bool spelledAsRecord = true;
    };
    // Names found so far, looked up by the text of the record in hand
    // without a copy: the first few (a drawing's entities mostly use a few
    // layers) one by one, the others by hash.
    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
    };
    struct FoundNames {
        static constexpr std::size_t kFirst = 8;
        static constexpr std::size_t kCached = 256;
        std::unordered_map<std::string, Found, NameHash, std::equal_to<>> byName;
        std::vector<const std::pair<const std::string, Found>*> first;
        // The entry of the first few spelled as name exactly, or null.
        const Found* firstNamed(std::string_view name) const;
    };
    static KxDbObjectId found(const Found& entry, bool* spelledAsRecord)
    {
        if (spelledAsRecord)
            *spelledAsRecord = entry.spelledAsRecord;
        return entry.id;
    }
    // Adds a record of the name as an object: null when the table refuses it.
    KxDbObjectId addRecord(KxDbSymbolTable& table, const std::wstring& name, bool isLayer);
    // Null for a name the table does not hold unless addMissing.
    KxDbObjectId record(KxDbObjectId table, FoundNames& cache, std::string_view name, bool isLayer,
                        bool* spelledAsRecord, bool addMissing = true);
    FoundNames layers_;
    FoundNames linetypes_;
};

}  // namespace kaldo::dxf
