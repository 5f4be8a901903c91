// The syntax of a .mln style block: finds the block of a style and reads its
// items and element slots one at a time into plain records. It allocates
// nothing and calls no host service, so each call may run as a FaultGuard
// step; the reader applies the records to the style between the calls.
#pragma once

#include <cstddef>
#include <type_traits>

#include "mlnfile/MlnLineSource.h"
#include "mlnfile/MlnReadMode.h"

namespace kdml {

// One item of a style block: its key, and the value line without its first
// character (also as an integer where the key wants one).
struct MlnItem {
    enum class Kind {
        description,      // 3
        flags,            // 70
        fillColorIndex,   // 62
        fillTrueColor,    // 420
        fillColorBookKey, // 430
        startAngle,       // 51
        endAngle,         // 52
        elementCount,     // 71
        end,              // 0 (no value line)
        other,            // any other key line (no value line)
    };
    Kind kind = Kind::other;
    int number = 0;
    wchar_t text[kMlnLineBufferSize] = {};
};

// One element slot of the element list.
struct MlnElementSlot {
    double offset = 0.0;
    int colorIndex = 0;
    int trueColor = -1;  // -1: no 420 item
    wchar_t colorBookKey[kMlnLineBufferSize] = {};  // empty: no 430 item
    wchar_t linetypeName[kMlnLineBufferSize] = {};
};

static_assert(std::is_trivially_destructible_v<MlnItem> && std::is_trivially_destructible_v<MlnElementSlot>);

enum class MlnScan {
    read,        // an item or a slot was read
    skipped,     // an element slot not opened by 49
    failedRead,  // a line could not be read: the block is cut off
    outOfForm,   // strict reading: an element's 62 or 6 key line is missing
};

class MlnBlockScanner {
public:
    MlnBlockScanner(MlnLineSource& source, MlnReadMode mode) : source_(source), mode_(mode) {}

    // Reads up to and including the name line of the first block whose name
    // (its value line without the first character) equals name without
    // regard to case. False when the file ends first.
    bool findBlock(const wchar_t* name);
    MlnScan readItem(MlnItem& item);
    MlnScan readElementSlot(MlnElementSlot& slot);
    // True once a read has run into the end of the file.
    bool atEnd() const { return source_.atEnd(); }

private:
    bool readValue(wchar_t* out);
    bool readInteger(int& out);

    MlnLineSource& source_;
    MlnReadMode mode_;
};

static_assert(std::is_trivially_destructible_v<MlnBlockScanner>);

// Whether a line is the key word or group code key: the whole line, letters
// compared without case.
bool isMlnKey(const wchar_t* line, const wchar_t* key);
// The value text after a value line's first character.
const wchar_t* mlnValueOf(const wchar_t* line);
// Integers as the runtime's decimal conversion reads them (leading blanks,
// a sign, digits; no number gives 0), limited to the int range.
int mlnToInt(const wchar_t* text);
// A decimal number with "." as decimal point; 0.0 when the text starts with
// no finite number.
double mlnToDouble(const wchar_t* text);

}  // namespace kdml
