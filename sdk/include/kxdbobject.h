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

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "kxcmcolor.h"
#include "kxdbclass.h"
#include "kxdbid.h"
#include "kxtypes.h"

class KxDbDatabase;
class KxGeMatrix3d;
namespace kaldo {
class UndoHistory;
}

// A group of a drawing file that the host keeps as read without modelling
// it, to write it back unchanged: its code, its text, and the part of its
// record it stood in (0 before the first subclass marker, n after the n-th,
// kxdbExtendedDataPart from the first extended-data group on).
struct KxDbFileGroup {
    std::int16_t code = 0;
    std::uint8_t part = 0;
    std::string value;
    friend bool operator==(const KxDbFileGroup&, const KxDbFileGroup&) = default;
};
inline constexpr std::uint8_t kxdbExtendedDataPart = 255;

namespace KxDb {
enum OpenMode : int { kForRead = 0, kForWrite = 1 };
// Lineweights: hundredths of a millimetre (0 to 211), or one of these.
enum LineWeight : int { kLnWtByLayer = -1, kLnWtByBlock = -2, kLnWtByLwDefault = -3 };
}

class KxDbObject : public KxRxObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbObject)
    KxDbObject() = default;
    KxDbObject(const KxDbObject&) = delete;
    KxDbObject& operator=(const KxDbObject&) = delete;
    ~KxDbObject() override;

    KxDbObjectId objectId() const { return m_id; }
    KxDbObjectId ownerId() const { return m_owner; }
    Kald::ErrorStatus setOwnerId(KxDbObjectId owner);
    KxDbDatabase* database() const { return m_database; }

    // The persistent handle (unique in the database, kept by drawing files);
    // 0 while the object is in no database.
    std::uint64_t handle() const { return m_handle; }
    // The handle as upper-case hexadecimal text, as drawing files write it.
    std::wstring handleText() const;

    bool isErased() const { return m_erased; }
    // Erases (or with false, un-erases) the object; it must be open for write.
    Kald::ErrorStatus erase(bool erasing = true);

    // Ends one open: the writer's, or one of the readers'. Closing an object
    // that is in no database does nothing.
    Kald::ErrorStatus close();
    bool isWriteEnabled() const { return m_openForWrite || !m_database; }
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
    // (reactors, extended data, codes of newer versions), in file order.
    const std::vector<KxDbFileGroup>& keptGroups() const;
    void setKeptGroups(std::vector<KxDbFileGroup> groups);

private:
    friend class KxDbDatabase;
    friend class kaldo::UndoHistory;
    friend Kald::ErrorStatus kxdbOpenObjectOfClass(KxDbObject*&, KxDbObjectId, int, bool, const KxRxClass*);

    KxDbObjectId m_id;
    KxDbObjectId m_owner;
    KxDbDatabase* m_database = nullptr;
    // Held only when there are any: most objects keep none.
    std::unique_ptr<std::vector<KxDbFileGroup>> m_keptGroups;
    std::uint64_t m_handle = 0;
    int m_readers = 0;
    // Last, so that an entity's lineweight fits in the bytes after them.
    bool m_erased = false;
    bool m_openForWrite = false;
};

// An object that draws: it has a layer, a colour and a linetype.
class KxDbEntity : public KxDbObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbEntity)

    KxDbObjectId layerId() const { return m_layer; }
    Kald::ErrorStatus setLayer(KxDbObjectId layer);
    // The setters' doSubents: whether an entity made of parts passes the
    // property on to them; the host's entities have no such parts.
    const KxCmColor& color() const { return m_color; }
    Kald::ErrorStatus setColor(const KxCmColor& color, bool doSubents = true);
    int colorIndex() const { return m_color.colorIndex(); }
    Kald::ErrorStatus setColorIndex(int index) { return m_color.setColorIndex(index); }
    KxDbObjectId linetypeId() const { return m_linetype; }
    Kald::ErrorStatus setLinetype(KxDbObjectId linetype, bool doSubents = true);
    // Lineweight and linetype scale as the host draws the entity (previews);
    // a drawing file's own groups for them are kept as they were read.
    int lineWeight() const { return m_lineWeight; }
    // eInvalidInput for a value outside KxDb::LineWeight and 0 to 211.
    Kald::ErrorStatus setLineWeight(int weight, bool doSubents = true);
    double linetypeScale() const { return m_linetypeScale; }
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

private:
    // First, in the room an object leaves after its last flag.
    std::int16_t m_lineWeight = KxDb::kLnWtByLayer;
    KxDbObjectId m_layer;
    KxCmColor m_color;
    KxDbObjectId m_linetype;
    double m_linetypeScale = 1.0;
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
