#include "kaldo/core/Host.h"
#include "kaldo/rx/Runtime.h"

#include "kxrx.h"

KX_RX_DEFINE_MEMBERS(KxRxDictionary, KxRxObject)
KX_RX_DEFINE_MEMBERS(KxRxService, KxRxObject)

KxRxObject* KxRxDictionary::at(const wchar_t* key) const
{
    if (!key)
        return nullptr;
    const auto it = entries_.find(key);
    return it == entries_.end() ? nullptr : it->second.get();
}

KxRxObject* KxRxDictionary::atPut(const wchar_t* key, KxRxObject* obj)
{
    if (!key)
        return nullptr;
    auto& slot = entries_[key];
    KxRxObject* previous = slot.release();
    slot.reset(obj);
    return previous;
}

KxRxObject* KxRxDictionary::remove(const wchar_t* key)
{
    if (!key)
        return nullptr;
    const auto it = entries_.find(key);
    if (it == entries_.end())
        return nullptr;
    KxRxObject* obj = it->second.release();
    entries_.erase(it);
    return obj;
}

KxRxDictionary* kxrxSysRegistry()
{
    kaldo::Runtime* runtime = kaldo::host().runtime;
    return runtime ? &runtime->registry() : nullptr;
}

namespace {

KxRxDictionary* serviceDictionary()
{
    KxRxDictionary* registry = kxrxSysRegistry();
    return registry ? KxRxDictionary::cast(registry->at(kxrxServiceDictionaryKey)) : nullptr;
}

}  // namespace

KxRxService* kxrxServiceAt(const wchar_t* name)
{
    KxRxDictionary* services = serviceDictionary();
    return services ? KxRxService::cast(services->at(name)) : nullptr;
}

KxRxService* kxrxRegisterService(const wchar_t* name)
{
    KxRxDictionary* services = serviceDictionary();
    if (!services || !name)
        return nullptr;
    if (auto* existing = KxRxService::cast(services->at(name)))
        return existing;
    auto* service = new KxRxService(name);
    delete services->atPut(name, service);
    return service;
}
