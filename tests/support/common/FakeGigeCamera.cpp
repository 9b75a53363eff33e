#include "support/common/FakeGigeCamera.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "support/common/WaitUntil.h"

extern char** environ;

FakeGigeCamera::FakeGigeCamera(std::string serialNumber, std::string address, std::string networkNamespace)
    : m_serialNumber(std::move(serialNumber)), m_address(std::move(address)),
      m_networkNamespace(std::move(networkNamespace))
{
}

FakeGigeCamera::~FakeGigeCamera()
{
    Kill();
}

bool FakeGigeCamera::ProgramAvailable()
{
    return std::system((std::string("command -v ") + kProgram + " >/dev/null 2>&1").c_str()) == 0;
}

bool FakeGigeCamera::Start()
{
    if (m_pid > 0)
        return true;
    std::vector<std::string> arguments{kProgram, "-i", m_address, "-s", m_serialNumber};
    if (!m_networkNamespace.empty())
        arguments.insert(arguments.begin(), {"ip", "netns", "exec", m_networkNamespace});
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    if (posix_spawnp(&m_pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
        m_pid = -1;
        return false;
    }
    // "ip netns exec" execs the camera program, so m_pid is the camera's own.
    if (WaitUntil([&] { return AnswersDiscovery(); }))
        return true;
    Kill(); // reaps it too when it ended on its own
    return false;
}

void FakeGigeCamera::Kill()
{
    if (m_pid <= 0)
        return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

void FakeGigeCamera::Signal(int signal) const
{
    if (m_pid > 0)
        kill(m_pid, signal);
}

bool FakeGigeCamera::SetMacAddressLow(uint32_t low)
{
    // WRITEREG_CMD (0x0082) of register 0x000c.
    return Acknowledged({0x42, 0x01, 0x00, 0x82, 0x00, 0x08, 0x00, 0x01, 0x00, 0x00, 0x00, 0x0c, uint8_t(low >> 24),
                         uint8_t(low >> 16), uint8_t(low >> 8), uint8_t(low)},
                        0x0083);
}

bool FakeGigeCamera::AnswersDiscovery() const
{
    return Acknowledged({0x42, 0x01, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01}, 0x0003);
}

bool FakeGigeCamera::Acknowledged(const std::vector<uint8_t>& command, uint16_t acknowledge) const
{
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    sockaddr_in camera{AF_INET, htons(3956), {}, {}};
    inet_pton(AF_INET, m_address.c_str(), &camera.sin_addr);
    uint8_t reply[512];
    ssize_t size = -1;
    pollfd waiting{fd, POLLIN, 0};
    if (sendto(fd, command.data(), command.size(), 0, reinterpret_cast<sockaddr*>(&camera), sizeof camera) > 0 &&
        poll(&waiting, 1, 200) > 0)
        size = recv(fd, reply, sizeof reply, 0);
    close(fd);
    return size >= 8 && reply[0] == 0 && reply[1] == 0 && reply[2] == uint8_t(acknowledge >> 8) &&
           reply[3] == uint8_t(acknowledge);
}
