#include "kaldo/core/Host.h"

namespace kaldo {

HostState& host()
{
    static HostState state;
    return state;
}

}  // namespace kaldo
