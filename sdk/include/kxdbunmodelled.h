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
// little more than their bytes.
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

private:
    // The kind (a byte for the common kinds) and the groups, with their
    // lengths in a byte or two; null for an empty record.
    std::unique_ptr<char[]> m_record;
};

class KxDbUnmodelledObject : public KxDbObject, public KxDbUnmodelledRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbUnmodelledObject)
    KxDbUnmodelledObject() = default;
    using KxDbUnmodelledRecord::KxDbUnmodelledRecord;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }
};

class KxDbUnmodelledEntity : public KxDbEntity, public KxDbUnmodelledRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbUnmodelledEntity)
    KxDbUnmodelledEntity() = default;
    using KxDbUnmodelledRecord::KxDbUnmodelledRecord;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }
};
