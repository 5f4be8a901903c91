// The TABLES section. LTYPE, LAYER and BLOCK_RECORD are modelled; every
// other table (VPORT, STYLE, VIEW, UCS, APPID, DIMSTYLE, ...) is kept whole.
#pragma once

#include "kaldo/dxf/GroupReader.h"

class KxDbDatabase;

namespace kaldo::dxf {

struct ReadContext;
struct KeptSections;
class GroupWriter;

void readTablesSection(GroupReader& reader, ReadContext& context);
void writeTablesSection(GroupWriter& writer, const KxDbDatabase& db, const KeptSections& kept);

}  // namespace kaldo::dxf
