// One record of a drawing file: the groups from its "0 KIND" line to the
// next code 0, read whole so that a record can be taken apart in order.
// The storage is reused from record to record.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kaldo/dxf/GroupReader.h"
#include "kxdbobject.h"
#include "kxdbunmodelled.h"

namespace kaldo::dxf {

// The kinds of record whose groups the reader takes apart (modelled), told
// once as a record is read so that its users switch on a number instead of
// comparing its kind's text again; every other kind is Other.
enum class RecordKind : std::uint8_t { Other, Line, Arc, Circle, LwPolyline, Mline, Dictionary, MlineStyle };

class Record {
public:
    // Reads the record that starts with the group just read (code 0): the
    // groups up to the next code 0, which is left to the reader's next().
    void read(GroupReader& reader, const Group& head);
    // Takes a record of the kind whose groups a record kept as packed
    // (an entity kept unopened), numbers and all, as read would have.
    void assign(std::string_view kind, KxDbPackedGroupsView groups);

    std::string_view kind() const
    {
        return kindSize_ <= kKindBytes ? std::string_view(kindBytes_.data(), kindSize_) : std::string_view(longKind_);
    }
    RecordKind kindCode() const { return kindCode_; }
    long line() const { return line_; }
    std::size_t size() const { return size_; }
    // Calls visit(group) for every group in order while it returns true.
    template <class Visit>
    void forEach(Visit&& visit) const
    {
        // In locals, which visit's calls cannot change.
        const GroupNumbers* const numbers = numbers_.data();
        const std::size_t numbered = numbered_;
        // One group given in turn, each field set once.
        Group g;
        // Every group takes two lines, its code's and its value's.
        g.line = line_;
        std::size_t index = 0;
        packedGroups().forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
            g.code = code;
            g.value = value;
            g.line += 2;
            const GroupNumbers& read = index < numbered ? numbers[index] : GroupNumbers{};
            g.real = read.real;
            g.handle = read.handle;
            ++index;
            return bool(visit(g));
        });
    }
    // Every group as read, packed as a record kept whole holds them; valid
    // until the record is read again.
    KxDbPackedGroupsView packedGroups() const { return KxDbPackedGroupsView(std::string_view(groups_.data(), used_)); }

private:
    // Takes the kind's text and tells its kind; readable is where the
    // memory that the text lies in ends.
    void setKind(std::string_view kind, const char* readable);
    // A group's numbers read ahead, as a Group gives them.
    struct GroupNumbers {
        double real = std::numeric_limits<double>::quiet_NaN();
        std::uint64_t handle = Group::kNoHandle;
    };
    // Notes the numbers of the first groups stored (up to kReadNumbers):
    // the real of a group of reals in a modelled record, the handle of a
    // group of handles. For groups taken whole (assign): read notes them as
    // it keeps each group.
    void noteNumbers();
    // Keeps a group at at, the end of the groups kept so far, growing the
    // store as needed; the place after it. readable is as readPlain gives
    // it.
    char* keepOther(char* at, int code, std::string_view value, const char* readable);

    // The groups lie packed one after the other in groups_ as
    // KxDbPackedGroupsView reads them (part 0), reused from record to
    // record and longer than the record they hold: a record of many short
    // groups takes about what the file spends on them, and a record kept
    // whole is copied as it lies.
    static constexpr std::size_t kFirstGroups = 64;
    // The kind's text: one of up to kKindBytes bytes (every usual kind) in
    // kindBytes_, copied whole at once where its memory holds as many bytes
    // (the bytes past it are left as copied), a longer one in longKind_.
    static constexpr std::size_t kKindBytes = 32;
    std::array<char, kKindBytes> kindBytes_{};
    std::size_t kindSize_ = 0;
    std::string longKind_;
    RecordKind kindCode_ = RecordKind::Other;
    bool modelled_ = false;
    long line_ = 0;
    std::size_t size_ = 0;
    std::string groups_;
    std::size_t used_ = 0;
    // The numbers of the first groups, so that a record read on another
    // thread comes with them, and a group given by forEach takes them as
    // they lie: the real of a group of reals as readQuickReal reads it (in
    // records of modelled kinds only: the others are kept as text), the
    // handle of a group of handles as tryHandle does. The groups of a large
    // record beyond, and values that they refuse, are converted where they
    // are used, keeping its memory to what it was.
    static constexpr std::size_t kReadNumbers = 1024;
    std::vector<GroupNumbers> numbers_;
    // The groups that numbers_ holds numbers for.
    std::size_t numbered_ = 0;
};

// The handle, owner and unmodelled groups of a record being taken apart.
struct RecordBasics {
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    KxDbPackedGroups kept;
    // The room made for kept at its first group.
    std::size_t keptRoom = 0;

    // Keeps a group of record. The kept groups take at most what the
    // record's take: room for them all at once spares a record of many
    // groups the copies that growing by steps would make.
    void keep(const Record& record, int code, std::uint8_t part, std::string_view value)
    {
        if (kept.empty()) {
            keptRoom = record.packedGroups().bytes().size();
            kept.reserve(keptRoom);
        }
        kept.append(code, part, value);
    }
    // The kept groups, for their object to hold: the room beyond them given
    // back when it passes an eighth of them. Short of that, a copy would
    // cost more while the record is read than the room it gives back.
    KxDbPackedGroups takeKept()
    {
        const std::size_t size = kept.view().bytes().size();
        if (keptRoom - std::min(keptRoom, size) > size / 8)
            kept.shrinkToFit();
        return std::move(kept);
    }
};

// Walks a record in order. The handle (5, or 105) and the first owner (330)
// before the first subclass marker go to basics; reactor and dictionary
// blocks ("102 {" to "102 }") and extended data (from code 1000 on) are
// kept; every other group goes to use(group), which returns false for a
// group it does not model (kept too).
template <class Use>
void walkRecord(const Record& record, RecordBasics& basics, Use&& use)
{
    int part = 0;
    bool inBlock = false;
    bool ownerSeen = false;
    record.forEach([&](const Group& g) {
        if (part != kxdbExtendedDataPart && g.code >= 1000)
            part = kxdbExtendedDataPart;
        bool used = false;
        if (part == kxdbExtendedDataPart) {
        } else if (g.code == 102) {
            inBlock = !g.value.empty() && g.value.front() == '{';
        } else if (inBlock) {
        } else if (g.code == 100) {
            ++part;
            used = true;
        } else if (part == 0 && (g.code == 5 || g.code == 105) && basics.handle == 0) {
            basics.handle = toHandle(g);
            used = true;
        } else if (part == 0 && g.code == 330 && !ownerSeen) {
            basics.owner = toHandle(g);
            ownerSeen = true;
            used = true;
        } else {
            used = use(g);
        }
        if (!used)
            basics.keep(record, g.code, std::uint8_t(part), g.value);
        return true;
    });
}

}  // namespace kaldo::dxf
