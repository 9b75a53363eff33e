#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "events/EventManager.h"
#include "log/Log.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

namespace {

namespace fs = std::filesystem;
using LevelFunction = void (*)(const std::string&, const std::string&, int);

struct Level {
    LevelFunction log;
    const char* word;
    const char* severity;
    const char* function;
    int quietLine;
    int notifyingLine;
};

const Level levels[] = {
    {Utilities::LogDebug, "Debug", "DEBUG", "LogDebug", 742, 746},
    {Utilities::LogInfo, "Info", "INFO", "LogInfo", 755, 759},
    {Utilities::LogWarning, "Warning", "WARN", "LogWarning", 768, 772},
    {Utilities::LogError, "Error", "ERROR", "LogError", 781, 785},
    {Utilities::LogDeadly, "Deadly", "FATAL", "LogDeadly", 794, 798},
};

// What the host's logger listener saw; callbacks may come from any thread.
class HostLogView : public ViewerBiz3::ILoggerUpdate {
public:
    HostLogView() { m_event.RegisterLoggerUpdateListener(this); }
    ~HostLogView() override { m_event.UnRegisterLoggerUpdateListener(this); }

    void OnLoggerUpdate(std::string source, std::string level, std::string message) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_lines.push_back(source + "|" + level + "|" + message);
    }
    std::vector<std::string> Lines()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

std::string LogFile(const std::string& directory)
{
    return directory + "/Log/ZYLViewerLog.txt";
}

// time, severity, thread, [function@line], message: one line per record.
std::regex RecordPattern(const std::string& severity, const std::string& function, int line, const std::string& text)
{
    return std::regex(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )" + severity + R"( *\[\d+\] \[void Utilities::)" +
                      function + R"(\(const std::string &, const std::string &, int\)@)" + std::to_string(line) +
                      R"(\] )" + text + "$");
}

std::regex AnyRecordPattern()
{
    return std::regex(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} (DEBUG|INFO |WARN |ERROR|FATAL) \[\d+\] )"
                      R"(\[void Utilities::Log\w+\(const std::string &, const std::string &, int\)@\d+\] )"
                      R"(source = .*, message = .*$)");
}

TEST(LogRecords, EachLevelWritesOneLineWithItsSeverityFunctionAndLine)
{
    TempDirectory directory;
    Utilities::StartLogFile(directory.Path(), 20971520);
    for (const Level& level : levels) {
        level.log("Cam(1)", std::string("quiet ") + level.word, 0);
        level.log("Cam(1)", std::string("loud ") + level.word, 1);
    }
    const std::vector<std::string> lines = ReadLines(LogFile(directory.Path()));
    ASSERT_EQ(10u, lines.size());
    for (std::size_t i = 0; i < 5; ++i) {
        const Level& level = levels[i];
        EXPECT_TRUE(std::regex_match(lines[2 * i],
                                     RecordPattern(level.severity, level.function, level.quietLine,
                                                   std::string("source = Cam\\(1\\), message = quiet ") + level.word)))
            << lines[2 * i];
        EXPECT_TRUE(std::regex_match(lines[2 * i + 1],
                                     RecordPattern(level.severity, level.function, level.notifyingLine,
                                                   std::string("source = Cam\\(1\\), message = loud ") + level.word)))
            << lines[2 * i + 1];
    }
}

TEST(LogRecords, MessagesAreWrittenVerbatimEvenWithFormatCharacters)
{
    TempDirectory directory;
    Utilities::StartLogFile(directory.Path(), 20971520);
    Utilities::LogInfo("{0}", "100% of {} frames", 0);
    const std::vector<std::string> lines = ReadLines(LogFile(directory.Path()));
    ASSERT_EQ(1u, lines.size());
    EXPECT_NE(std::string::npos, lines[0].find("] source = {0}, message = 100% of {} frames"));
}

TEST(LogForwarding, ListenersHearLogsBeforeTheFileIsSetUpAndWhenItCannotBeOpened)
{
    HostLogView viewer;
    Utilities::LogError("Cam(3)", "before set-up", 1);

    TempDirectory directory;
    WriteTextFile(directory.File("Log"), "a file where the log folder should be");
    Utilities::StartLogFile(directory.Path(), 20971520);
    Utilities::LogWarning("Cam(3)", "file unavailable", 1);

    EXPECT_EQ((std::vector<std::string>{"Cam(3)|Error|before set-up", "Cam(3)|Warning|file unavailable"}),
              viewer.Lines());
}

TEST(LogFile, RollsAtTheSizeLimitAndKeepsAtMostTwentyFiles)
{
    TempDirectory directory;
    constexpr std::size_t limit = 1024;
    Utilities::StartLogFile(directory.Path(), limit);
    constexpr int records = 600; // about 150 bytes each: well over twenty files' worth
    for (int i = 0; i < records; ++i) {
        Utilities::LogDebug("Cam(4)", "frame " + std::to_string(i), 0);
    }

    std::vector<std::string> files;
    std::string everything;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory.File("Log"))) {
        files.push_back(entry.path().filename().string());
        EXPECT_LE(entry.file_size(), limit) << entry.path();
        everything += ReadTextFile(entry.path().string());
    }
    EXPECT_EQ(20u, files.size());
    const std::vector<std::string> current = ReadLines(LogFile(directory.Path()));
    ASSERT_FALSE(current.empty());
    EXPECT_NE(std::string::npos, current.back().find("message = frame 599"));
    // The oldest files were removed.
    EXPECT_EQ(std::string::npos, everything.find("message = frame 0\n"));
}

TEST(LogConcurrency, ManyThreadsLogWholeLinesAndEveryNotificationArrives)
{
    TempDirectory directory;
    Utilities::StartLogFile(directory.Path(), 20971520);
    HostLogView viewer;
    constexpr int threadCount = 8;
    constexpr int perThread = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < perThread; ++i) {
                levels[i % 5].log("Cam" + std::to_string(t), "record " + std::to_string(i), i % 2);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::vector<std::string> lines = ReadLines(LogFile(directory.Path()));
    ASSERT_EQ(static_cast<std::size_t>(threadCount * perThread), lines.size());
    const std::regex record = AnyRecordPattern();
    for (const std::string& line : lines) {
        ASSERT_TRUE(std::regex_match(line, record)) << line;
    }
    EXPECT_EQ(static_cast<std::size_t>(threadCount * perThread / 2), viewer.Lines().size());
}

TEST(LogConcurrency, RestartingTheFileWhileOtherThreadsLogIsSafe)
{
    TempDirectory first;
    TempDirectory second;
    std::atomic<bool> running{true};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&running] {
            while (running) {
                Utilities::LogInfo("Cam", "while restarting", 0);
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        Utilities::StartLogFile(i % 2 == 0 ? first.Path() : second.Path(), 20971520);
    }
    running = false;
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::regex record = AnyRecordPattern();
    for (const TempDirectory* directory : {&first, &second}) {
        for (const std::string& line : ReadLines(LogFile(directory->Path()))) {
            ASSERT_TRUE(std::regex_match(line, record)) << line;
        }
    }
}

} // namespace
