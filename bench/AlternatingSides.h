// The benchmarks compare two sides measured one right after the other. Repetitions alternate
// which side goes first, so a drift in the machine's load evens out.
#pragma once

#include <functional>

namespace Bench {

class AlternatingSides {
public:
    // Runs both sides: the raw one first on the first call, the library first on the next, and so on.
    void Run(const std::function<void()>& library, const std::function<void()>& raw)
    {
        if (m_calls++ % 2 == 1) {
            library();
            raw();
        } else {
            raw();
            library();
        }
    }

private:
    int m_calls = 0;
};

} // namespace Bench
