// A simulated GigE Vision camera in its own process (arv-fake-gv-camera-0.8 from aravis-tools),
// listening on 127.0.0.1 or another loopback address the namespace has. Use it only inside a
// private network namespace. The test owns the
// process: it is stopped by its id, at the latest when this object goes away.
#pragma once

#include <sys/types.h>

#include <string>

class FakeGigeCamera {
public:
    explicit FakeGigeCamera(std::string serialNumber = "VB3GV01", std::string address = kAddress);
    ~FakeGigeCamera();

    FakeGigeCamera(const FakeGigeCamera&) = delete;
    FakeGigeCamera& operator=(const FakeGigeCamera&) = delete;

    static bool ProgramAvailable();
    static constexpr const char* kProgram = "arv-fake-gv-camera-0.8";
    static constexpr const char* kAddress = "127.0.0.1";

    // Starts the process and waits until it answers GigE Vision discovery; false on failure.
    bool Start(int timeoutMs = 10000);
    // Kills the process (as a power cut would) and reaps it. The kernel then answers for the closed
    // port at once, so a dead camera on loopback is quick to find out.
    void Kill();
    // Stops the process without ending it, as an unplugged cable would: packets to the camera go
    // unanswered until Thaw (the cable plugged back in).
    void Freeze();
    void Thaw();
    bool IsRunning() const { return m_pid > 0; }
    const std::string& SerialNumber() const { return m_serialNumber; }
    const std::string& Address() const { return m_address; }

private:
    bool AnswersDiscovery(int timeoutMs) const;

    std::string m_serialNumber;
    std::string m_address;
    pid_t m_pid = -1;
};
