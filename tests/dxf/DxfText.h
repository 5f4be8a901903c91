// Drawings to DXF text and back, in memory, for the reader and writer tests.
#pragma once

#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/GroupReader.h"
#include "kxdb.h"

#include <cstdio>
#include <string>
#include <vector>

inline std::string toDxfText(KxDbDatabase& db, kaldo::dxf::KeptSections& kept)
{
    std::FILE* file = std::tmpfile();
    kaldo::dxf::writeDxf(fileno(file), db, kept);
    std::string text(std::size_t(std::ftell(file)), '\0');
    std::rewind(file);
    const std::size_t got = std::fread(text.data(), 1, text.size(), file);
    std::fclose(file);
    text.resize(got);
    return text;
}

inline kaldo::dxf::DxfDrawing fromDxfText(const std::string& text)
{
    kaldo::dxf::GroupReader reader(text);
    return kaldo::dxf::readDxf(reader);
}

inline std::string toDxfText(kaldo::dxf::DxfDrawing& drawing)
{
    return toDxfText(*drawing.database, drawing.kept);
}

// The ids of model space's entities, in their order.
inline std::vector<KxDbObjectId> modelSpaceIds(KxDbDatabase& db)
{
    std::vector<KxDbObjectId> ids;
    for (auto it = KxDbBlockTableRecord::cast(db.peekObject(db.modelSpaceId()))->newIterator(); !it->done(); it->step())
        ids.push_back(it->getEntityId());
    return ids;
}

// The first entity of model space of class T (null when there is none).
template <class T>
T* firstEntity(KxDbDatabase& db, int skip = 0)
{
    auto* space = KxDbBlockTableRecord::cast(db.peekObject(db.modelSpaceId()));
    for (auto it = space->newIterator(); !it->done(); it->step())
        if (T* entity = T::cast(db.peekObject(it->getEntityId())); entity && skip-- == 0)
            return entity;
    return nullptr;
}

// Appends a new entity to model space with the drawing's defaults.
template <class T>
T* addEntity(KxDbDatabase& db, T* entity)
{
    entity->setDatabaseDefaults(&db);
    db.addToCurrentSpace(entity);
    entity->close();
    return entity;
}
