#include "support/common/FakeGigeCamera.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <thread>
#include <vector>

extern char** environ;

namespace {

constexpr uint16_t kGvcpPort = 3956;

} // namespace

FakeGigeCamera::FakeGigeCamera(std::string serialNumber, std::string address)
    : m_serialNumber(std::move(serialNumber)), m_address(std::move(address))
{
}

FakeGigeCamera::~FakeGigeCamera()
{
    Kill();
}

bool FakeGigeCamera::ProgramAvailable()
{
    const char* path = std::getenv("PATH");
    std::string directories = path != nullptr ? path : "/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= directories.size()) {
        std::size_t end = directories.find(':', start);
        if (end == std::string::npos)
            end = directories.size();
        std::string candidate = directories.substr(start, end - start) + "/" + kProgram;
        if (access(candidate.c_str(), X_OK) == 0)
            return true;
        start = end + 1;
    }
    return false;
}

bool FakeGigeCamera::Start(int timeoutMs)
{
    if (m_pid > 0)
        return true;
    std::vector<std::string> arguments{kProgram, "-i", m_address, "-s", m_serialNumber};
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    int spawned = posix_spawnp(&pid, kProgram, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return false;
    m_pid = pid;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (std::chrono::steady_clock::now() < deadline) {
        if (AnswersDiscovery(200))
            return true;
        int status = 0;
        if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_pid = -1;
            return false;
        }
    }
    Kill();
    return false;
}

void FakeGigeCamera::Kill()
{
    if (m_pid <= 0)
        return;
    kill(m_pid, SIGKILL);
    int status = 0;
    waitpid(m_pid, &status, 0);
    m_pid = -1;
}

void FakeGigeCamera::Freeze()
{
    if (m_pid > 0)
        kill(m_pid, SIGSTOP);
}

void FakeGigeCamera::Thaw()
{
    if (m_pid > 0)
        kill(m_pid, SIGCONT);
}

// One GVCP command sent straight to the camera's address; its acknowledge, or nothing.
std::vector<uint8_t> FakeGigeCamera::Exchange(const std::vector<uint8_t>& command, int timeoutMs) const
{
    std::vector<uint8_t> reply;
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return reply;
    sockaddr_in camera{};
    camera.sin_family = AF_INET;
    camera.sin_port = htons(kGvcpPort);
    inet_pton(AF_INET, m_address.c_str(), &camera.sin_addr);
    if (sendto(fd, command.data(), command.size(), 0, reinterpret_cast<sockaddr*>(&camera), sizeof camera) > 0) {
        pollfd waiting{fd, POLLIN, 0};
        if (poll(&waiting, 1, timeoutMs) > 0) {
            reply.resize(512);
            ssize_t size = recv(fd, reply.data(), reply.size(), 0);
            reply.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        }
    }
    close(fd);
    return reply;
}

bool FakeGigeCamera::AnswersDiscovery(int timeoutMs) const
{
    auto reply = Exchange({0x42, 0x01, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01}, timeoutMs);
    // A DISCOVERY_ACK (0x0003).
    bool answered = reply.size() >= 8 && reply[2] == 0x00 && reply[3] == 0x03;
    if (!answered)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return answered;
}

bool FakeGigeCamera::SetMacAddressLow(uint32_t low)
{
    constexpr uint8_t kMacLowRegister = 0x0C;
    // WRITEREG (0x0082) of one register, acknowledge asked for.
    auto reply = Exchange({0x42, 0x01, 0x00, 0x82, 0x00, 0x08, 0x00, 0x01, 0x00, 0x00, 0x00, kMacLowRegister,
                           uint8_t(low >> 24), uint8_t(low >> 16), uint8_t(low >> 8), uint8_t(low)},
                          1000);
    // Status 0 and a WRITEREG_ACK (0x0083).
    return reply.size() >= 8 && reply[0] == 0 && reply[1] == 0 && reply[3] == 0x83;
}
