#include "host/ResourceLibraryScope.h"

#include "host/ResourceLibraryNames.h"

#include "kxhost.h"
#include "kxrxlibrary.h"

namespace kdml {

ResourceLibraryScope::ResourceLibraryScope()
    : library_(kxLoadLibrary(commandResourceLibraryName().c_str()))
{
    if (!library_)
        return;
    previous_ = kxrxResourceHandle();
    kxrxSetResourceHandle(library_);
}

ResourceLibraryScope::~ResourceLibraryScope()
{
    if (!library_)
        return;
    kxrxSetResourceHandle(previous_);
    kxFreeLibrary(library_);
}

}  // namespace kdml
