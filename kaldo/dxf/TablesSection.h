// The TABLES section. LTYPE, LAYER and BLOCK_RECORD are modelled; every
// other table (VPORT, STYLE, VIEW, UCS, APPID, DIMSTYLE, ...) is kept whole.
#pragma once

#include "kaldo/dxf/GroupReader.h"

#include <map>
#include <string>
#include <string_view>

#include "kxdbid.h"

class KxDbDatabase;
class KxDbSymbolTable;

namespace kaldo::dxf {

struct ReadContext;
struct KeptSections;
class GroupWriter;

void readTablesSection(GroupReader& reader, ReadContext& context);
// Adds to the block table a block of the name (which it does not hold) as
// its add would, for a block of the BLOCKS section without a record (old
// versions have none): kept unopened as a record of its name alone but
// for model and paper space. Null when the name cannot be a block's.
KxDbObjectId addNamedBlock(ReadContext& context, KxDbSymbolTable& table, const std::wstring& name);
// Adds a layer (isLayer) or linetype of the name (which the table does not
// hold) that an entity names, kept unopened as a record of its one name
// group, which makes the record a new one would be; null, adding nothing,
// when it cannot be kept so.
KxDbObjectId keepMissingRecord(ReadContext& context, const KxDbSymbolTable& table, std::string_view name,
                               bool isLayer);
void writeTablesSection(GroupWriter& writer, const KxDbDatabase& db, const KeptSections& kept);
// The font file (group 3) of each text style of the kept STYLE table, by
// the style's name in capitals.
std::map<std::string, std::string> textStyleFonts(const KeptSections& kept);

}  // namespace kaldo::dxf
