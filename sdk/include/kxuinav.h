// Navigation arrays of the host's user-interface library: the rows and
// filters behind navigation list views. Modules built against the library
// export their instantiations of these templates.
#pragma once

#include "kxuictrl.h"

#include <cstdint>
#include <string>
#include <vector>

// One row of a navigation list: its text and the caller's data.
struct CNavData {
    std::wstring text;
    std::uintptr_t data = 0;
};

// A filter on a navigation list: rows whose column text contains pattern.
struct CNavFilter {
    std::wstring pattern;
    int column = 0;
};

// A growable array of values, indexed from 0.
template <class T>
class CNavArray {
public:
    int GetSize() const { return static_cast<int>(m_items.size()); }
    bool IsEmpty() const { return m_items.empty(); }
    // Appends item; its index.
    int Add(const T& item)
    {
        m_items.push_back(item);
        return GetSize() - 1;
    }
    const T& GetAt(int index) const { return m_items.at(static_cast<std::size_t>(index)); }
    T& ElementAt(int index) { return m_items.at(static_cast<std::size_t>(index)); }
    void SetAt(int index, const T& item) { ElementAt(index) = item; }
    void InsertAt(int index, const T& item, int count = 1)
    {
        m_items.insert(m_items.begin() + index, static_cast<std::size_t>(count), item);
    }
    void RemoveAt(int index, int count = 1) { m_items.erase(m_items.begin() + index, m_items.begin() + index + count); }
    void RemoveAll() { m_items.clear(); }
    T& operator[](int index) { return ElementAt(index); }
    const T& operator[](int index) const { return GetAt(index); }

private:
    std::vector<T> m_items;
};

using CPtrArray = CNavArray<void*>;

// An array of pointers of one type over an untyped array.
template <class Base, class T>
class CTypedPtrArray : public Base {
public:
    int Add(T item) { return Base::Add(item); }
    T GetAt(int index) const { return static_cast<T>(Base::GetAt(index)); }
    void SetAt(int index, T item) { Base::SetAt(index, item); }
    T operator[](int index) const { return GetAt(index); }
};

// A list view whose rows are navigation data, narrowed by filters.
class CNavListCtrl : public CListCtrl {
public:
    ~CNavListCtrl() override;

    CTypedPtrArray<CPtrArray, CNavData*> m_rows;
    CTypedPtrArray<CPtrArray, CNavFilter*> m_filters;
};

// The source of a row dragged out of a navigation list.
class CNavDropSource {
public:
    virtual ~CNavDropSource();
};
