#include "mlnfile/LinetypeResolver.h"

#include "kxdb.h"
#include "kxed.h"

namespace kdml {

namespace {

// MEASUREMENT, or nothing when it cannot be read.
bool readMeasurement(int& value)
{
    kxresbuf result;
    if (kxedGetVar(L"MEASUREMENT", &result) != RTNORM)
        return false;
    value = result.restype == RTSHORT ? result.resval.rint : 0;
    return true;
}

}  // namespace

KxDbObjectId resolveLinetype(const wchar_t* name, KxDbDatabase* database)
{
    if (!name || !database)
        return KxDbObjectId::kNull;
    KxDbObjectId found;
    KxDbObjectId continuous;
    {
        KxDbLinetypeTable* opened = nullptr;
        database->getLinetypeTable(opened, KxDb::kForRead);
        KxDbObjectPtr<KxDbLinetypeTable> table(opened);
        if (table) {
            table->getAt(name, found);
            table->getAt(kxdbGetReservedString(3, false), continuous);
        }
    }
    if (!found.isNull())
        return found;

    int measurement = 0;
    if (!readMeasurement(measurement))
        return KxDbObjectId::kNull;
    const wchar_t* file = measurement != 0 ? L"kaldoiso.lin" : L"kaldo.lin";
    KxDbObjectId loaded;
    if (kxdbLoadLinetypeFromFile(file, name, loaded, database, 1) == Kald::eOk && !loaded.isNull())
        return loaded;
    return continuous;
}

}  // namespace kdml
