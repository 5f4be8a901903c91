// Drawings in ASCII DXF files: reading a whole file into a new database and
// writing a database (with what its file held beyond it) to a file.
#pragma once

#include <filesystem>
#include <memory>

#include "kaldo/dxf/KeptSections.h"

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
};

// Reads a whole drawing. Throws DxfError naming the line for anything that
// is not a well-formed drawing; nothing outside the new drawing changes.
DxfDrawing readDxf(GroupReader& reader);
DxfDrawing readDxfFile(const std::filesystem::path& path);

// Writes the drawing. Gives blocks that have none their begin and end
// records first (so the database may gain objects). Throws DxfError.
void writeDxf(int fd, KxDbDatabase& db, KeptSections& kept);
// Writes atomically: the old file stays whole when anything fails.
void saveDxfFile(const std::filesystem::path& path, KxDbDatabase& db, KeptSections& kept, bool replaceReadOnly = false);

}  // namespace kaldo::dxf
