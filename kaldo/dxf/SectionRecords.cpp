#include "kaldo/dxf/SectionRecords.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace kaldo::dxf {

namespace {
// A batch holds records enough to be handed over rarely, and groups few
// enough to stay in the caches: a few hundred kilobytes of the file.
constexpr std::size_t kRecordsPerBatch = 256;
constexpr std::size_t kGroupsPerBatch = 16384;
// Batches being filled, waiting or in use: the thread reads at most this
// far ahead.
constexpr std::size_t kBatches = 4;
// The share of the reader's readAheadFrom() read on the caller's thread
// before the thread starts: a small section never starts one, which cost
// as much as reading some ten kilobytes.
constexpr std::uint64_t kReadInPlaceShare = 64;
}  // namespace

// The reading thread and the batches of records it hands over in order.
// The reader belongs to the thread until the last batch is taken. Each
// side wakes the other only when it waits, after letting the lock go, so
// that a handover costs no switch while both are busy and a woken thread
// never meets the lock held.
struct SectionRecords::Ahead {
    struct Batch {
        // Records are reused from batch to batch, keeping their storage.
        std::vector<Record> records = std::vector<Record>(kRecordsPerBatch);
        std::vector<std::unique_ptr<RecordAhead>> made = std::vector<std::unique_ptr<RecordAhead>>(kRecordsPerBatch);
        // The bytes read when each record was read, for the progress shown.
        std::vector<std::uint64_t> positions = std::vector<std::uint64_t>(kRecordsPerBatch);
        std::size_t count = 0;
        // Whether made holds what readAhead made of the records.
        bool madeAhead = false;
        // No batch follows; error, when set, was thrown right after the
        // records of this batch.
        bool last = false;
        End end = End::Section;
        long endLine = 0;
        std::exception_ptr error;
    };

    // The thread's side: an empty batch to fill, or null once stopped.
    std::unique_ptr<Batch> take()
    {
        std::unique_lock lock(mutex);
        if (!stopped && empty.empty() && made == kBatches) {
            threadWaits = true;
            emptied.wait(lock, [this] { return stopped || !empty.empty(); });
            threadWaits = false;
        }
        if (stopped)
            return nullptr;
        if (empty.empty()) {
            ++made;
            return std::make_unique<Batch>();
        }
        std::unique_ptr<Batch> batch = std::move(empty.back());
        empty.pop_back();
        return batch;
    }
    void give(std::unique_ptr<Batch> batch)
    {
        bool wake = false;
        {
            const std::lock_guard lock(mutex);
            filled.push_back(std::move(batch));
            filledCount.store(filled.size(), std::memory_order_relaxed);
            wake = callerWaits;
        }
        if (wake)
            filledOne.notify_one();
    }
    // Whether the caller has filled batches waiting.
    bool callerBehind() const { return filledCount.load(std::memory_order_relaxed) != 0; }
    // The caller's side: the next filled batch; the one used goes back.
    void takeNext()
    {
        std::unique_lock lock(mutex);
        if (current) {
            current->count = 0;
            empty.push_back(std::move(current));
            if (threadWaits) {
                lock.unlock();
                emptied.notify_one();
                lock.lock();
            }
        }
        if (filled.empty()) {
            callerWaits = true;
            filledOne.wait(lock, [this] { return !filled.empty(); });
            callerWaits = false;
        }
        current = std::move(filled.front());
        filled.pop_front();
        filledCount.store(filled.size(), std::memory_order_relaxed);
        at = 0;
    }
    void stop()
    {
        {
            const std::lock_guard lock(mutex);
            stopped = true;
        }
        emptied.notify_one();
        if (thread.joinable())
            thread.join();
    }

    std::mutex mutex;
    // The thread waits here for empty batches, the caller for a filled one.
    std::condition_variable emptied;
    std::condition_variable filledOne;
    bool threadWaits = false;
    bool callerWaits = false;
    std::deque<std::unique_ptr<Batch>> filled;
    // The size of filled, read by the thread without the lock.
    std::atomic<std::size_t> filledCount = 0;
    std::vector<std::unique_ptr<Batch>> empty;
    std::size_t made = 0;
    bool stopped = false;
    std::unique_ptr<Batch> current;
    std::size_t at = 0;
    std::uint64_t shownPosition = 0;
    std::thread thread;
};

SectionRecords::SectionRecords(GroupReader& reader, ReadAhead readAhead) : reader_(reader), readAhead_(readAhead)
{
    const std::uint64_t left = reader.bytesLeft();
    if (left >= reader.readAheadFrom())
        readAheadWhenLeft_ = left - reader.readAheadFrom() / kReadInPlaceShare;
}

void SectionRecords::startReadingAhead()
{
    ahead_ = std::make_unique<Ahead>();
    ahead_->shownPosition = reader_.bytesRead();
    reader_.showPosition(&ahead_->shownPosition);
    ahead_->thread = std::thread([this] {
        Ahead& ahead = *ahead_;
        for (std::unique_ptr<Ahead::Batch> batch; (batch = ahead.take());) {
            std::size_t groups = 0;
            try {
                while (batch->count < kRecordsPerBatch && groups < kGroupsPerBatch) {
                    Record& record = batch->records[batch->count];
                    if (!readRecord(record, batch->end, batch->endLine)) {
                        batch->last = true;
                        break;
                    }
                    batch->positions[batch->count++] = reader_.bytesRead();
                    groups += record.size();
                }
            } catch (...) {
                batch->error = std::current_exception();
                batch->last = true;
            }
            // While the caller has batches in hand, this thread does some of
            // its work: it has readAhead take records apart. Else it hands the batch over at once,
            // being the slower of the two. Either way the caller gets the
            // same records, and makes what was not made here itself.
            batch->madeAhead = reader_.workAhead() == GroupReader::WorkAhead::Always || ahead.callerBehind();
            if (batch->madeAhead) {
                for (std::size_t i = 0; i < batch->count && readAhead_; ++i)
                    readAhead_(batch->records[i], batch->made[i]);
            }
            const bool last = batch->last;
            ahead.give(std::move(batch));
            if (last)
                return;
        }
    });
}

SectionRecords::~SectionRecords()
{
    if (ahead_) {
        ahead_->stop();
        reader_.showPosition(nullptr);
    }
}

bool SectionRecords::readRecord(Record& record, End& end, long& endLine)
{
    if (!reader_.next(head_)) {
        end = End::Input;
        endLine = head_.line;
        return false;
    }
    if (head_.code != 0 || trimmed(head_.value) == "ENDSEC") {
        end = head_.code != 0 ? End::NotARecord : End::Section;
        endLine = head_.line;
        return false;
    }
    record.read(reader_, head_);
    return true;
}

RecordAhead* SectionRecords::ahead() const
{
    if (!ahead_ || !ahead_->current || ahead_->at == 0 || !ahead_->current->madeAhead)
        return nullptr;
    return ahead_->current->made[ahead_->at - 1].get();
}

const Record* SectionRecords::next()
{
    if (!ahead_) {
        if (!readAheadWhenLeft_ || reader_.bytesLeft() > *readAheadWhenLeft_)
            return readRecord(record_, end_, endLine_) ? &record_ : nullptr;
        readAheadWhenLeft_.reset();
        startReadingAhead();
    }
    Ahead& ahead = *ahead_;
    while (!ahead.current || ahead.at == ahead.current->count) {
        if (ahead.current && ahead.current->last) {
            // The thread has ended: the reader is this thread's again, as
            // if every record had been read here.
            end_ = ahead.current->end;
            endLine_ = ahead.current->endLine;
            const std::exception_ptr error = ahead.current->error;
            ahead.stop();
            reader_.showPosition(nullptr);
            ahead_.reset();
            if (error)
                std::rethrow_exception(error);
            return nullptr;
        }
        ahead.takeNext();
    }
    ahead.shownPosition = ahead.current->positions[ahead.at];
    return &ahead.current->records[ahead.at++];
}

}  // namespace kaldo::dxf
