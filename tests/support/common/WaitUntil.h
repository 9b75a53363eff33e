// The one way tests wait for something another thread does: poll the condition until it holds or
// a generous deadline passes (the machine may be busy).
#pragma once

#include <chrono>
#include <functional>
#include <thread>

// False when the deadline passed first.
inline bool WaitUntil(const std::function<bool()>& condition,
                      std::chrono::milliseconds timeout = std::chrono::seconds(20))
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}
