// A GigE Vision camera on a foreign subnet, as far as discovery and FORCEIP go: a small GVCP
// responder in a namespace of its own, behind a veth pair whose adapter end "vb3f0"
// (192.168.77.1/24) stays in the calling thread's namespace. It says it is "Far(VB3FAR)", model
// "Responder", MAC 02:00:00:77:00:05, at 10.99.0.5/24 with no route back, so it can only answer by
// broadcast, as a real camera on a foreign subnet does. Every answer is preceded by garbage (a
// short packet, a wrong request id, a length past the packet's end). It records each FORCEIP and,
// when it acknowledges one, takes the forced address for its next discovery answers.
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

    struct ForceIp {
        bool acknowledgeRequired = false;
        std::string mac, ip, mask, gateway;
    };

    explicit GvcpResponderOnVeth(bool acknowledgesForceIp);
    ~GvcpResponderOnVeth();
    GvcpResponderOnVeth(const GvcpResponderOnVeth&) = delete;
    GvcpResponderOnVeth& operator=(const GvcpResponderOnVeth&) = delete;

    // Builds the link and starts answering; false with a reason on failure.
    bool Start(std::string& failure);
    std::vector<ForceIp> ForceIpCommands() const;

private:
    void Serve(int fd);
    void Answer(int fd, const uint8_t* packet, std::size_t size, uint16_t port);

    bool m_acknowledgesForceIp;
    NetworkNamespace m_cameraSpace{{}};
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
    mutable std::mutex m_mutex;
    std::string m_ip = "10.99.0.5", m_mask = "255.255.255.0", m_gateway = "10.99.0.1";
    std::vector<ForceIp> m_forceIps;
};
