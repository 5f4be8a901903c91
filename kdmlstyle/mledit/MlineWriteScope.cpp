#include "mledit/MlineWriteScope.h"

#include "kxdbapi.h"

namespace kdml {

namespace {

// Closes the pick's read open and opens the entity again for write.
int reopenForWrite(MlinePick& pick)
{
    if (pick.mline)
        pick.mline->close();
    pick.mline = nullptr;
    KxDbObjectId id;
    if (const Kald::ErrorStatus es = kxdbGetObjectId(id, pick.name.id); es != Kald::eOk)
        return es;
    return kxdbOpenObject(pick.mline, id, KxDb::kForWrite);
}

}  // namespace

MlineWriteScope::MlineWriteScope(MlinePick& first, MlinePick& second) : first_(first), second_(second)
{
    if (first_.mline)
        status_ = reopenForWrite(first_);
    if (second_.name.id[0] == 0)
        return;
    if (sameEntity(first_, second_))
        second_.mline = first_.mline;
    else if (status_ == Kald::eOk)
        status_ = reopenForWrite(second_);
}

MlineWriteScope::~MlineWriteScope()
{
    if (first_.mline)
        first_.mline->close();
    if (second_.mline && !sameEntity(first_, second_))
        second_.mline->close();
    first_.mline = nullptr;
    second_.mline = nullptr;
}

void backupMultiline(KxDbMline* backup, const KxDbMline* source)
{
    if (backup && source)
        backup->copyFrom(source);
}

void restoreMultiline(const kxds_name_t& name, const KxDbMline* backup)
{
    if (!backup)
        return;
    KxDbObjectId id;
    if (kxdbGetObjectId(id, name.id) != Kald::eOk)
        return;
    KxDbObjectPtr<KxDbMline> mline(id, KxDb::kForWrite);
    if (mline)
        mline->copyFrom(backup);
}

}  // namespace kdml
