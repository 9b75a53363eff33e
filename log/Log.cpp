#include "log/Log.h"

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <memory>

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include "events/EventManager.h"

char libraryPath[1024];

namespace {

// What one level function puts into its records and sends to listeners. The
// function text and line numbers are part of the log format the viewer's
// support staff know, so they are fixed rather than taken from this file.
struct LevelRecord {
    spdlog::level::level_enum severity;
    const char* severityText;
    const char* word;
    const char* function;
    int quietLine;
    int notifyingLine;
};

constexpr LevelRecord debugLevel{spdlog::level::debug,
                                 "DEBUG",
                                 "Debug",
                                 "void Utilities::LogDebug(const std::string &, const std::string &, int)",
                                 742,
                                 746};
constexpr LevelRecord infoLevel{spdlog::level::info,
                                "INFO ",
                                "Info",
                                "void Utilities::LogInfo(const std::string &, const std::string &, int)",
                                755,
                                759};
constexpr LevelRecord warningLevel{spdlog::level::warn,
                                   "WARN ",
                                   "Warning",
                                   "void Utilities::LogWarning(const std::string &, const std::string &, int)",
                                   768,
                                   772};
constexpr LevelRecord errorLevel{spdlog::level::err,
                                 "ERROR",
                                 "Error",
                                 "void Utilities::LogError(const std::string &, const std::string &, int)",
                                 781,
                                 785};
constexpr LevelRecord deadlyLevel{spdlog::level::critical,
                                  "FATAL",
                                  "Deadly",
                                  "void Utilities::LogDeadly(const std::string &, const std::string &, int)",
                                  794,
                                  798};

constexpr std::size_t olderLogFiles = 19; // plus the current file: 20 at most
constexpr char logPattern[] = "%Y-%m-%d %H:%M:%S.%e %* [%t] [%!@%#] %v";

// Null until the file is set up; swapped atomically so that any thread may
// log while set-up runs.
std::shared_ptr<spdlog::logger> fileLogger;

// Writes the severity as fixed-width upper-case words (DEBUG ... FATAL) so
// that "Deadly" records read as fatal rather than spdlog's "critical".
class SeverityFlag : public spdlog::custom_flag_formatter {
public:
    void format(const spdlog::details::log_msg& msg, const std::tm&, spdlog::memory_buf_t& dest) override
    {
        const char* text = SeverityText(msg.level);
        dest.append(text, text + std::strlen(text));
    }

    std::unique_ptr<custom_flag_formatter> clone() const override { return std::make_unique<SeverityFlag>(); }

private:
    static const char* SeverityText(spdlog::level::level_enum severity)
    {
        for (const LevelRecord* level : {&debugLevel, &infoLevel, &warningLevel, &errorLevel, &deadlyLevel}) {
            if (level->severity == severity) {
                return level->severityText;
            }
        }
        return "NONE ";
    }
};

std::string ExecutableDirectory()
{
    char path[sizeof(libraryPath)] = {};
    const ssize_t length = readlink("/proc/self/exe", path, sizeof(path));
    if (length > 0 && static_cast<std::size_t>(length) < sizeof(path)) {
        const std::string executable(path, static_cast<std::size_t>(length));
        const std::size_t slash = executable.rfind('/');
        if (slash != std::string::npos) {
            return executable.substr(0, slash);
        }
    }
    char workingDirectory[sizeof(libraryPath)] = {};
    if (getcwd(workingDirectory, sizeof(workingDirectory)) != nullptr) {
        return workingDirectory;
    }
    return {};
}

std::shared_ptr<spdlog::logger> CreateFileLogger(const std::string& directory, std::size_t maxFileBytes)
{
    std::error_code ignored;
    std::filesystem::create_directories(directory + "/Log", ignored);
    auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(directory + "/Log/ZYLViewerLog.txt",
                                                                       maxFileBytes, olderLogFiles);
    // Kept out of spdlog's registry, so setting up again never meets a taken name.
    auto logger = std::make_shared<spdlog::logger>("ViewerBiz3", std::move(sink));
    auto formatter = std::make_unique<spdlog::pattern_formatter>();
    formatter->add_flag<SeverityFlag>('*').set_pattern(logPattern);
    logger->set_formatter(std::move(formatter));
    logger->set_level(spdlog::level::debug);
    // Every record reaches the file at once, so nothing is lost if the host dies.
    logger->flush_on(spdlog::level::debug);
    // A file that cannot be written drops its records silently.
    logger->set_error_handler([](const std::string&) {});
    return logger;
}

void Log(const LevelRecord& level, const std::string& source, const std::string& message, int notify)
{
    const std::shared_ptr<spdlog::logger> logger = std::atomic_load(&fileLogger);
    if (logger && logger->should_log(level.severity)) {
        const std::string record = "source = " + source + ", message = " + message;
        const int line = notify != 0 ? level.notifyingLine : level.quietLine;
        logger->log(spdlog::source_loc{__FILE__, line, level.function}, level.severity, spdlog::string_view_t(record));
    }
    if (notify != 0) {
        m_event.NotifyLoggerUpdateListener(source, level.word, message);
    }
}

} // namespace

namespace Utilities {

void LogDebug(const std::string& source, const std::string& message, int notify)
{
    Log(debugLevel, source, message, notify);
}

void LogInfo(const std::string& source, const std::string& message, int notify)
{
    Log(infoLevel, source, message, notify);
}

void LogWarning(const std::string& source, const std::string& message, int notify)
{
    Log(warningLevel, source, message, notify);
}

void LogError(const std::string& source, const std::string& message, int notify)
{
    Log(errorLevel, source, message, notify);
}

void LogDeadly(const std::string& source, const std::string& message, int notify)
{
    Log(deadlyLevel, source, message, notify);
}

void SetUpLogging(std::size_t maxFileBytes)
{
    const std::string directory = ExecutableDirectory();
    std::memset(libraryPath, 0, sizeof(libraryPath));
    directory.copy(libraryPath, sizeof(libraryPath) - 1);
    StartLogFile(directory, maxFileBytes);
}

void StartLogFile(const std::string& directory, std::size_t maxFileBytes)
{
    std::shared_ptr<spdlog::logger> logger;
    try {
        logger = CreateFileLogger(directory, maxFileBytes);
    } catch (const std::exception&) {
        // The log file cannot be opened: records are dropped, listeners still hear them.
    }
    std::atomic_store(&fileLogger, logger);
}

std::string ApplicationDirectory()
{
    if (libraryPath[0] != '\0') {
        return std::string(libraryPath, strnlen(libraryPath, sizeof(libraryPath)));
    }
    return ExecutableDirectory();
}

} // namespace Utilities
