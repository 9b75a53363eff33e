// Several simulated GigE Vision cameras at once: each an arv-fake-gv-camera-0.8 process on a
// loopback address of its own (127.0.0.2, 127.0.0.3, ...), which it adds to loopback in the
// program's private network namespace (the addresses vanish with the namespace).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/common/FakeGigeCamera.h"

namespace Bench {

class FakeGigeFleet {
public:
    // `firstHost` is the last byte of the first camera's address.
    FakeGigeFleet(int count, const std::string& serialPrefix, int firstHost = 2);

    // Adds the addresses and starts every camera; false with the reason on failure.
    bool Start(std::string& why);
    std::size_t Size() const { return m_cameras.size(); }
    const std::string& Address(std::size_t index) const { return m_cameras[index]->Address(); }
    std::vector<std::string> Serials() const;
    std::vector<std::string> Addresses() const;

private:
    std::vector<std::unique_ptr<FakeGigeCamera>> m_cameras;
};

} // namespace Bench
