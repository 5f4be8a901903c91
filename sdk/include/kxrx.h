// Runtime objects of the host: the system registry (a dictionary of named
// objects with run-time classes, see kxdbclass.h) and services, which
// modules register to mark their presence. Registry entries are taken as a
// class with that class's cast(), which refuses objects of other classes.
#pragma once

#include "kxdbclass.h"

#include <map>
#include <memory>
#include <string>

// A dictionary of named objects that owns its entries. Keys are compared
// exactly.
class KxRxDictionary : public KxRxObject {
public:
    KX_RX_DECLARE_MEMBERS(KxRxDictionary)

    // The entry under key, or null.
    KxRxObject* at(const wchar_t* key) const;
    // Stores obj under key and takes it over. Returns the object it replaced,
    // which then belongs to the caller, or null.
    KxRxObject* atPut(const wchar_t* key, KxRxObject* obj);
    // Takes the entry out and hands it to the caller (to delete), or null.
    KxRxObject* remove(const wchar_t* key);
    std::size_t numEntries() const { return entries_.size(); }

private:
    std::map<std::wstring, std::unique_ptr<KxRxObject>> entries_;
};

// A named service; a module registers one to say that it is loaded.
class KxRxService : public KxRxObject {
public:
    KX_RX_DECLARE_MEMBERS(KxRxService)
    explicit KxRxService(std::wstring name) : name_(std::move(name)) {}
    const std::wstring& name() const { return name_; }

private:
    std::wstring name_;
};

// Keys of the system registry.
inline constexpr const wchar_t* kxrxCommandStackKey = L"KALD_REGISTERED_COMMANDS";
inline constexpr const wchar_t* kxrxServiceDictionaryKey = L"ServiceDictionary";
inline constexpr const wchar_t* kxrxDynamicLinkerKey = L"DynamicLinker";

// The running host's system registry, or null when no host runs.
KxRxDictionary* kxrxSysRegistry();
// The service registered under name, or null (also when the service
// dictionary is missing or of another class).
KxRxService* kxrxServiceAt(const wchar_t* name);
// Registers a service under name unless one is there; returns the service
// registered under that name, or null when there is no service dictionary.
KxRxService* kxrxRegisterService(const wchar_t* name);
