// Records of a drawing file that the host reads but does not model: other
// kinds of entities (text, splines, hatches, ...) and objects (layouts,
// groups, ...). They keep their kind and every group as read, their handle
// and their owner, and are written back unchanged.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kxdbobject.h"

// The kind and groups of an unmodelled record, shared by objects and
// entities: the kind and the packed groups lie in one allocation, eight
// bytes in the object, so that a drawing of many small records costs
// little more than their bytes. An object made by its class's make holds
// them in its own allocation, after the object.
class KxDbUnmodelledRecord {
public:
    KxDbUnmodelledRecord() = default;
    KxDbUnmodelledRecord(std::string_view dxfName, const std::vector<KxDbFileGroup>& groups)
        : KxDbUnmodelledRecord(dxfName, KxDbPackedGroups(groups).view())
    {
    }
    KxDbUnmodelledRecord(std::string_view dxfName, KxDbPackedGroupsView groups);
    KxDbUnmodelledRecord(const KxDbUnmodelledRecord& other);
    KxDbUnmodelledRecord& operator=(const KxDbUnmodelledRecord& other);
    ~KxDbUnmodelledRecord();

    // The record's kind as the file names it ("LAYOUT", "XRECORD", ...).
    std::string_view dxfName() const;
    // Every group after the kind, handle and owner included, unpacked.
    std::vector<KxDbFileGroup> groups() const { return packedGroups().unpacked(); }
    // The same as stored, to walk without unpacking.
    KxDbPackedGroupsView packedGroups() const;
    // The bytes held, for the host's accounting of memory.
    std::size_t byteSize() const;

protected:
    void copyRecord(const KxDbUnmodelledRecord& other) { *this = other; }
    // A new T whose record lies in its own allocation, after it.
    template <class T>
    static std::unique_ptr<T> makeWithRecord(std::string_view dxfName, KxDbPackedGroupsView groups);

private:
    // The record's bytes for dxfName and groups, written at room, which
    // holds recordSize of them; null for an empty record.
    static std::size_t recordSize(std::string_view dxfName, KxDbPackedGroupsView groups);
    static char* writeRecord(char* room, std::string_view dxfName, KxDbPackedGroupsView groups);
    const char* record() const { return reinterpret_cast<const char*>(m_record & ~kInObject); }
    void freeRecord();

    // The kind (a byte for the common kinds) and the groups, with their
    // lengths in a byte or two, at the address held (null for an empty
    // record); its lowest bit, which no address of the record's own
    // allocation has, tells bytes in the object's allocation.
    static constexpr std::uintptr_t kInObject = 1;
    std::uintptr_t m_record = 0;
};

class KxDbUnmodelledObject : public KxDbObject, public KxDbUnmodelledRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbUnmodelledObject)
    KxDbUnmodelledObject() = default;
    using KxDbUnmodelledRecord::KxDbUnmodelledRecord;
    // The object and its record in one allocation.
    static std::unique_ptr<KxDbUnmodelledObject> make(std::string_view dxfName, KxDbPackedGroupsView groups);

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override;
};

class KxDbUnmodelledEntity : public KxDbEntity, public KxDbUnmodelledRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbUnmodelledEntity)
    KxDbUnmodelledEntity() = default;
    using KxDbUnmodelledRecord::KxDbUnmodelledRecord;
    // The entity and its record in one allocation.
    static std::unique_ptr<KxDbUnmodelledEntity> make(std::string_view dxfName, KxDbPackedGroupsView groups);

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override;
};
