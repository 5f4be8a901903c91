// Records of a drawing file that the host reads but does not model: other
// kinds of entities (text, splines, hatches, ...) and objects (layouts,
// groups, ...). They keep their kind and every group as read, their handle
// and their owner, and are written back unchanged.
#pragma once

#include <string>
#include <vector>

#include "kxdbobject.h"

// The kind and groups of an unmodelled record, shared by objects and
// entities.
class KxDbUnmodelledRecord {
public:
    KxDbUnmodelledRecord() = default;
    KxDbUnmodelledRecord(std::string dxfName, std::vector<KxDbFileGroup> groups)
        : m_dxfName(std::move(dxfName)), m_groups(std::move(groups))
    {
    }

    // The record's kind as the file names it ("LAYOUT", "XRECORD", ...).
    const std::string& dxfName() const { return m_dxfName; }
    // Every group after the kind, handle and owner included.
    const std::vector<KxDbFileGroup>& groups() const { return m_groups; }

protected:
    void copyRecord(const KxDbUnmodelledRecord& other) { *this = other; }

private:
    std::string m_dxfName;
    std::vector<KxDbFileGroup> m_groups;
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
