// A drawing: the objects it owns and its header values.
//
// A new drawing holds the named-object dictionary with the multiline-style
// dictionary "ACAD_MLINESTYLE" and in it the style STANDARD (elements 0.5
// and -0.5, by layer, linetype ByLayer, cap angles pi/2); the linetypes
// ByLayer, ByBlock and Continuous; the layer "0"; the blocks *Model_Space
// and *Paper_Space. Model space is the current space.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "kxdbidruns.h"
#include "kxdbobject.h"

class KxDbDictionary;
class KxDbBlockTable;
class KxDbLayerTable;
class KxDbLinetypeTable;
namespace kaldo {
class HandleTable;
class UndoHistory;
class UnopenedRecords;
}

inline constexpr const wchar_t* kxdbMlineStyleDictionaryName = L"ACAD_MLINESTYLE";
inline constexpr const wchar_t* kxdbStandardStyleName = L"STANDARD";
// The highest handle a drawing gives out and a drawing file may hold; the
// handle seed may stand one above it. A drawing whose seed stands there
// gives new objects the lowest handles nothing holds, so that its handles
// never pass the limit nor wrap around.
inline constexpr std::uint64_t kxdbHighestHandle = 0xFFFFFFFF00000000u;

// The objects every drawing has, as a file reader found them.
struct KxDbDatabaseRoots {
    KxDbObjectId namedObjects, blockTable, layerTable, linetypeTable;
    KxDbObjectId modelSpace, paperSpace;
    KxDbObjectId byLayer, byBlock, continuous;
};

class KxDbDatabase {
public:
    // buildDefaultDrawing false: an empty database (for a file reader that
    // builds everything itself).
    explicit KxDbDatabase(bool buildDefaultDrawing = true);
    KxDbDatabase(const KxDbDatabase&) = delete;
    KxDbDatabase& operator=(const KxDbDatabase&) = delete;
    ~KxDbDatabase();

    // Takes over a new object (from `new`, in no database): gives it an id
    // and a handle (the given one when not 0 and free, else a new one, see
    // newHandle). The object stays open for write; the caller closes it.
    Kald::ErrorStatus addObject(KxDbObject* obj, std::uint64_t handle = 0);
    // Keeps a handle that something kept beside the objects holds (a table
    // record a file reader keeps as it was, a record of a run of kept
    // records) from being given to an object.
    void reserveHandle(std::uint64_t handle);
    // A new handle for something kept beside the objects, given out as an
    // object's would be and reserved.
    std::uint64_t reserveNewHandle();
    // Appends an entity to the current space (addObject when it is new).
    Kald::ErrorStatus addToCurrentSpace(KxDbEntity* entity);
    Kald::ErrorStatus addToCurrentSpace(KxDbEntity* entity, KxDbObjectId& id);

    KxDbObjectId objectIdFromHandle(std::uint64_t handle) const;
    // Names the database's root objects (a file reader, after adding them);
    // eWrongObjectType when one is missing or of another class. Model space
    // becomes the current space.
    Kald::ErrorStatus setRoots(const KxDbDatabaseRoots& roots);
    // Every object (erased ones too) in the order they were added, those a
    // file reader keeps unopened among them: runs of ids, as a drawing read
    // from a file gives its objects consecutive ones.
    KxDbIdRuns objectIds() const;

    KxDbObjectId namedObjectsDictionaryId() const { return m_namedObjects; }
    KxDbObjectId mlineStyleDictionaryId() const;
    KxDbObjectId blockTableId() const { return m_blockTable; }
    KxDbObjectId layerTableId() const { return m_layerTable; }
    KxDbObjectId linetypeTableId() const { return m_linetypeTable; }
    KxDbObjectId modelSpaceId() const { return m_modelSpace; }
    KxDbObjectId paperSpaceId() const { return m_paperSpace; }
    KxDbObjectId currentSpaceId() const { return m_currentSpace; }
    Kald::ErrorStatus setCurrentSpaceId(KxDbObjectId space);
    KxDbObjectId byLayerLinetype() const { return m_byLayer; }
    KxDbObjectId byBlockLinetype() const { return m_byBlock; }
    KxDbObjectId continuousLinetype() const { return m_continuous; }

    // Opens a well-known object (the caller closes it).
    Kald::ErrorStatus getMLStyleDictionary(KxDbDictionary*& dict, int mode) const;
    Kald::ErrorStatus getNamedObjectsDictionary(KxDbDictionary*& dict, int mode) const;
    Kald::ErrorStatus getBlockTable(KxDbBlockTable*& table, int mode) const;
    Kald::ErrorStatus getLayerTable(KxDbLayerTable*& table, int mode) const;
    Kald::ErrorStatus getLinetypeTable(KxDbLinetypeTable*& table, int mode) const;

    // Header values.
    KxDbObjectId cmlstyleID() const { return m_header.cmlstyle; }
    // style must be a multiline style. spelling is the name as the user or
    // the file wrote it; it is kept while it names the current style (case
    // ignored).
    Kald::ErrorStatus setCmlstyleID(KxDbObjectId style, const wchar_t* spelling = nullptr);
    // The current style's name as it was last written, else as the style
    // spells it; empty when there is no current style.
    std::wstring cmlstyleName() const;
    int cmljust() const { return m_header.cmljust; }
    Kald::ErrorStatus setCmljust(int justification);  // 0..2
    double cmlscale() const { return m_header.cmlscale; }
    Kald::ErrorStatus setCmlscale(double scale);
    int measurement() const { return m_header.measurement; }
    Kald::ErrorStatus setMeasurement(int value);  // 0 imperial, 1 metric
    int dimzin() const { return m_header.dimzin; }
    Kald::ErrorStatus setDimzin(int value);  // 0..15
    // 1 while model space is shown, 0 while a layout is.
    int tilemode() const { return m_header.tilemode; }
    Kald::ErrorStatus setTilemode(int value);  // 0 or 1
    const KxGePoint3d& ucsorg() const { return m_header.ucsOrigin; }
    const KxGeVector3d& ucsxdir() const { return m_header.ucsXDir; }
    const KxGeVector3d& ucsydir() const { return m_header.ucsYDir; }
    // xDir and yDir are normalised; they must be perpendicular (within
    // 1e-6 of the cosine) and not null.
    Kald::ErrorStatus setUcs(const KxGePoint3d& origin, const KxGeVector3d& xDir, const KxGeVector3d& yDir);
    KxDbObjectId clayer() const { return m_header.clayer; }
    Kald::ErrorStatus setClayer(KxDbObjectId layer);
    KxDbObjectId celtype() const { return m_header.celtype; }
    Kald::ErrorStatus setCeltype(KxDbObjectId linetype);
    const KxCmColor& cecolor() const { return m_header.cecolor; }
    Kald::ErrorStatus setCecolor(const KxCmColor& color);
    // The next handle to give out.
    std::uint64_t handseed() const { return m_header.handseed; }
    Kald::ErrorStatus setHandseed(std::uint64_t seed);  // not below a handle in use

    // The object an id of this database names, without opening it (null
    // when the id is not of this database).
    KxDbObject* peekObject(KxDbObjectId id) const;

    // Counts the changes: objects added or opened for write, header values
    // set. A window compares counts to know when to draw again and whether
    // the drawing holds unsaved changes.
    std::uint64_t changeCount() const { return m_changes; }
    void noteChange() { ++m_changes; }

    // The drawing's undo history: changes recorded per command, taken back
    // and restored (see kaldo/db/UndoHistory.h).
    kaldo::UndoHistory& undoHistory() const { return *m_undo; }

    // Entities and objects a file reader keeps as their records until they
    // are first opened (kaldo/db/UnopenedRecords.h).
    kaldo::UnopenedRecords& unopenedRecords() const { return *m_unopened; }

private:
    friend class KxDbObject;
    friend class kaldo::UndoHistory;
    friend class kaldo::UnopenedRecords;

    // What the database keeps besides its objects and writes to a file's
    // header; undo copies it whole.
    struct Header {
        std::uint64_t handseed = 1;
        KxDbObjectId cmlstyle, clayer, celtype;
        std::wstring cmlstyleSpelling;
        int cmljust = 0;
        double cmlscale = 1.0;
        int measurement = 0;
        int dimzin = 0;
        int tilemode = 1;
        KxGePoint3d ucsOrigin;
        KxGeVector3d ucsXDir{1, 0, 0};
        KxGeVector3d ucsYDir{0, 1, 0};
        KxCmColor cecolor;
    };

    void buildDefaultDrawing();
    // The handle seed while it is at most kxdbHighestHandle; beyond, the
    // lowest handle that no object holds and none is reserved.
    std::uint64_t newHandle();
    Kald::ErrorStatus setHeaderInt(int Header::*field, int value, int highest);
    // Takes an object out of the database as if it had never been added
    // (handle tells what its handle was), and puts it back: undo and redo
    // of an addition.
    std::unique_ptr<KxDbObject> detachObject(KxDbObjectId id, std::uint64_t& handle);
    void reattachObject(std::unique_ptr<KxDbObject> obj, std::uint64_t handle);
    // Gives an object made from its kept record the id and owner it was
    // kept with, closed.
    static void nameMade(KxDbObject& obj, KxDbObjectId id, KxDbObjectId owner);

    // The objects the database owns, in order, by id (the registry holds
    // them): a drawing read from a file gives them consecutive ids, so the
    // list costs a few words where a pointer each cost eight bytes.
    KxDbIdRuns m_objectIds;
    // The objects' handles, and those reserved.
    std::unique_ptr<kaldo::HandleTable> m_handles;
    // Where the search for a free handle goes on (below it none is free).
    std::uint64_t m_lowestFreeHandle = 1;
    std::uint64_t m_changes = 0;
    KxDbObjectId m_namedObjects, m_blockTable, m_layerTable, m_linetypeTable;
    KxDbObjectId m_modelSpace, m_paperSpace, m_currentSpace;
    KxDbObjectId m_byLayer, m_byBlock, m_continuous;
    Header m_header;
    std::unique_ptr<kaldo::UndoHistory> m_undo;
    std::unique_ptr<kaldo::UnopenedRecords> m_unopened;
};
