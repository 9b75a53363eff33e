// A GigE Vision camera on a foreign subnet, as far as discovery and FORCEIP go: a small GVCP
// responder in a namespace of its own, behind a veth pair whose adapter end "vb3f0"
// (192.168.77.1/24) stays in the calling thread's namespace. The camera end has an address on
// another subnet and no route back, so the camera can only answer by broadcast, as a real one on
// a foreign subnet does. Every answer is preceded by garbage (a short packet, a wrong request id,
// a length past the packet's end). It records each FORCEIP it receives and, when it
// acknowledges one, takes the forced address for its next discovery answers.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/common/NetworkNamespace.h"

class GvcpResponderOnVeth {
public:
    static constexpr const char* ADAPTER_KEY = "vb3f0[192.168.77.1]";

    struct Identity {
        std::string serialNumber;
        std::string model;
        std::string userDefinedName;
        uint8_t mac[6];
        std::string ip, mask, gateway;
    };

    // A FORCEIP command as it arrived: header fields and the payload's addresses.
    struct ForceIp {
        uint8_t flags = 0;
        uint16_t code = 0;
        uint16_t length = 0;
        uint8_t mac[6]{};
        std::string ip, mask, gateway;
    };

    GvcpResponderOnVeth(Identity identity, bool acknowledgesForceIp);
    ~GvcpResponderOnVeth();
    GvcpResponderOnVeth(const GvcpResponderOnVeth&) = delete;
    GvcpResponderOnVeth& operator=(const GvcpResponderOnVeth&) = delete;

    // Builds the link and starts answering; false with a reason on failure.
    bool Start(std::string& failure);
    std::vector<ForceIp> ForceIpCommands() const;

private:
    void Serve(int fd);
    void Answer(int fd, const uint8_t* packet, std::size_t size, uint16_t port);

    Identity m_identity;
    bool m_acknowledgesForceIp;
    std::unique_ptr<NetworkNamespace> m_cameraSpace;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
    mutable std::mutex m_mutex;
    std::vector<ForceIp> m_forceIps;
};
