#include "kaldo/rx/Runtime.h"

#include "kxstring.h"

#include <cstdlib>

namespace kaldo {

Runtime::Runtime()
    : commands_(new KxEdCommandStack), services_(new KxRxDictionary), linker_(new KxRxDynamicLinker)
{
    registry_.atPut(kxrxCommandStackKey, commands_);
    registry_.atPut(kxrxServiceDictionaryKey, services_);
    registry_.atPut(kxrxDynamicLinkerKey, linker_);
    if (const char* env = std::getenv("KALDO_PRODUCT_PRENAME"))
        setProductPreName(kxutFromMultiByte(env));
    else
        setProductPreName(std::wstring(kDefaultPreName));
}

Runtime::~Runtime()
{
    linker_->unloadAll();
}

void Runtime::setProductPreName(std::optional<std::wstring> preName)
{
    if (preName && preName->empty())
        preName.reset();
    preName_ = std::move(preName);
}

}  // namespace kaldo
