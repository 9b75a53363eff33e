// Reads a GigE Vision device's bootstrap registers with plain GVCP read commands, which need no
// control of the device: discovery learns the subnet mask, gateway, user-defined name and whether
// another host controls the device without opening it (opening would take control and load its
// whole GenICam description).
#pragma once

#include <cstdint>
#include <string>

namespace ZYLGENICAM {

struct GigeBootstrapInfo {
    std::string subnetMask;
    std::string gateway;
    std::string userDefinedName;
    std::string deviceVersion;
    std::string hostInterfaceAddress;   // the local address the device is reached from
    bool controlled = false;            // some host holds control (CCP register not 0)
};

class GvcpBootstrapReader {
public:
    // False when the device did not answer.
    static bool Read(const std::string& deviceAddress, GigeBootstrapInfo& info);
    // True when the device answers a read of its bootstrap version register. It uses its own
    // socket, so it never waits behind Aravis's transactions with the device, and a device that is
    // gone costs kAttempts * kReplyTimeoutMs at most.
    static bool Answers(const std::string& deviceAddress);

    static constexpr int kAttempts = 4;
    static constexpr int kReplyTimeoutMs = 250;

    static constexpr uint16_t kGvcpPort = 3956;
};

} // namespace ZYLGENICAM
