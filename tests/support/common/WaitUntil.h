// The one way tests wait for something another thread does: poll the condition
// until it holds or a generous deadline passes (the machine may be busy).
#pragma once

#include <chrono>
#include <functional>

inline constexpr std::chrono::milliseconds DEFAULT_WAIT{20000};

// False when the deadline passed first.
bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout = DEFAULT_WAIT);
