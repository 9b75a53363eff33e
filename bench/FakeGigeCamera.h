// Aravis's fake GigE Vision camera (arv-fake-gv-camera-0.8) as a child process answering on
// 127.0.0.1. Only ever started inside the program's private network namespace.
#pragma once

#include <string>
#include <sys/types.h>

namespace Bench {

class FakeGigeCamera {
public:
    explicit FakeGigeCamera(const std::string& serial);
    ~FakeGigeCamera();
    FakeGigeCamera(const FakeGigeCamera&) = delete;
    FakeGigeCamera& operator=(const FakeGigeCamera&) = delete;

    bool IsRunning() const { return m_pid > 0; }
    const std::string& Serial() const { return m_serial; }

private:
    std::string m_serial;
    pid_t m_pid = -1;
};

// Runs a command line through the shell and returns what it printed (stdout and stderr).
std::string RunAndCapture(const std::string& commandLine);

} // namespace Bench
