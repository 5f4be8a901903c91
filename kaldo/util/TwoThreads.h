// Work split in two halves, the first on a second thread while this one
// does the second, for work large enough to pay for the thread. The halves
// must not throw (they run where nothing catches) and must not touch what
// the other half writes.
#pragma once

#include <thread>

namespace kaldo {

// Calls half(0) on a second thread and half(1) on this one when split,
// else both here, the first first; returns when both are done.
template <class Half>
void onTwoThreads(bool split, Half&& half)
{
    if (!split) {
        half(0);
        half(1);
        return;
    }
    std::thread other([&] { half(0); });
    half(1);
    other.join();
}

}  // namespace kaldo
