// The HEADER section: the variables the host uses go to the database, the
// others are kept as read. Written with the host's values first. The
// version ($ACADVER) and code page ($DWGCODEPAGE) tell the reader how the
// file's texts are encoded as soon as they are read.
#pragma once

#include "kaldo/dxf/GroupReader.h"

class KxDbDatabase;

namespace kaldo::dxf {

struct ReadContext;
struct KeptSections;
struct EntityChunks;
class GroupWriter;

// The version written when a drawing has none of its own or an older one.
inline constexpr const char* kWrittenVersion = "AC1015";
// The version a drawing is written in: its own, or kWrittenVersion.
std::string writtenVersion(const KeptSections& kept);

// Reads the variables after "2 HEADER" up to and including ENDSEC.
void readHeaderSection(GroupReader& reader, ReadContext& context);
// Sets the variables read by name (the current multiline style) once the
// objects are read.
void resolveHeaderReferences(ReadContext& context);

// The extents are those the drawing was read with while it has not
// changed since, else measured in the chunks given (drawingExtents).
void writeHeaderSection(GroupWriter& writer, const KxDbDatabase& db, const KeptSections& kept,
                        const EntityChunks& chunks);

}  // namespace kaldo::dxf
