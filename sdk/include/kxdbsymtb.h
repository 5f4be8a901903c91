// Symbol tables: the block, layer and linetype tables and their records.
// Record names are unique within a table without regard to case; a table
// finds a record by name through a hash index of the names, which reads
// each name where the record holds it (kaldo/db/TableRecords.h). Iterators
// skip erased records; a block record's iterator skips erased entities.
//
// A table's records and a block's entities belong to that one table or
// block: copyFrom does not copy these lists (nor a record's place in its
// table). They only grow by appending, so the undo history records how
// many ids a list held and takes back what was appended after.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kxdbidruns.h"
#include "kxdbobject.h"

class KxDbSymbolTableIterator;
class KxDbBlockTableRecordIterator;
namespace kaldo {
class TableRecords;
class UnopenedRecords;
}

class KxDbSymbolTableRecord : public KxDbObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbSymbolTableRecord)

    const std::wstring& name() const { return m_name; }
    // Points into the record; valid while it is open.
    Kald::ErrorStatus getName(const wchar_t*& name) const;
    // Renaming a record that is in a table fails with eDuplicateKey when
    // the table holds another record of that name.
    Kald::ErrorStatus setName(const wchar_t* name);

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;

private:
    friend class KxDbSymbolTable;
    friend class kaldo::UnopenedRecords;
    // Takes another name, which the table listing the record indexes.
    void rename(const std::wstring& name);

    std::wstring m_name;
    KxDbObjectId m_table;  // the table listing the record, if any
};

class KxDbSymbolTable : public KxDbObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbSymbolTable)
    KxDbSymbolTable();
    ~KxDbSymbolTable() override;

    // getErased: also find an erased record.
    Kald::ErrorStatus getAt(const wchar_t* name, KxDbObjectId& id, bool getErased = false) const;
    Kald::ErrorStatus getAt(const wchar_t* name, KxDbSymbolTableRecord*& record, int mode, bool openErased = false) const;
    bool has(const wchar_t* name) const;
    bool has(KxDbObjectId id) const;
    // Adds a record (new, or already in this database) under its own name;
    // eDuplicateKey when the name is taken, eWrongObjectType when the record
    // is not of the table's record class.
    Kald::ErrorStatus add(KxDbSymbolTableRecord* record, KxDbObjectId& id);
    Kald::ErrorStatus add(KxDbSymbolTableRecord* record);

    // Records in the order they were added.
    std::unique_ptr<KxDbSymbolTableIterator> newIterator() const;

protected:
    virtual const KxRxClass* recordClass() const = 0;

private:
    friend class KxDbSymbolTableRecord;
    friend class kaldo::UndoHistory;
    friend class kaldo::UnopenedRecords;
    KxDbObjectId findId(const std::wstring& name, bool getErased) const;
    void index(const KxDbSymbolTableRecord& record);
    void unindex(const KxDbSymbolTableRecord& record);
    // Undo: cuts the list after its first keep records and appends tail,
    // which receives the records cut.
    void exchangeTail(std::size_t keep, std::vector<KxDbObjectId>& tail);

    // The records listed, in order, and their index by name.
    std::unique_ptr<kaldo::TableRecords> m_records;
};

class KxDbSymbolTableIterator {
public:
    explicit KxDbSymbolTableIterator(KxDbIdRuns ids);
    void start();
    bool done() const;
    void step();
    KxDbObjectId getRecordId() const;
    Kald::ErrorStatus getRecordId(KxDbObjectId& id) const;
    Kald::ErrorStatus getRecord(KxDbSymbolTableRecord*& record, int mode, bool openErased = false) const;

private:
    void skipErased();

    KxDbIdRuns m_ids;
    KxDbIdRuns::Place m_at;
};


// A block: model space, paper space or a named block, holding entities.
class KxDbBlockTableRecord : public KxDbSymbolTableRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbBlockTableRecord)

    bool isLayout() const;  // model or paper space
    const KxGePoint3d& origin() const { return m_origin; }
    void setOrigin(const KxGePoint3d& origin) { m_origin = origin; }

    // Appends an entity (new, or in this database without owner) and makes
    // this block its owner. The entity stays open for write.
    Kald::ErrorStatus appendKxDbEntity(KxDbObjectId& id, KxDbEntity* entity);
    Kald::ErrorStatus appendKxDbEntity(KxDbEntity* entity);
    int numEntities() const;  // not erased
    // Puts the entities in a new drawing order: order holds each entity of
    // the block that is not erased, once; the erased ones follow them.
    // eInvalidInput, and no change, for any other list.
    Kald::ErrorStatus setEntityOrder(const std::vector<KxDbObjectId>& order);
    // Entities in drawing order.
    std::unique_ptr<KxDbBlockTableRecordIterator> newIterator() const;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    friend class kaldo::UndoHistory;
    friend class kaldo::UnopenedRecords;
    // Undo: cuts the list after its first keep entities and appends tail,
    // which receives the entities cut.
    void exchangeTail(std::size_t keep, std::vector<KxDbObjectId>& tail);

    KxGePoint3d m_origin;
    KxDbIdRuns m_entities;
};

class KxDbBlockTableRecordIterator {
public:
    explicit KxDbBlockTableRecordIterator(KxDbIdRuns ids);
    void start();
    bool done() const;
    void step();
    KxDbObjectId getEntityId() const;
    Kald::ErrorStatus getEntityId(KxDbObjectId& id) const;
    Kald::ErrorStatus getEntity(KxDbEntity*& entity, int mode, bool openErased = false) const;

private:
    void skipErased();

    KxDbIdRuns m_ids;
    KxDbIdRuns::Place m_at;
};

// The names of the two layout blocks.
inline constexpr const wchar_t* kxdbModelSpaceName = L"*Model_Space";
inline constexpr const wchar_t* kxdbPaperSpaceName = L"*Paper_Space";

class KxDbBlockTable : public KxDbSymbolTable {
public:
    KX_RX_DECLARE_MEMBERS(KxDbBlockTable)
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

protected:
    const KxRxClass* recordClass() const override { return KxDbBlockTableRecord::desc(); }
};

class KxDbLayerTableRecord : public KxDbSymbolTableRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbLayerTableRecord)

    const KxCmColor& color() const { return m_color; }
    void setColor(const KxCmColor& color) { m_color = color; }
    KxDbObjectId linetypeObjectId() const { return m_linetype; }
    void setLinetypeObjectId(KxDbObjectId linetype) { m_linetype = linetype; }
    bool isOff() const { return m_off; }
    void setIsOff(bool off) { m_off = off; }
    bool isFrozen() const { return m_frozen; }
    void setIsFrozen(bool frozen) { m_frozen = frozen; }

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    KxCmColor m_color;
    KxDbObjectId m_linetype;
    bool m_off = false;
    bool m_frozen = false;
};

class KxDbLayerTable : public KxDbSymbolTable {
public:
    KX_RX_DECLARE_MEMBERS(KxDbLayerTable)
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

protected:
    const KxRxClass* recordClass() const override { return KxDbLayerTableRecord::desc(); }
};

// A linetype: a description and a dash pattern. Dashes are positive,
// gaps negative, dots 0; the pattern length is the sum of their sizes.
// A linetype without dashes is continuous.
class KxDbLinetypeTableRecord : public KxDbSymbolTableRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbLinetypeTableRecord)

    const std::wstring& description() const { return m_description; }
    void setDescription(const wchar_t* text) { m_description = text ? text : L""; }
    double patternLength() const;
    int numDashes() const { return static_cast<int>(m_dashes.size()); }
    double dashLengthAt(int index) const;
    const std::vector<double>& dashes() const { return m_dashes; }
    void setDashes(std::vector<double> dashes) { m_dashes = std::move(dashes); }

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    std::wstring m_description;
    std::vector<double> m_dashes;
};

class KxDbLinetypeTable : public KxDbSymbolTable {
public:
    KX_RX_DECLARE_MEMBERS(KxDbLinetypeTable)
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

protected:
    const KxRxClass* recordClass() const override { return KxDbLinetypeTableRecord::desc(); }
};
