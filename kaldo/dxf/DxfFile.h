// Drawings in ASCII DXF files: reading a whole file into a new database and
// writing a database (with what its file held beyond it) to a file.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kaldo/dxf/KeptSections.h"
#include "kaldo/dxf/Progress.h"

class KxDbDatabase;

namespace kaldo::dxf {

class GroupReader;

// A drawing as read: the database and the sections kept beside it.
struct DxfDrawing {
    DxfDrawing();
    DxfDrawing(DxfDrawing&&) noexcept;
    DxfDrawing& operator=(DxfDrawing&&) noexcept;
    ~DxfDrawing();

    std::unique_ptr<KxDbDatabase> database;
    KeptSections kept;
    // What the reader repaired in a file that other programs wrote with
    // faults, a sentence each for the user to read.
    std::vector<std::string> repairs;
};

// Reads a whole drawing. Throws DxfError naming the line for anything that
// is not a well-formed drawing; nothing outside the new drawing changes.
// The meter counts the records of blocks, entities and objects; a file is
// measured in bytes read of its size. Throws Cancelled when the report
// stops the reading.
DxfDrawing readDxf(GroupReader& reader, ProgressMeter meter = {});
DxfDrawing readDxfFile(const std::filesystem::path& path, const ProgressReport& report = {});

// How the entities of model and paper space are written: a chunk of
// entities that stand for this many file records at a time (a run of kept
// records for each of its own), the texts of the chunks made on two
// threads when there is more than one chunk, unless oneThread. The bytes
// are the same.
struct EntityChunks {
    std::size_t records = 4096;
    bool oneThread = false;
};

// Writes the drawing. Gives blocks that have none their begin and end
// records first (so the database may gain objects). Throws DxfError. The
// report is told the entities and objects written of the objects the
// database holds; it is last asked before the final flush, and Cancelled
// is thrown when it stops the writing.
void writeDxf(int fd, KxDbDatabase& db, KeptSections& kept, const ProgressReport& report = {},
              EntityChunks chunks = {});
// Writes atomically: the old file stays whole when anything fails or the
// report stops the writing.
void saveDxfFile(const std::filesystem::path& path, KxDbDatabase& db, KeptSections& kept, bool replaceReadOnly = false,
                 const ProgressReport& report = {});

}  // namespace kaldo::dxf
