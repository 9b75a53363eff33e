// Unicast GVCP reads of a GigE Vision device's bootstrap registers from a socket of our own. They
// need no control of the device, so discovery learns whether another host controls it without
// opening it (opening would take control and load its whole GenICam description), and a probe
// never queues behind Aravis's own transactions.
#pragma once

#include <cstdint>
#include <string>

namespace ZYLGENICAM {

class GvcpBootstrapReader {
public:
    // Reads the control-channel privilege register: controlled is true when some host holds
    // control. False when the device did not answer.
    static bool ReadControlled(const std::string& deviceAddress, bool& controlled);
    // True when the device answers a read of its bootstrap version register. A device that is
    // gone costs kAttempts * kReplyTimeoutMs at most.
    static bool Answers(const std::string& deviceAddress);

    static constexpr int kAttempts = 4;
    static constexpr int kReplyTimeoutMs = 250;
};

} // namespace ZYLGENICAM
