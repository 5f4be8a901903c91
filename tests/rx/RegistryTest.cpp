#include "InstalledRuntime.h"

#include "kxrx.h"
#include "kxrxcommands.h"
#include "kxrxlinker.h"

#include <gtest/gtest.h>

TEST(Registry, EntriesAreTakenOnlyAsTheirOwnClassOrABaseClass)
{
    InstalledRuntime installed;
    KxRxDictionary* registry = kxrxSysRegistry();
    ASSERT_EQ(registry, &installed.runtime.registry());

    KxRxObject* commands = registry->at(kxrxCommandStackKey);
    KxRxObject* services = registry->at(kxrxServiceDictionaryKey);
    KxRxObject* linker = registry->at(kxrxDynamicLinkerKey);
    EXPECT_EQ(KxEdCommandStack::cast(commands), &installed.runtime.commands());
    EXPECT_EQ(KxRxDictionary::cast(services), &installed.runtime.services());
    EXPECT_EQ(KxRxDynamicLinker::cast(linker), &installed.runtime.linker());

    EXPECT_EQ(KxRxDynamicLinker::cast(commands), nullptr);
    EXPECT_EQ(KxEdCommandStack::cast(linker), nullptr);
    EXPECT_EQ(KxRxDictionary::cast(commands), nullptr);
    EXPECT_TRUE(linker->isKindOf(KxRxObject::desc()));
    EXPECT_EQ(registry->at(L"NoSuchEntry"), nullptr);
    EXPECT_EQ(registry->at(L"dynamiclinker"), nullptr) << "registry keys are exact";
}

TEST(Registry, WithoutARunningHostThereIsNoRegistryAndNoService)
{
    EXPECT_EQ(kxrxSysRegistry(), nullptr);
    EXPECT_EQ(kxrxServiceAt(L"Any"), nullptr);
    EXPECT_EQ(kxrxRegisterService(L"Any"), nullptr);
}

TEST(Registry, DictionaryOwnsItsEntriesAndHandsThemBack)
{
    KxRxDictionary dictionary;
    auto* first = new KxRxService(L"first");
    EXPECT_EQ(dictionary.atPut(L"key", first), nullptr);
    auto* second = new KxRxService(L"second");
    KxRxObject* replaced = dictionary.atPut(L"key", second);
    EXPECT_EQ(replaced, first);
    delete replaced;
    EXPECT_EQ(dictionary.numEntries(), 1u);

    KxRxObject* removed = dictionary.remove(L"key");
    EXPECT_EQ(removed, second);
    delete removed;
    EXPECT_EQ(dictionary.remove(L"key"), nullptr);
    EXPECT_EQ(dictionary.numEntries(), 0u);
}

TEST(Registry, ServicesAreRegisteredOnceAndFoundByName)
{
    InstalledRuntime installed;
    EXPECT_EQ(kxrxServiceAt(L"SomeApps"), nullptr);
    KxRxService* service = kxrxRegisterService(L"SomeApps");
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(service->name(), L"SomeApps");
    EXPECT_EQ(kxrxRegisterService(L"SomeApps"), service);
    EXPECT_EQ(kxrxServiceAt(L"SomeApps"), service);
    EXPECT_EQ(installed.runtime.services().numEntries(), 1u);

    // An entry of another class under a service's name is not a service.
    delete installed.runtime.services().atPut(L"Impostor", new KxRxDictionary);
    EXPECT_EQ(kxrxServiceAt(L"Impostor"), nullptr);

    // Without a service dictionary nothing can be registered.
    KxRxObject* taken = installed.runtime.registry().remove(kxrxServiceDictionaryKey);
    EXPECT_EQ(kxrxServiceAt(L"SomeApps"), nullptr);
    EXPECT_EQ(kxrxRegisterService(L"Other"), nullptr);
    installed.runtime.registry().atPut(kxrxServiceDictionaryKey, taken);
    EXPECT_EQ(kxrxServiceAt(L"SomeApps"), service);
}
