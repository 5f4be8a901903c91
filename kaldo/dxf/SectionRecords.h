// The records of a section, from the group after its name up to the group
// that ends them. When enough of the input is left, a second thread reads
// them (lines, group codes, text decoding, the records' groups) ahead of
// the caller, who builds objects from them meanwhile; the records, where
// they end, the errors and the progress shown are the same either way.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>

#include "kaldo/dxf/GroupReader.h"
#include "kaldo/dxf/Record.h"

namespace kaldo::dxf {

class SectionRecords {
public:
    // What ended the records: the group "0 ENDSEC", a group that cannot
    // begin a record (its code is not 0), or the end of the input.
    enum class End { Section, NotARecord, Input };

    // Reads ahead when at least the reader's readAheadFrom() bytes of the
    // input are left.
    explicit SectionRecords(GroupReader& reader);
    ~SectionRecords();
    SectionRecords(const SectionRecords&) = delete;
    SectionRecords& operator=(const SectionRecords&) = delete;

    // The next record, valid until the next call; null once they ended.
    // Throws what reading threw, after the records read before it.
    const Record* next();
    End end() const { return end_; }
    // The line of the group that ended the records; for the end of the
    // input, of the last record's first group (0 for none).
    long endLine() const { return endLine_; }

private:
    struct Ahead;
    // Reads one record into record, or tells what ended the records.
    bool readRecord(Record& record, End& end, long& endLine);

    GroupReader& reader_;
    Group head_;
    Record record_;
    End end_ = End::Section;
    long endLine_ = 0;
    std::unique_ptr<Ahead> ahead_;
};

}  // namespace kaldo::dxf
