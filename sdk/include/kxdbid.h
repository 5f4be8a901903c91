// Object ids: a process-wide serial number per database-resident object.
// The null id is 0. An id stays valid (and keeps naming the same object)
// until the object's database is destroyed.
#pragma once

#include <cstdint>
#include <functional>

class KxDbDatabase;
class KxDbObject;
class KxRxClass;

class KxDbObjectId {
public:
    constexpr KxDbObjectId() = default;
    static const KxDbObjectId kNull;

    bool isNull() const { return m_serial == 0; }
    void setNull() { m_serial = 0; }
    // True when the id names a live object of some database.
    bool isValid() const;
    // True when the object it names is erased.
    bool isErased() const;
    KxDbDatabase* database() const;
    // The class of the object it names, without opening it; null for an
    // id that names no live object.
    const KxRxClass* objectClass() const;

    // The serial number: the first word of the entity name.
    std::uint64_t asOldId() const { return m_serial; }
    static KxDbObjectId fromOldId(std::uint64_t serial) { KxDbObjectId id; id.m_serial = serial; return id; }

    friend bool operator==(const KxDbObjectId&, const KxDbObjectId&) = default;
    friend auto operator<=>(const KxDbObjectId&, const KxDbObjectId&) = default;

private:
    std::uint64_t m_serial = 0;
};

inline constexpr KxDbObjectId KxDbObjectId::kNull{};

template <>
struct std::hash<KxDbObjectId> {
    std::size_t operator()(const KxDbObjectId& id) const noexcept { return std::hash<std::uint64_t>{}(id.asOldId()); }
};
