// Work split in two halves, the first on a second thread while this one
// does the second, for work large enough to pay for the thread. The halves
// must not touch what the other half writes. What a half throws is thrown
// here once both have ended.
#pragma once

#include <exception>
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
    std::exception_ptr failure;
    {
        // Joined when this block ends, also when half(1) throws.
        std::jthread other([&] {
            try {
                half(0);
            } catch (...) {
                failure = std::current_exception();
            }
        });
        half(1);
    }
    if (failure)
        std::rethrow_exception(failure);
}

}  // namespace kaldo
