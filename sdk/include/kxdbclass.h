// Run-time class information: every host object knows its class, and a
// class knows its parent, so callers can test "is this a multiline" without
// the language's own type information crossing the module boundary.
#pragma once

class KxRxClass {
public:
    KxRxClass(const wchar_t* name, const KxRxClass* parent) : m_name(name), m_parent(parent) {}
    KxRxClass(const KxRxClass&) = delete;
    KxRxClass& operator=(const KxRxClass&) = delete;

    const wchar_t* name() const { return m_name; }
    const KxRxClass* myParent() const { return m_parent; }
    // True when this class is other or derives from it.
    bool isDerivedFrom(const KxRxClass* other) const
    {
        for (const KxRxClass* c = this; c; c = c->m_parent)
            if (c == other)
                return true;
        return false;
    }

private:
    const wchar_t* m_name;
    const KxRxClass* m_parent;
};

// The root of every class that carries run-time class information.
class KxRxObject {
public:
    virtual ~KxRxObject() = default;
    static KxRxClass* desc();
    virtual KxRxClass* isA() const { return desc(); }
    bool isKindOf(const KxRxClass* cls) const { return isA()->isDerivedFrom(cls); }
};

// Declares desc(), isA() and cast() in a class derived from KxRxObject.
#define KX_RX_DECLARE_MEMBERS(CLASS)                                          \
    static KxRxClass* desc();                                                 \
    KxRxClass* isA() const override { return desc(); }                        \
    static CLASS* cast(KxRxObject* p)                                         \
    {                                                                         \
        return p && p->isKindOf(desc()) ? static_cast<CLASS*>(p) : nullptr;   \
    }                                                                         \
    static const CLASS* cast(const KxRxObject* p)                             \
    {                                                                         \
        return p && p->isKindOf(desc()) ? static_cast<const CLASS*>(p) : nullptr; \
    }

// Defines desc() for CLASS with PARENT as its parent class (in one .cpp).
#define KX_RX_DEFINE_MEMBERS(CLASS, PARENT)                                   \
    KxRxClass* CLASS::desc()                                                  \
    {                                                                         \
        static KxRxClass cls(L## #CLASS, PARENT::desc());                     \
        return &cls;                                                          \
    }
