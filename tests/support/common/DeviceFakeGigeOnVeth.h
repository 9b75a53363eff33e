// A simulated GigE Vision camera (arv-fake-gv-camera) behind a veth pair: the
// test's own namespace holds the adapter end "vb3g0" (169.254.30.1/16), the
// camera listens on the peer end (169.254.30.2) inside a second namespace made
// for it, so discovery reaches it only through that adapter. The process is
// stopped by its id and both ends vanish with the object.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "support/common/NetworkNamespace.h"

class DeviceFakeGigeOnVeth {
public:
    static constexpr const char* ADAPTER_KEY = "vb3g0[169.254.30.1]";
    static constexpr const char* CAMERA_ADDRESS = "169.254.30.2";

    explicit DeviceFakeGigeOnVeth(std::string serialNumber);
    ~DeviceFakeGigeOnVeth();
    DeviceFakeGigeOnVeth(const DeviceFakeGigeOnVeth&) = delete;
    DeviceFakeGigeOnVeth& operator=(const DeviceFakeGigeOnVeth&) = delete;

    // Builds the link and starts the camera; false with a reason on failure.
    bool Start(std::string& failure);
    const std::string& SerialNumber() const { return m_serialNumber; }

private:
    std::string m_serialNumber;
    std::unique_ptr<NetworkNamespace> m_cameraSpace;
    pid_t m_pid = -1;
};
