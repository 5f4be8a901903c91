// The undo history of one drawing database.
//
// While a step is open, changes are recorded at the database level, before
// they happen: an object opened for write, erased or un-erased, given
// another owner, or changed by the database itself has its state copied
// (KxDbObject::clone, owner and erased flag besides) the first time within
// the step; an object added within the step is noted as absent before it;
// the header values (handle seed included) are copied before the first of
// them changes. A step is one command; a step that recorded nothing is
// dropped, and one that recorded something clears what could be redone.
//
// A multiline that is only translated keeps its vertex positions, not a
// copy: a translation changes nothing else of it (KxDbMline::transformBy),
// and exchanging the positions back restores it bit for bit. Should the
// step change it otherwise later, its whole state is copied then, after the
// positions, so that taking the step back (in reverse order) still ends
// with the positions.
//
// A table's records and a block's entities are no part of the copy: these
// lists only grow by appending, so the record keeps how many ids the list
// held, and taking the step back cuts what came after (and keeps it to put
// back). A step costs what it changes, however many entities a block holds.
//
// Taking a step back exchanges every recorded state with the object's
// current one (an added object is taken out of the database, its handle
// given back; taking it back again puts it in under its id and handle), so
// the same exchange in the opposite order restores the step. Objects added
// within the step are in the database while the states are exchanged
// (taken out after them, put back before them), so that a table reads the
// names of the records it lists again.
//
// Recorded state is counted in bytes (stateBytes, the ids cut from lists,
// and what the history spends on each record and step); when undoable and
// redoable steps together hold more than the budget, the oldest undoable
// steps are dropped, the newest always kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "kxdbdatabase.h"
#include "kxdbobject.h"

class KxDbBlockTableRecord;

namespace kaldo {

inline constexpr std::size_t kUndoByteBudget = std::size_t(64) << 20;

class UndoHistory {
public:
    explicit UndoHistory(KxDbDatabase& db, std::size_t byteBudget = kUndoByteBudget);
    ~UndoHistory();
    UndoHistory(const UndoHistory&) = delete;
    UndoHistory& operator=(const UndoHistory&) = delete;

    // Drops the oldest steps at once when they no longer fit.
    void setByteBudget(std::size_t bytes);

    // Opens a step named name (a command's name); an open inside an open
    // step joins it. endStep closes what beginStep opened.
    void beginStep(const std::wstring& name);
    void endStep();

    // Whether a step is open and records.
    bool recording() const { return m_depth > 0 && m_paused == 0; }
    // Recording, while a step is open (else they do nothing).
    void recordBefore(KxDbObject& obj);
    // obj was just added under handle.
    void recordAdded(KxDbObject& obj, std::uint64_t handle);
    void recordHeader();
    // An object is added under handle without one (an entity a file reader
    // keeps unopened): false, noting nothing, while a step records.
    bool addedUnrecorded(std::uint64_t handle);

    // As upgradeOpen, for an entity that is about to be translated (and
    // changed no other way while open): a multiline has its vertex
    // positions recorded instead of a copy.
    Kald::ErrorStatus upgradeOpenToTranslate(KxDbEntity& entity);

    // Places a mark after the latest step.
    void mark();
    // Takes back up to count steps, latest first; marks passed go. The names
    // of the steps taken back, in that order.
    std::vector<std::wstring> undo(int count);
    // Takes back every step after the latest mark (which goes), or every
    // step when there is none.
    std::vector<std::wstring> undoToMark();
    // Restores what the latest undo or undoToMark not restored yet took
    // back; the names of the steps, in the order they are restored.
    std::vector<std::wstring> redo();

    // Changes made while a Pause lives are not recorded: records the host
    // makes for itself (the block ends a file needs) are nothing to take back.
    class Pause {
    public:
        explicit Pause(UndoHistory& history) : m_history(history) { ++m_history.m_paused; }
        ~Pause() { --m_history.m_paused; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        UndoHistory& m_history;
    };

    // Objects to put into the database under their handles (which no
    // object holds) right after the object named after: entities in its
    // block's list, other objects in the database's list, whose order a
    // save follows (the records of a run taken apart: kaldo/db/RecordRun.h).
    struct UnrecordedInsert {
        KxDbObjectId after;
        std::vector<std::pair<std::unique_ptr<KxDbObject>, std::uint64_t>> objects;
    };
    // Puts them in without a record and without changing the drawing; every
    // record of a block's list counts the new places. Each list is walked
    // once, however many objects go into it.
    void insertUnrecorded(std::vector<UnrecordedInsert> inserts);

    std::size_t undoableSteps() const;
    std::size_t bytes() const { return m_bytes; }

private:
    // Takes back up to count steps, latest first, passing over marks, or
    // stopping at the first one (which goes) when stopAtMark.
    std::vector<std::wstring> takeBack(int count, bool stopAtMark);

    struct ObjectRecord {
        enum class Kind { Absent, Copy, Detached, Positions };
        KxDbObjectId id;
        Kind kind = Kind::Absent;
        // The copy (Copy) or the object taken out of the database (Detached),
        // and then the handle it had.
        std::unique_ptr<KxDbObject> object;
        std::uint64_t handle = 0;
        KxDbObjectId owner;
        bool erased = false;
        // A table's or block's list: how many ids it held when recorded,
        // and the ids the next exchange appends after them.
        std::optional<std::size_t> listed;
        std::vector<KxDbObjectId> listedTail;
        // Positions: where the multiline's vertex positions lie in the
        // step's list of positions.
        std::size_t firstPosition = 0;
        std::size_t positionCount = 0;
        std::size_t bytes = 0;
    };
    struct Step {
        std::wstring name;
        bool mark = false;
        std::vector<ObjectRecord> objects;
        std::vector<KxGePoint3d> positions;  // of the Positions records
        std::optional<KxDbDatabase::Header> header;
        std::size_t bytes = 0;
        // What the step holds besides the states its records point to.
        std::size_t ownBytes() const;
    };

    bool firstRecordOf(const KxDbObject& obj);
    // Records a multiline's vertex positions; false for other entities.
    bool recordPositions(const KxDbEntity& entity);
    static std::optional<std::size_t> listedCount(const KxDbObject& obj);
    static void exchangeListedTail(KxDbObject& obj, std::size_t keep, std::vector<KxDbObjectId>& tail);
    static std::size_t bytesOf(const ObjectRecord& record);
    void exchange(ObjectRecord& record, std::span<KxGePoint3d> positions);
    void addBytes(std::size_t bytes);
    // Undoes (backwards) or redoes a step; the step then records the state
    // it replaced.
    void exchange(Step& step, bool backwards);
    void keepOpenStep();
    void dropOverBudget();
    void clearRedo();

    KxDbDatabase& m_db;
    std::size_t m_budget;
    int m_depth = 0;
    int m_paused = 0;
    // Above every handle of an object added while nothing was recorded: the
    // handle seed a step brings back never falls below it.
    std::uint64_t m_handleFloor = 0;
    Step m_open;
    // Ids recorded in the open step, true where by their positions alone.
    std::unordered_map<std::uint64_t, bool> m_recorded;
    std::deque<Step> m_undo;                        // oldest first
    std::vector<std::vector<Step>> m_redo;          // per take-back, in the order taken back
    std::size_t m_bytes = 0;
};

// Records obj before a change made without opening it for write; nothing
// for an object in no database.
void recordBeforeChange(KxDbObject& obj);
// UndoHistory::upgradeOpenToTranslate of the entity's drawing (upgradeOpen
// for an entity in none).
Kald::ErrorStatus upgradeOpenToTranslate(KxDbEntity& entity);

}  // namespace kaldo
