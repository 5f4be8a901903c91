// Names of layers and linetypes as the writer needs them, read where the
// records hold them without opening them (a record kept unopened stays
// so), the first many looked up once: a drawing may name very many, each
// of which a name kept would cost more than its record. The handle of the
// block whose entities are written is kept alike.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "kaldo/db/RunMap.h"
#include "kxdbid.h"

class KxDbDatabase;

namespace kaldo::dxf {

class NameCache {
public:
    explicit NameCache(const KxDbDatabase& db) : db_(db) {}
    // The name of the layer or linetype record, or fallback when id names
    // no table record of the drawing; valid until the next call.
    const std::string& operator()(KxDbObjectId record, const char* fallback);
    // The handle of the block that owns entities (handleOf), the last one
    // remembered: the entities of a block name it one after the other.
    std::uint64_t ownerHandle(KxDbObjectId block);
    // The handle of an object of the drawing, from the run of consecutive
    // ids and handles the one asked before lay in when it lies there too:
    // the entities of a block read from a file are such a run.
    std::uint64_t handle(KxDbObjectId id);

private:
    static constexpr std::size_t kCached = 256;
    const KxDbDatabase& db_;
    std::unordered_map<std::uint64_t, std::string> names_;
    std::string uncached_;
    KxDbObjectId lastOwner_;
    std::uint64_t lastOwnerHandle_ = 0;
    kaldo::RunMap::Run handles_;
};

}  // namespace kaldo::dxf
