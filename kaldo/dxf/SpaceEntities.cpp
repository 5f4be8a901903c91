#include "kaldo/dxf/SpaceEntities.h"

#include "kaldo/dxf/EntityWalk.h"
#include "kaldo/dxf/HeaderSection.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kxdbdatabase.h"
#include "kxdbsymtb.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace kaldo::dxf {

namespace {

using Chunk = EntityWalk::Chunk;

// What the threads share: the chunks given out by number, the number of
// the chunk whose turn it is to be written, and the first chunk that
// failed (its entity refused, its write or the progress report failing).
class ChunkTurns {
public:
    ChunkTurns(const KxDbDatabase& db, std::size_t size) : chunks_(db, {db.modelSpaceId(), db.paperSpaceId()}, size)
    {
    }

    // The next chunk and its number; false once all were given or one failed.
    bool take(Chunk& chunk, std::size_t& number)
    {
        const std::lock_guard lock(mutex_);
        if (failure_)
            return false;
        chunks_.next(chunk);
        number = given_++;
        return !chunk.entities.empty();
    }
    // Waits until the chunks before number are written; false when one of
    // them failed.
    bool awaitTurn(std::size_t number)
    {
        std::unique_lock lock(mutex_);
        turn_.wait(lock, [&] { return written_ == number || failedAt_ < number; });
        return written_ == number;
    }
    void written(std::size_t entities)
    {
        {
            const std::lock_guard lock(mutex_);
            ++written_;
            entitiesWritten_ += entities;
        }
        turn_.notify_all();
    }
    // The failure of the chunk of that number; the first in the file's
    // order is the one thrown.
    void failed(std::size_t number, std::exception_ptr error)
    {
        {
            const std::lock_guard lock(mutex_);
            if (number < failedAt_) {
                failedAt_ = number;
                failure_ = std::move(error);
            }
        }
        turn_.notify_all();
    }
    std::size_t entitiesWritten()
    {
        const std::lock_guard lock(mutex_);
        return entitiesWritten_;
    }
    void rethrowFailure()
    {
        const std::lock_guard lock(mutex_);
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    std::mutex mutex_;
    std::condition_variable turn_;
    EntityWalk chunks_;
    std::size_t given_ = 0;
    std::size_t written_ = 0;
    std::size_t entitiesWritten_ = 0;
    std::size_t failedAt_ = std::numeric_limits<std::size_t>::max();
    std::exception_ptr failure_;
};

// Makes the text of chunk after chunk in memory and writes each to fd in
// its turn, until every chunk is taken or one failed. taken is called with
// each chunk taken, written after each chunk written.
void writeChunks(int fd, const KxDbDatabase& db, const KeptSections& kept, ChunkTurns& turns, NameCache& names,
                 const std::function<void(const Chunk&)>& taken, const std::function<void()>& written)
{
    GroupWriter text;
    text.encodeAs(writtenVersion(kept), kept.codePage);
    Chunk chunk;
    std::size_t number = 0;
    while (turns.take(chunk, number)) {
        try {
            taken(chunk);
            for (const KxDbEntity* entity : chunk.entities)
                writeEntityRecord(text, db, *entity, names);
            if (!turns.awaitTurn(number))
                return;
            text.writeTo(fd);
            turns.written(chunk.entities.size());
            written();
        } catch (...) {
            turns.failed(number, std::current_exception());
            return;
        }
    }
}

}  // namespace

void writeEntityRecord(GroupWriter& w, const KxDbDatabase& db, const KxDbEntity& entity, NameCache& names)
{
    try {
        writeEntity(w, db, entity, names);
    } catch (const DxfError& e) {
        refuseRecord(entity, e);
    }
}

void writeSpaceEntities(int fd, const KxDbDatabase& db, const KeptSections& kept, NameCache& names,
                        ProgressMeter& meter, const EntityChunks& chunks)
{
    ChunkTurns turns(db, chunks.records);
    NameCache otherNames(db);
    std::size_t counted = 0;
    const auto countWritten = [&] {
        for (const std::size_t written = turns.entitiesWritten(); counted < written; ++counted)
            meter.record();
    };
    // The second thread starts once a full chunk shows that more may follow.
    std::optional<std::jthread> other;
    const auto startOther = [&](const Chunk& chunk) {
        if (!other && !chunks.oneThread && chunk.records >= chunks.records)
            other.emplace([&] { writeChunks(fd, db, kept, turns, otherNames, [](const Chunk&) {}, [] {}); });
    };
    writeChunks(fd, db, kept, turns, names, startOther, countWritten);
    other.reset();
    turns.rethrowFailure();
    countWritten();
}

}  // namespace kaldo::dxf
