// The records of a section, from the group after its name up to the group
// that ends them. When enough of the input is left, a second thread reads
// them (lines, group codes, text decoding, the records' groups) ahead of
// the caller, who builds objects from them meanwhile; the records, where
// they end, the errors and the progress shown are the same either way.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>

#include "kaldo/dxf/GroupReader.h"
#include "kaldo/dxf/Record.h"

namespace kaldo::dxf {

// What a section's reader makes of a record on the reading thread, ahead
// of its turn: work that needs no database (numbers, new objects). Made
// by a ReadAhead function into a slot that it reuses from batch to batch.
class RecordAhead {
public:
    virtual ~RecordAhead() = default;
};
using ReadAhead = void (*)(const Record& record, std::unique_ptr<RecordAhead>& slot);

class SectionRecords {
public:
    // What ended the records: the group "0 ENDSEC", a group that cannot
    // begin a record (its code is not 0), or the end of the input.
    enum class End { Section, NotARecord, Input };

    // Reads ahead when at least the reader's readAheadFrom() bytes of the
    // input are left, once a small share of them is read here, calling
    // readAhead, when given, for every record read there; it throws nothing
    // (what it refuses waits in its slot for the record's turn).
    explicit SectionRecords(GroupReader& reader, ReadAhead readAhead = nullptr);
    ~SectionRecords();
    SectionRecords(const SectionRecords&) = delete;
    SectionRecords& operator=(const SectionRecords&) = delete;

    // The next record, valid until the next call; null once they ended.
    // Throws what reading threw, after the records read before it.
    const Record* next();
    // What readAhead made of that record; null when it was read on the
    // caller's thread.
    RecordAhead* ahead() const;
    End end() const { return end_; }
    // The line of the group that ended the records; for the end of the
    // input, of the last record's first group (0 for none).
    long endLine() const { return endLine_; }

private:
    struct Ahead;
    // Reads one record into record, or tells what ended the records.
    bool readRecord(Record& record, End& end, long& endLine);
    void startReadingAhead();

    GroupReader& reader_;
    ReadAhead readAhead_;
    Group head_;
    Record record_;
    End end_ = End::Section;
    long endLine_ = 0;
    // The bytes of the input left when the thread is to start, if it is.
    std::optional<std::uint64_t> readAheadWhenLeft_;
    std::unique_ptr<Ahead> ahead_;
};

}  // namespace kaldo::dxf
