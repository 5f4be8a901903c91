// How far reading or writing a drawing has come, told to the caller now and
// then, and the caller's way to stop the work half-way.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <algorithm>
#include <utility>

namespace kaldo::dxf {

// Told that done of total (bytes or records) are through; returns false to
// stop the work.
using ProgressReport = std::function<bool(std::uint64_t done, std::uint64_t total)>;

// The work stopped because its progress report asked so: a drawing being
// read is dropped, a file being written stays as it was.
class Cancelled : public std::exception {
public:
    const char* what() const noexcept override { return "cancelled"; }
};

// Reports at the start, once every kRecordsPerReport records and at the
// end, so that a record costs one count. Throws Cancelled when the report
// returns false. Without a report it does nothing.
class ProgressMeter {
public:
    static constexpr std::uint64_t kRecordsPerReport = 4096;

    ProgressMeter() = default;
    // position tells how far the work has come in the units of total; when
    // it is empty the records counted are the measure.
    ProgressMeter(ProgressReport report, std::uint64_t total, std::function<std::uint64_t()> position = {})
        : report_(std::move(report)), position_(std::move(position)), total_(total)
    {
    }

    void record()
    {
        if (++records_ % kRecordsPerReport == 0)
            report();
    }
    void report() const
    {
        if (report_)
            tell(position_ ? position_() : records_);
    }
    void finish() const
    {
        if (report_)
            tell(total_);
    }

private:
    void tell(std::uint64_t done) const
    {
        if (!report_(std::min(done, total_), total_))
            throw Cancelled();
    }

    ProgressReport report_;
    std::function<std::uint64_t()> position_;
    std::uint64_t total_ = 0;
    std::uint64_t records_ = 0;
};

}  // namespace kaldo::dxf
