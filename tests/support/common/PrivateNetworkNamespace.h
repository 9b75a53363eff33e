// Moves the whole process into a network namespace of its own with only loopback up, so that
// nothing it starts afterwards (GigE Vision discovery above all) can reach a real network.
// Call it before any other thread exists: threads started later inherit the namespace.
#pragma once

#include <string>

// True when the process now lives in a fresh namespace with loopback up; else false and why.
bool EnterPrivateNetworkNamespace(std::string& why);
bool InPrivateNetworkNamespace();
