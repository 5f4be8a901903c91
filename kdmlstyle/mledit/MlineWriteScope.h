// Holding the picked multilines open for write while a tool edits them.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

class MlineWriteScope {
public:
    // Reopens first's multiline for write and then second's, unless second
    // is the same entity (it then shares first's object) or first failed.
    MlineWriteScope(MlinePick& first, MlinePick& second);
    // Closes both (the shared object once) and clears the picks' pointers.
    ~MlineWriteScope();
    MlineWriteScope(const MlineWriteScope&) = delete;
    MlineWriteScope& operator=(const MlineWriteScope&) = delete;

    // 0 when both are open for write: the tool may edit.
    int status() const { return status_; }

private:
    MlinePick& first_;
    MlinePick& second_;
    int status_ = Kald::eNotApplicable;
};

// Copies everything of source into backup (both must be given).
void backupMultiline(KxDbMline* backup, const KxDbMline* source);
// Opens the entity for write, copies backup into it and closes it.
void restoreMultiline(const kxds_name_t& name, const KxDbMline* backup);

}  // namespace kdml
