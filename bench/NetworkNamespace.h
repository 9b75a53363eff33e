// Every benchmark program runs in a network namespace of its own with only loopback up,
// so nothing it starts (GigE Vision discovery above all) can reach a real network.
#pragma once

#include <string>

namespace Bench {

// True when the process now lives in a fresh namespace with loopback up; otherwise why not.
bool EnterPrivateNetworkNamespace(std::string& why);
bool InPrivateNetworkNamespace();

} // namespace Bench
