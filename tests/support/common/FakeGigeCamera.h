// A simulated GigE Vision camera in its own process (arv-fake-gv-camera-0.8 from aravis-tools) on
// 127.0.0.1, or in another network namespace the test made; use it only inside a private network
// namespace. The process is stopped by its id, at the latest when this object goes away.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

class FakeGigeCamera {
public:
    static constexpr const char* kProgram = "arv-fake-gv-camera-0.8";
    static constexpr const char* kAddress = "127.0.0.1";

    // networkNamespace: the name of the namespace ("ip netns") the process runs in; empty for ours.
    explicit FakeGigeCamera(std::string serialNumber, std::string address = kAddress,
                            std::string networkNamespace = "");
    ~FakeGigeCamera();
    FakeGigeCamera(const FakeGigeCamera&) = delete;
    FakeGigeCamera& operator=(const FakeGigeCamera&) = delete;

    static bool ProgramAvailable();
    // Starts the process and waits until it answers GigE Vision discovery; false on failure.
    bool Start();
    // Kills the process (as a power cut would) and reaps it. The kernel then answers for the closed
    // port at once, so a dead camera on loopback is quick to find out.
    void Kill();
    // Stops the process without ending it, as a pulled cable would: nothing answers until Thaw.
    void Freeze() { Signal(SIGSTOP); }
    void Thaw() { Signal(SIGCONT); }
    const std::string& SerialNumber() const { return m_serialNumber; }
    const std::string& Address() const { return m_address; }
    // Every fake camera reports the MAC address 00:00:00:00:00:00. It keeps its bootstrap registers
    // in plain memory, so writing the register of the address's low four bytes gives it another.
    bool SetMacAddressLow(uint32_t low);

private:
    void Signal(int signal) const;
    bool AnswersDiscovery() const;
    // One GVCP command sent straight to the camera; true when its acknowledge came with status 0.
    bool Acknowledged(const std::vector<uint8_t>& command, uint16_t acknowledge) const;

    std::string m_serialNumber;
    std::string m_address;
    std::string m_networkNamespace;
    pid_t m_pid = -1;
};
