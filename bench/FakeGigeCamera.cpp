#include "FakeGigeCamera.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

extern char** environ;

namespace Bench {

namespace {

constexpr const char* kProgram = "arv-fake-gv-camera-0.8";
constexpr const char* kLoopbackAddress = "127.0.0.1";
// The fake camera needs a moment to bind its sockets before it answers discovery.
constexpr auto kStartUpTime = std::chrono::milliseconds(500);

} // namespace

FakeGigeCamera::FakeGigeCamera(const std::string& serial) : m_serial(serial)
{
    std::string program = kProgram;
    std::string interfaceOption = "-i";
    std::string address = kLoopbackAddress;
    std::string serialOption = "-s";
    char* arguments[] = {program.data(), interfaceOption.data(), address.data(), serialOption.data(),
                         m_serial.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    if (posix_spawnp(&m_pid, kProgram, &actions, nullptr, arguments, environ) != 0)
        m_pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    if (m_pid > 0)
        std::this_thread::sleep_for(kStartUpTime);
}

FakeGigeCamera::~FakeGigeCamera()
{
    if (m_pid <= 0)
        return;
    kill(m_pid, SIGTERM);
    int status = 0;
    waitpid(m_pid, &status, 0);
}

std::string RunAndCapture(const std::string& commandLine)
{
    std::string output;
    FILE* pipe = popen((commandLine + " 2>&1").c_str(), "r");
    if (pipe == nullptr)
        return output;
    std::array<char, 4096> chunk {};
    size_t read = 0;
    while ((read = std::fread(chunk.data(), 1, chunk.size(), pipe)) > 0)
        output.append(chunk.data(), read);
    pclose(pipe);
    return output;
}

} // namespace Bench
