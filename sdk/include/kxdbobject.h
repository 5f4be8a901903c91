// Database objects and entities, and how they are opened and closed.
//
// Every object of a drawing is owned by its database (KxDbDatabase). A
// caller opens an object by id for read (mode 0) or write (mode 1), uses it
// and closes it. Rules: an object open for write cannot be opened again,
// for write or read, until it is closed (eWasOpenForWrite); several readers
// are fine, but an object open for read cannot also be opened for write
// (eWasOpenForRead); an erased object opens only when asked for
// (eWasErased); a class that does not match gives eWrongObjectType.
//
// A new object made with `new` is not in any database and counts as open
// for write. Handing it to the database (KxDbDatabase::addObject,
// addToCurrentSpace, KxDbDictionary::setAt, a table's add) makes the
// database its owner and leaves it open for write: the caller closes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "kxcmcolor.h"
#include "kxdbclass.h"
#include "kxdbid.h"
#include "kxdbpackedgroups.h"
#include "kxtypes.h"

class KxDbDatabase;
class KxGeMatrix3d;
namespace kaldo {
class UndoHistory;
}

namespace KxDb {
enum OpenMode : int { kForRead = 0, kForWrite = 1 };
// Lineweights: hundredths of a millimetre (0 to 211), or one of these.
enum LineWeight : int { kLnWtByLayer = -1, kLnWtByBlock = -2, kLnWtByLwDefault = -3 };
}

// Bytes made in an object's own allocation, after the object, for what it
// holds of variable length (a polyline's positions, an unmodelled record's
// groups): `new (KxDbTrailingRoom{bytes}) T(...)`. One allocation instead of
// two spares a call to the allocator and its bookkeeping and rounding.
struct KxDbTrailingRoom {
    std::size_t bytes = 0;
};

class KxDbObject : public KxRxObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbObject)
    KxDbObject() = default;
    KxDbObject(const KxDbObject&) = delete;
    KxDbObject& operator=(const KxDbObject&) = delete;
    ~KxDbObject() override;

    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t size, KxDbTrailingRoom room) { return ::operator new(size + room.bytes); }
    // Unsized: an object made with trailing room is freed whole, whatever
    // its class's size says.
    static void operator delete(void* object) { ::operator delete(object); }
    static void operator delete(void* object, KxDbTrailingRoom) { ::operator delete(object); }

    KxDbObjectId objectId() const { return compactId(m_id, &Extras::farId); }
    KxDbObjectId ownerId() const { return compactId(m_owner, &Extras::farOwner); }
    Kald::ErrorStatus setOwnerId(KxDbObjectId owner);
    KxDbDatabase* database() const;

    // The persistent handle (unique in the database, kept by drawing files);
    // 0 while the object is in no database.
    std::uint64_t handle() const;
    // The handle as upper-case hexadecimal text, as drawing files write it.
    std::wstring handleText() const;

    bool isErased() const { return m_erased; }
    // Erases (or with false, un-erases) the object; it must be open for write.
    Kald::ErrorStatus erase(bool erasing = true);

    // Ends one open: the writer's, or one of the readers'. Closing an object
    // that is in no database does nothing.
    Kald::ErrorStatus close();
    // An object has an id from the time it is added to a database.
    bool isWriteEnabled() const { return m_openForWrite || m_id == 0; }
    bool isReadEnabled() const { return m_readers > 0 || isWriteEnabled(); }
    // Turns the caller's read open into a write open when it is the only one.
    Kald::ErrorStatus upgradeOpen();

    // Copies all data of other (same class) into this object, for undo
    // copies and duplicates. Identity, ownership and open state stay.
    virtual Kald::ErrorStatus copyFrom(const KxDbObject* other);
    // A new object of this one's class, in no database, holding a copy of
    // its data as copyFrom copies it: the host keeps such copies for undo.
    virtual std::unique_ptr<KxDbObject> clone() const = 0;

    // Groups of the object's file record that the host does not model
    // (reactors, extended data, codes of newer versions), in file order,
    // packed: an object of many such groups costs about their bytes.
    KxDbPackedGroupsView keptGroups() const;
    // Takes the groups as they are packed, room beyond them included
    // (KxDbPackedGroups::shrinkToFit gives that back before).
    void setKeptGroups(KxDbPackedGroups groups);

protected:
    // What few objects hold, apart, so that the others pay one null pointer:
    // kept groups, and an entity's colour-book names, a linetype scale other
    // than 1, a normal other than the z axis, and ids (its own, its owner's,
    // its layer's and linetype's) whose serials pass 32 bits.
    struct Extras {
        KxDbPackedGroups keptGroups;
        std::optional<KxCmColor> namedColor;
        double linetypeScale = 1.0;
        std::optional<KxGeVector3d> normal;
        KxDbObjectId farId, farOwner, farLayer, farLinetype;
    };
    const Extras* extras() const { return m_extras.get(); }
    // The extras, made when there are none yet.
    Extras& extrasForWrite();
    // Lets the extras go once they hold nothing but defaults.
    void dropExtrasIfDefault();

    // An id is held as its serial in 32 bits; a serial beyond them (a
    // process that has made four billion objects) is held in the extras,
    // and the compact value says so.
    static constexpr std::uint32_t kFarId = 0xFFFFFFFF;
    KxDbObjectId compactId(std::uint32_t compact, KxDbObjectId Extras::*far) const
    {
        return compact == kFarId ? m_extras.get()->*far : KxDbObjectId::fromOldId(compact);
    }
    // Sets compact (and far, in the extras) to name id: inline for an id of
    // 32 bits on an object without extras (nearly every one), so that a
    // reader that makes objects by the million pays no call for each id.
    void setCompactId(std::uint32_t& compact, KxDbObjectId Extras::*far, KxDbObjectId id)
    {
        if (id.asOldId() < kFarId && !m_extras)
            compact = std::uint32_t(id.asOldId());
        else
            setCompactIdWithExtras(compact, far, id);
    }
    void setCompactIdWithExtras(std::uint32_t& compact, KxDbObjectId Extras::*far, KxDbObjectId id);

private:
    friend class KxDbBlockTableRecord;
    friend class KxDbDatabase;
    friend class kaldo::UndoHistory;
    friend Kald::ErrorStatus kxdbOpenObjectOfClass(KxDbObject*&, KxDbObjectId, int, bool, const KxRxClass*);

    // The id the database gives, and an owner put back by undo or set by
    // a block that recorded the entity itself, set without a record for undo.
    void putId(KxDbObjectId id) { setCompactId(m_id, &Extras::farId, id); }
    void putOwner(KxDbObjectId owner) { setCompactId(m_owner, &Extras::farOwner, owner); }

    // The object's database and handle are not held here: the table of ids
    // knows each object's database, and the database its handle (see
    // kaldo/db/ObjectRegistry.h and kaldo/db/HandleTable.h).
    std::unique_ptr<Extras> m_extras;
    std::uint32_t m_id = 0;
    std::uint32_t m_owner = 0;
    // At most 65535 readers at once (eOutOfRange beyond).
    std::uint16_t m_readers = 0;
    // Last, so that an entity's first members fit in the bytes after them.
    bool m_erased : 1 = false;
    bool m_openForWrite : 1 = false;
};

// An object that draws: it has a layer, a colour and a linetype.
class KxDbEntity : public KxDbObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbEntity)

    KxDbObjectId layerId() const { return compactId(m_layer, &Extras::farLayer); }
    Kald::ErrorStatus setLayer(KxDbObjectId layer);
    // The setters' doSubents: whether an entity made of parts passes the
    // property on to them; the host's entities have no such parts.
    KxCmColor color() const;
    Kald::ErrorStatus setColor(const KxCmColor& color, bool doSubents = true);
    int colorIndex() const { return color().colorIndex(); }
    Kald::ErrorStatus setColorIndex(int index);
    KxDbObjectId linetypeId() const { return compactId(m_linetype, &Extras::farLinetype); }
    Kald::ErrorStatus setLinetype(KxDbObjectId linetype, bool doSubents = true);
    // Lineweight and linetype scale as the host draws the entity (previews);
    // a drawing file's own groups for them are kept as they were read.
    int lineWeight() const { return int(m_lineWeight) + KxDb::kLnWtByLwDefault; }
    // eInvalidInput for a value outside KxDb::LineWeight and 0 to 211.
    Kald::ErrorStatus setLineWeight(int weight, bool doSubents = true);
    double linetypeScale() const { return extras() ? extras()->linetypeScale : 1.0; }
    // eInvalidInput for a scale that is not above 0.
    Kald::ErrorStatus setLinetypeScale(double scale, bool doSubents = true);

    // Takes the database's current layer, colour and linetype (and what a
    // kind of entity takes besides); null means the host's working drawing.
    Kald::ErrorStatus setDatabaseDefaults(KxDbDatabase* db = nullptr);

    // Moves, turns, scales or mirrors the entity: m must keep shapes (its
    // linear part k times a rotation or a reflection, see
    // KxGeMatrix3d::uniformScale), else eInvalidInput. eNotApplicable for
    // kinds the host does not transform; eInvalidInput when a value would
    // not be finite. On failure the entity stays as it was.
    virtual Kald::ErrorStatus transformBy(const KxGeMatrix3d& m);
    // The points a stretch moves and grips show, in world coordinates;
    // none for kinds the host does not stretch.
    virtual void getStretchPoints(std::vector<KxGePoint3d>& points) const;
    // Moves the stretch points at indices (into getStretchPoints' list)
    // by offset, the rest of the entity following as each kind says.
    // eInvalidIndex for an index out of range, eNotApplicable for kinds
    // without stretch points; on failure the entity stays as it was.
    virtual Kald::ErrorStatus moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset);

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;

protected:
    virtual void subSetDatabaseDefaults(KxDbDatabase* db);

    // The normal of an entity that lies in a plane (lines, arcs, circles,
    // polylines): almost always the z axis, so only another direction
    // takes room, in the extras.
    const KxGeVector3d& planeNormal() const
    {
        static constexpr KxGeVector3d zAxis(0, 0, 1);
        return extras() && extras()->normal ? *extras()->normal : zAxis;
    }
    // The z axis bit for bit is no other direction: a normal of -0
    // components keeps its sign.
    void setPlaneNormal(const KxGeVector3d& normal);

private:
    // First, in the room an object leaves after its last flag: the
    // lineweight counted from KxDb::kLnWtByLwDefault.
    std::uint8_t m_lineWeight = KxDb::kLnWtByLayer - KxDb::kLnWtByLwDefault;
    // The colour's value; its book names, when it has any, in the extras.
    std::uint32_t m_color = std::uint32_t(KxCmColor::kByLayer) << 24 | KxCmColor::kIndexByLayer;
    std::uint32_t m_layer = 0;
    std::uint32_t m_linetype = 0;
};

// What a class's clone does: a new T with a copy of self's data.
template <class T>
std::unique_ptr<KxDbObject> kxdbCloneOf(const T& self)
{
    auto copy = std::make_unique<T>();
    copy->copyFrom(&self);
    return copy;
}

// Opens the object id names. mode: 0 read, 1 write. cls: the class the
// object must be of (or derive from); null accepts any. On failure obj is
// null and the result tells why.
Kald::ErrorStatus kxdbOpenObjectOfClass(KxDbObject*& obj, KxDbObjectId id, int mode, bool openErased,
                                        const KxRxClass* cls);

template <class T>
Kald::ErrorStatus kxdbOpenObject(T*& obj, KxDbObjectId id, int mode, bool openErased = false,
                                 const KxRxClass* cls = T::desc())
{
    KxDbObject* opened = nullptr;
    const Kald::ErrorStatus es = kxdbOpenObjectOfClass(opened, id, mode, openErased, cls);
    obj = static_cast<T*>(opened);
    return es;
}

// An object opened for the span of a scope: closed on every way out.
template <class T>
class KxDbObjectPtr {
public:
    KxDbObjectPtr() = default;
    KxDbObjectPtr(KxDbObjectId id, int mode, bool openErased = false) { open(id, mode, openErased); }
    // Takes over closing an object the caller opened.
    explicit KxDbObjectPtr(T* opened) : m_obj(opened), m_status(opened ? Kald::eOk : Kald::eNullObjectId) {}
    KxDbObjectPtr(const KxDbObjectPtr&) = delete;
    KxDbObjectPtr& operator=(const KxDbObjectPtr&) = delete;
    KxDbObjectPtr(KxDbObjectPtr&& other) noexcept : m_obj(other.m_obj), m_status(other.m_status) { other.m_obj = nullptr; }
    ~KxDbObjectPtr() { close(); }

    Kald::ErrorStatus open(KxDbObjectId id, int mode, bool openErased = false)
    {
        close();
        m_status = kxdbOpenObject(m_obj, id, mode, openErased);
        return m_status;
    }
    Kald::ErrorStatus close()
    {
        Kald::ErrorStatus es = Kald::eOk;
        if (m_obj)
            es = m_obj->close();
        m_obj = nullptr;
        return es;
    }
    // Hands the open object back to the caller, who closes it.
    T* release()
    {
        T* obj = m_obj;
        m_obj = nullptr;
        return obj;
    }

    Kald::ErrorStatus openStatus() const { return m_status; }
    T* get() const { return m_obj; }
    T* operator->() const { return m_obj; }
    T& operator*() const { return *m_obj; }
    explicit operator bool() const { return m_obj != nullptr; }

private:
    T* m_obj = nullptr;
    Kald::ErrorStatus m_status = Kald::eNullObjectId;
};
