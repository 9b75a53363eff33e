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
    std::vector<std::string> arguments { kProgram, "-i", m_address, "-s", m_serialNumber };
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

// One GVCP discovery command sent straight to the camera's address.
bool FakeGigeCamera::AnswersDiscovery(int timeoutMs) const
{
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    sockaddr_in camera {};
    camera.sin_family = AF_INET;
    camera.sin_port = htons(kGvcpPort);
    inet_pton(AF_INET, m_address.c_str(), &camera.sin_addr);
    const uint8_t discovery[] = { 0x42, 0x01, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01 };
    bool answered = false;
    if (sendto(fd, discovery, sizeof discovery, 0, reinterpret_cast<sockaddr*>(&camera), sizeof camera) > 0) {
        pollfd waiting { fd, POLLIN, 0 };
        if (poll(&waiting, 1, timeoutMs) > 0) {
            uint8_t reply[512];
            ssize_t size = recv(fd, reply, sizeof reply, 0);
            answered = size >= 8 && reply[2] == 0x00 && reply[3] == 0x03;
        }
    }
    if (!answered)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    close(fd);
    return answered;
}
