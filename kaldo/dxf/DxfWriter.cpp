// Writing a drawing file: header, classes, tables, blocks, entities,
// objects and kept sections, in one pass over the database.
#include "kaldo/dxf/DxfFile.h"

#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/dxf/AtomicFile.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/EntityWalk.h"
#include "kaldo/dxf/EntityRecords.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/HeaderSection.h"
#include "kaldo/dxf/ObjectRecords.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/dxf/SpaceEntities.h"
#include "kaldo/dxf/TablesSection.h"
#include "kaldo/dxf/UnmodelledRecords.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdatabase.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace kaldo::dxf {

namespace {

KxDbObjectId addBlockEnd(KxDbDatabase& db, const KxDbBlockTableRecord& block, bool begin)
{
    const bool paper = kaldo::sameName(block.name(), kxdbPaperSpaceName);
    std::vector<KxDbFileGroup> groups = {{5, 0, "0"}, {330, 0, handleText(block.handle())}, {100, 0, "AcDbEntity"}};
    if (paper)
        groups.push_back({67, 0, "1"});
    groups.push_back({8, 0, "0"});
    if (begin) {
        const std::string name = utf8FromWide(block.name());
        groups.insert(groups.end(), {{100, 0, "AcDbBlockBegin"}, {2, 0, name}, {70, 0, "0"}, {10, 0, "0"},
                                     {20, 0, "0"}, {30, 0, "0"}, {3, 0, name}, {1, 0, ""}});
    } else {
        groups.push_back({100, 0, "AcDbBlockEnd"});
    }
    auto* record = new KxDbUnmodelledObject(begin ? "BLOCK" : "ENDBLK", std::move(groups));
    db.addObject(record);
    record->setOwnerId(block.objectId());
    record->close();
    return record->objectId();
}

std::vector<KxDbObjectId> blocksOf(const KxDbDatabase& db)
{
    std::vector<KxDbObjectId> blocks;
    const auto* table = KxDbBlockTable::cast(db.peekObject(db.blockTableId()));
    for (auto it = table->newIterator(); !it->done(); it->step())
        blocks.push_back(it->getRecordId());
    return blocks;
}

// The block id names; one kept unopened is made for the moment, in aside.
const KxDbBlockTableRecord* blockToWrite(const KxDbDatabase& db, KxDbObjectId id, std::unique_ptr<KxDbObject>& aside)
{
    aside = db.unopenedRecords().makeAside(id);
    return KxDbBlockTableRecord::cast(aside ? aside.get() : db.peekObject(id));
}

// Every block gets BLOCK and ENDBLK records (new blocks have none yet).
void addMissingBlockEnds(KxDbDatabase& db, KeptSections& kept)
{
    const kaldo::UndoHistory::Pause notRecorded(db.undoHistory());
    std::unique_ptr<KxDbObject> aside;
    for (const KxDbObjectId id : blocksOf(db)) {
        if (kept.blockEnds.find(id))
            continue;
        const KxDbBlockTableRecord& block = *blockToWrite(db, id, aside);
        const KxDbObjectId begin = addBlockEnd(db, block, true);
        kept.blockEnds.add(id, {begin, addBlockEnd(db, block, false)});
    }
    kept.blockEnds.settle();
}

void writeBlockEnd(GroupWriter& w, const KxDbDatabase& db, KxDbObjectId id)
{
    const BlockEndRecord record = *blockEndRecord(db, id);
    writeUnmodelledRecord(w, record.kind, record.groups, record.handle);
}

void writeEntitiesOf(GroupWriter& w, const KxDbDatabase& db, const KxDbBlockTableRecord& block, NameCache& names,
                     ProgressMeter& meter)
{
    std::unique_ptr<KxDbEntity> aside;
    for (auto it = block.newIterator(); !it->done(); it->step())
        if (const KxDbEntity* entity = entityToWrite(db, it->getEntityId(), aside)) {
            writeEntityRecord(w, db, *entity, names);
            meter.record();
        }
}

void writeKeptSection(GroupWriter& w, const std::string& name, const KxDbPackedGroups& groups)
{
    w.text(0, "SECTION");
    w.text(2, name);
    groups.view().forEach([&](int code, std::uint8_t, std::string_view value) { w.text(code, value); });
    w.text(0, "ENDSEC");
}

}  // namespace

void writeDxf(int fd, KxDbDatabase& db, KeptSections& kept, const ProgressReport& report, EntityChunks chunks)
{
    addMissingBlockEnds(db, kept);
    // The list of objects, taken once for their count and the OBJECTS
    // section: the records of a file are runs of ids, a few words.
    const KxDbIdRuns objectIds = db.objectIds();
    ProgressMeter meter(report, objectIds.size());
    meter.report();
    GroupWriter w(fd);
    w.encodeAs(writtenVersion(kept), kept.codePage);
    NameCache names(db);
    writeHeaderSection(w, db, kept, chunks);
    if (kept.hasClasses)
        writeKeptSection(w, "CLASSES", kept.classes);
    writeTablesSection(w, db, kept);

    w.text(0, "SECTION");
    w.text(2, "BLOCKS");
    std::unique_ptr<KxDbObject> blockAside;
    for (const KxDbObjectId id : blocksOf(db)) {
        const BlockEnds::Ends ends = *kept.blockEnds.find(id);
        writeBlockEnd(w, db, ends.begin);
        if (id != db.modelSpaceId() && id != db.paperSpaceId())
            writeEntitiesOf(w, db, *blockToWrite(db, id, blockAside), names, meter);
        writeBlockEnd(w, db, ends.end);
    }
    w.text(0, "ENDSEC");

    w.text(0, "SECTION");
    w.text(2, "ENTITIES");
    w.flush();
    writeSpaceEntities(fd, db, kept, names, meter, chunks);
    w.text(0, "ENDSEC");

    w.text(0, "SECTION");
    w.text(2, "OBJECTS");
    const KxDbObject* root = db.peekObject(db.namedObjectsDictionaryId());
    if (root)
        writeObject(w, db, *root);
    std::unique_ptr<KxDbObject> aside;
    for (const KxDbObjectId id : objectIds) {
        aside.reset();
        // Entities were written with their blocks, opened or not, and are
        // most of the list: told by their class alone.
        const KxRxClass* const cls = id.objectClass();
        if (cls && cls->isDerivedFrom(KxDbEntity::desc()))
            continue;
        if (kaldo::isUnopened(id)) {
            // BLOCK and ENDBLK records kept unopened were written with their
            // blocks, table records with their tables; objects kept so are
            // written from an object made for the moment.
            if (cls->isDerivedFrom(KxDbSymbolTableRecord::desc())
                || isBlockEnd(db.unopenedRecords().kept(id)->look->kind))
                continue;
            aside = db.unopenedRecords().makeAside(id);
        }
        const KxDbObject* obj = aside ? aside.get() : db.peekObject(id);
        try {
            if (obj && obj != root && !obj->isErased() && writeObject(w, db, *obj))
                meter.record();
        } catch (const DxfError& e) {
            refuseRecord(*obj, e);
        }
    }
    w.text(0, "ENDSEC");
    kept.sections.view().forEach([&](int code, std::uint8_t, std::string_view value) { w.text(code, value); });
    w.text(0, "EOF");
    meter.finish();
    w.flush();
}

void saveDxfFile(const std::filesystem::path& path, KxDbDatabase& db, KeptSections& kept, bool replaceReadOnly,
                 const ProgressReport& report)
{
    writeFileAtomically(path, [&](int fd) { writeDxf(fd, db, kept, report); }, replaceReadOnly);
}

}  // namespace kaldo::dxf
