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
};

const Level levels[] = {
    {Utilities::LogDebug, "Debug", "DEBUG"},     {Utilities::LogInfo, "Info", "INFO "},
    {Utilities::LogWarning, "Warning", "WARN "}, {Utilities::LogError, "Error", "ERROR"},
    {Utilities::LogDeadly, "Deadly", "FATAL"},
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

const char* const logFile = "Log/ZYLViewerLog.txt";

// time, severity, thread, [function@line], message: one line per record.
std::regex RecordPattern(const std::string& severity = "(DEBUG|INFO |WARN |ERROR|FATAL)",
                         const std::string& text = "source = .*, message = .*")
{
    return std::regex(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )" + severity +
                      R"( \[\d+\] \[void Utilities::Log\w+\(const std::string &, const std::string &, int\)@\d+\] )" +
                      text + "$");
}

// Listeners still hear a record the log file cannot take.
TEST(LogRecords, EachLevelWritesOneVerbatimLineAndNotifiesTheHostOnlyWhenAsked)
{
    HostLogView viewer;
    TempDirectory unusable;
    WriteTextFile(unusable.File("Log"), "a file where the log folder should be");
    Utilities::StartLogFile(unusable.Path(), 20971520);
    Utilities::LogWarning("Cam(3)", "file unavailable", 1);

    TempDirectory directory;
    Utilities::StartLogFile(directory.Path(), 20971520);
    std::vector<std::string> heard = {"Cam(3)|Warning|file unavailable"};
    for (const Level& level : levels) {
        level.log("Cam(1)", "100% of {}", 0);
        level.log("Cam(1)", "100% of {}", 1);
        heard.push_back(std::string("Cam(1)|") + level.word + "|100% of {}");
    }
    EXPECT_EQ(heard, viewer.Lines());
    const std::vector<std::string> lines = ReadLines(directory.File(logFile));
    ASSERT_EQ(10u, lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_TRUE(std::regex_match(
            lines[i], RecordPattern(levels[i / 2].severity, R"(source = Cam\(1\), message = 100% of \{\})")))
            << lines[i];
    }
}

TEST(LogFile, RollsAtTheSizeLimitAndKeepsAtMostTwentyFiles)
{
    TempDirectory directory;
    constexpr std::size_t limit = 1024;
    Utilities::StartLogFile(directory.Path(), limit);
    for (int i = 0; i < 600; ++i) { // about 150 bytes each: well over twenty files' worth
        Utilities::LogDebug("Cam(4)", "frame " + std::to_string(i), 0);
    }

    std::size_t files = 0;
    std::string everything;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory.File("Log"))) {
        ++files;
        EXPECT_LE(entry.file_size(), limit) << entry.path();
        everything += ReadTextFile(entry.path().string());
    }
    EXPECT_EQ(20u, files);
    EXPECT_NE(std::string::npos, ReadTextFile(directory.File(logFile)).find("message = frame 599\n"));
    EXPECT_EQ(std::string::npos, everything.find("message = frame 0\n")) << "the oldest files were removed";
}

// Threads log whole lines while the file is restarted under them; every notification arrives.
TEST(LogConcurrency, ManyThreadsLogWholeLinesWhileTheFileRestarts)
{
    TempDirectory first, second;
    HostLogView viewer;
    constexpr int threadCount = 4;
    constexpr int perThread = 200;
    std::atomic<int> running{threadCount};
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t, &running] {
            for (int i = 0; i < perThread; ++i) {
                levels[i % 5].log("Cam" + std::to_string(t), "record " + std::to_string(i), i % 2);
            }
            --running;
        });
    }
    for (int i = 0; running > 0; ++i) {
        Utilities::StartLogFile(i % 2 == 0 ? first.Path() : second.Path(), 20971520);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::regex record = RecordPattern();
    for (const TempDirectory* directory : {&first, &second}) {
        for (const std::string& line : ReadLines(directory->File(logFile))) {
            ASSERT_TRUE(std::regex_match(line, record)) << line;
        }
    }
    EXPECT_EQ(static_cast<std::size_t>(threadCount * perThread / 2), viewer.Lines().size());
}

} // namespace
