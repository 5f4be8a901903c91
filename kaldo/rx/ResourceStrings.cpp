#include "kaldo/core/Host.h"
#include "kaldo/rx/Runtime.h"

#include "kxhost.h"
#include "kxrxlibrary.h"

void* kxrxResourceHandle()
{
    const kaldo::Runtime* runtime = kaldo::host().runtime;
    return runtime ? runtime->resourceHandle() : nullptr;
}

void kxrxSetResourceHandle(void* handle)
{
    if (kaldo::Runtime* runtime = kaldo::host().runtime)
        runtime->setResourceHandle(handle);
}

const wchar_t* kxmdKxResourceString(unsigned id, const wchar_t* defaultText)
{
    const wchar_t* text = kxResourceText(kxrxResourceHandle(), id);
    return text ? text : defaultText;
}
