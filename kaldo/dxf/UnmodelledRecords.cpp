#include "kaldo/dxf/UnmodelledRecords.h"

#include "kaldo/dxf/GroupLineText.h"
#include "kaldo/dxf/GroupWriter.h"

#include <algorithm>
#include <cstring>
#include <emmintrin.h>

namespace kaldo::dxf {

RecordBasics rawRecordBasics(const Record& record)
{
    RecordBasics basics;
    bool inBlock = false;
    record.forEach([&](const Group& g) {
        if (g.code == 102)
            inBlock = !g.value.empty() && g.value.front() == '{';
        else if ((g.code == 5 || g.code == 105) && basics.handle == 0)
            basics.handle = toHandle(g);
        else if (g.code == 330 && !inBlock && basics.owner == 0)
            basics.owner = toHandle(g);
        else if (g.code == 100)
            return false;
        return true;
    });
    return basics;
}

namespace {

// Room for a line of a handle: a code of up to three places, sixteen digits
// (which writeHandleDigits writes whatever the handle) and the line feed.
constexpr std::size_t kHandleLineRoom = 32;
// Bytes a value's copy of sixteen may write past its end.
constexpr std::size_t kCopyRoom = 16;

// Writes the code's line and the handle's at out; returns their end.
[[gnu::always_inline]] inline char* writeHandleLine(int code, std::uint64_t handle, char* out)
{
    out = writeHandleDigits(handle, writeCodeLine(code, out));
    *out = '\n';
    return out + 1;
}

// Puts the lines of a handle at at, moving the text from there to end on;
// returns the end of those lines.
char* insertHandleLine(int code, std::uint64_t handle, char* at, char*& end)
{
    char line[kHandleLineRoom];
    const auto size = std::size_t(writeHandleLine(code, handle, line) - line);
    std::memmove(at + size, at, std::size_t(end - at));
    std::memcpy(at, line, size);
    end += size;
    return at + size;
}

// Copies a value of up to 16 bytes as two words, or three bytes, that may
// overlap, without a call.
[[gnu::always_inline]] inline void copyShort(char* out, const char* in, std::size_t size)
{
    if (size >= 8) {
        std::memcpy(out, in, 8);
        std::memcpy(out + size - 8, in + size - 8, 8);
    } else if (size >= 4) {
        std::memcpy(out, in, 4);
        std::memcpy(out + size - 4, in + size - 4, 4);
    } else if (size > 0) {
        out[0] = in[0];
        out[size / 2] = in[size / 2];
        out[size - 1] = in[size - 1];
    }
}

// Copies the value to out, which has room for 16 bytes more than the value;
// false when it needs encoding. A value of up to 16 bytes is copied without
// a call (sixteen bytes at once where the record holds them) and told plain
// when none of its bytes has its high bit set, as written.
[[gnu::always_inline]] inline bool copyPlainValue(const GroupWriter& w, const char* value, std::size_t length,
                                                  const char* end, char* out)
{
    if (length > 16) [[unlikely]] {
        std::memcpy(out, value, length);
        return !w.needsEncoding({value, length});
    }
    __m128i bytes;
    if (value + 16 <= end) {
        bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(value));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
    } else {
        copyShort(out, value, length);
        bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(out));
    }
    return !(_mm_movemask_epi8(bytes) & ((1u << length) - 1)) || !w.needsEncoding({value, length});
}

// writeUnmodelledRecord for a record whose kind and values need no encoding,
// in one pass over the packed groups that copies them into the writer's
// room, the handle and owner put in their places afterwards when missing;
// false, with nothing written, for a record with a value that needs
// encoding.
bool writePlainRecord(GroupWriter& w, std::string_view kind, KxDbPackedGroupsView groups, std::uint64_t handle,
                      std::uint64_t owner)
{
    // A group's lines take at most twice its packed bytes: a code line of up
    // to seven bytes and a line feed for its code, part and length's four.
    const std::string_view bytes = groups.bytes();
    char* const start = w.room(4 + kind.size() + 1 + 2 * bytes.size() + 3 * kHandleLineRoom + kCopyRoom);
    char* out = writeCodeLine(0, start);
    if (!copyPlainValue(w, kind.data(), kind.size(), kind.data(), out))
        return false;
    out += kind.size();
    *out++ = '\n';
    char* const afterKind = out;
    char* afterHandle = nullptr;
    bool hasOwner = false;
    const char* const end = bytes.data() + bytes.size();
    bool plain = true;
    groups.forEach([&](int code, std::uint8_t, std::string_view value) {
        if ((code == 5 || code == 105) && !afterHandle) {
            out = writeHandleLine(code, handle, out);
            afterHandle = out;
            return true;
        }
        hasOwner = hasOwner || code == 330;
        out = writeCodeLine(code, out);
        plain = copyPlainValue(w, value.data(), value.size(), end, out);
        out += value.size();
        *out++ = '\n';
        return plain;
    });
    if (!plain)
        return false;
    if (!afterHandle)
        afterHandle = insertHandleLine(5, handle, afterKind, out);
    if (owner != 0 && !hasOwner)
        insertHandleLine(330, owner, afterHandle, out);
    w.wrote(out);
    return true;
}

}  // namespace

void writeUnmodelledRecord(GroupWriter& w, std::string_view kind, KxDbPackedGroupsView groups,
                           std::uint64_t handle, std::uint64_t owner)
{
    if (writePlainRecord(w, kind, groups, handle, owner))
        return;
    bool hasHandle = false;
    bool hasOwner = false;
    groups.forEach([&](int code, std::uint8_t, std::string_view) {
        hasHandle = hasHandle || code == 5 || code == 105;
        hasOwner = hasOwner || code == 330;
    });
    const bool addOwner = owner != 0 && !hasOwner;
    w.text(0, kind);
    if (!hasHandle) {
        w.handle(5, handle);
        if (addOwner)
            w.handle(330, owner);
    }
    bool handleWritten = false;
    groups.forEach([&](int code, std::uint8_t, std::string_view value) {
        if ((code == 5 || code == 105) && !handleWritten) {
            w.handle(code, handle);
            if (addOwner)
                w.handle(330, owner);
            handleWritten = true;
        } else {
            w.text(code, value);
        }
    });
}

}  // namespace kaldo::dxf
