// The multilines a reader keeps unopened, with their style links and what
// checking them found, until their styles are resolved once the whole
// file is read. Packed a few bytes each (steps from the one before),
// where an entry of fields took some eighty: a multiline of no groups is
// eight bytes of file.
#pragma once

#include <cstdint>
#include <string>

#include "kaldo/dxf/MlineRecord.h"
#include "kxdbid.h"

namespace kaldo::dxf {

class KeptMlines {
public:
    struct Entry {
        KxDbObjectId mline;
        MlineStyleLink style;
        MlineOutline outline;
    };

    // Adds a multiline kept after those added before (a greater id).
    void push_back(const Entry& entry);

    // Walks the entries in order.
    class Cursor {
    public:
        explicit Cursor(const KeptMlines& kept);
        bool done() const { return m_done; }
        const Entry& entry() const { return m_entry; }
        void next();

    private:
        const char* m_at;
        const char* m_end;
        Entry m_entry;
        bool m_done = false;
    };

private:
    std::string m_bytes;
    Entry m_last;
};

}  // namespace kaldo::dxf
