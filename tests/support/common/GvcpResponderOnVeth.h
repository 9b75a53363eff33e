// A GigE Vision camera on a foreign subnet, as far as discovery and FORCEIP go: a GVCP responder in
// a namespace of its own behind a veth pair whose adapter end "vb3f0" (192.168.77.1/24) stays with
// the caller. It is "Far(VB3FAR)", model "Responder", MAC 02:00:00:77:00:05, at 10.99.0.5/24 with
// no route back, so it answers by broadcast, as a real camera on a foreign subnet does. Garbage (a
// short packet, a wrong request id, a length past the end) precedes every answer. It counts the
// FORCEIP commands and, once it acknowledges them, answers discovery with the forced address.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/common/NetworkNamespace.h"

class GvcpResponderOnVeth {
public:
    static constexpr const char* ADAPTER_KEY = "vb3f0[192.168.77.1]";

    GvcpResponderOnVeth() = default;
    ~GvcpResponderOnVeth();
    GvcpResponderOnVeth(const GvcpResponderOnVeth&) = delete;
    GvcpResponderOnVeth& operator=(const GvcpResponderOnVeth&) = delete;

    // Builds the link and starts answering; false with a reason on failure.
    bool Start(std::string& failure);
    int ForceIpCommands() const;
    // From now on FORCEIP commands are acknowledged; until then they go unanswered.
    void AcknowledgeForceIp() { m_acknowledgesForceIp.store(true); }

private:
    void Serve();
    void Answer(int fd, const uint8_t* packet, std::size_t size, uint16_t port);

    std::atomic<bool> m_acknowledgesForceIp{false};
    NetworkNamespace m_cameraSpace{{}};
    std::atomic<bool> m_listening{false};
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
    mutable std::mutex m_mutex;
    std::string m_ip = "10.99.0.5", m_mask = "255.255.255.0", m_gateway = "10.99.0.1";
    int m_forceIpCommands = 0;
};
