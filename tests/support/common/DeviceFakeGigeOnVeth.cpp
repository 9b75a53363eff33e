#include "support/common/DeviceFakeGigeOnVeth.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "support/common/FakeGigeCamera.h"

namespace {

bool Run(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

} // namespace

DeviceFakeGigeOnVeth::DeviceFakeGigeOnVeth(std::string serialNumber) : m_serialNumber(std::move(serialNumber)) {}

DeviceFakeGigeOnVeth::~DeviceFakeGigeOnVeth()
{
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    Run("ip link del vb3g0");
}

bool DeviceFakeGigeOnVeth::Start(std::string& failure)
{
    if (!FakeGigeCamera::ProgramAvailable()) {
        failure = std::string(FakeGigeCamera::kProgram) + " (aravis-tools) is not installed";
        return false;
    }
    m_cameraSpace = std::make_unique<NetworkNamespace>(std::vector<NetworkNamespace::Veth>{});
    if (!m_cameraSpace->IsReady()) {
        failure = m_cameraSpace->Failure();
        return false;
    }
    if (!m_cameraSpace->LinkFromCaller("vb3g0", "169.254.30.1/16", "vb3g1", std::string(CAMERA_ADDRESS) + "/16")) {
        failure = "cannot build the veth link to the camera's namespace";
        return false;
    }
    m_pid = fork();
    if (m_pid == 0) {
        execlp("ip", "ip", "netns", "exec", m_cameraSpace->Name().c_str(), FakeGigeCamera::kProgram, "-i",
               CAMERA_ADDRESS, "-s", m_serialNumber.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    if (m_pid < 0) {
        failure = "cannot start the simulated camera";
        return false;
    }
    // The camera binds its sockets meanwhile: callers wait for it to be listed.
    return true;
}
