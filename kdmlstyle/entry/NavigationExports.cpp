// The module's instantiations of the host library's navigation arrays and
// the destructors of its navigation list and drop source, exported for the
// host as every module built against the library exports them. The module's
// own code does not use them.
#include "kxuinav.h"

template class CNavArray<CNavData>;
template class CNavArray<CNavFilter>;
template class CNavArray<void*>;
template class CTypedPtrArray<CPtrArray, CNavData*>;
template class CTypedPtrArray<CPtrArray, CNavFilter*>;

CNavListCtrl::~CNavListCtrl() = default;

CNavDropSource::~CNavDropSource() = default;
