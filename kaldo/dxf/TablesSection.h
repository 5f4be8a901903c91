// The TABLES section. LTYPE, LAYER and BLOCK_RECORD are modelled; every
// other table (VPORT, STYLE, VIEW, UCS, APPID, DIMSTYLE, ...) is kept whole.
#pragma once

#include "kaldo/dxf/GroupReader.h"

#include <map>
#include <string>

class KxDbDatabase;

namespace kaldo::dxf {

struct ReadContext;
struct KeptSections;
class GroupWriter;

void readTablesSection(GroupReader& reader, ReadContext& context);
void writeTablesSection(GroupWriter& writer, const KxDbDatabase& db, const KeptSections& kept);
// The font file (group 3) of each text style of the kept STYLE table, by
// the style's name in capitals.
std::map<std::string, std::string> textStyleFonts(const KeptSections& kept);

}  // namespace kaldo::dxf
