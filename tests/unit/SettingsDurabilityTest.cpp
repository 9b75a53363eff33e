// The settings file survives the process dying in the middle of saving it: a
// child saves Configuration.ini over and over, alternating two contents, and is
// killed at random moments; the file is then always exactly one of the two.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "log/Log.h"
#include "settings/ParameterManager.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/StressRun.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

using namespace ViewerBiz3;

namespace {

constexpr int Iterations = 200;

// Long values make each save take a while, so kills land inside the write as well as
// between saves.
void SetAllParameters(char fill)
{
    for (int key = 0; key <= 33; ++key) {
        m_parameterManager.SetParamterInfo(static_cast<PARAMETER_INFO>(key), std::string(4000, fill));
    }
}

std::string SavedContent(const TempDirectory& directory, char fill)
{
    SetAllParameters(fill);
    m_parameterManager.saveIniFile();
    return ReadTextFile(directory.File("Configuration.ini"));
}

// Starts with the content the file does not hold, so every completed save changes it.
[[noreturn]] void SaveForever(char firstFill)
{
    for (char fill = firstFill;; fill = fill == 'a' ? 'b' : 'a') {
        SetAllParameters(fill);
        m_parameterManager.saveIniFile();
    }
}

std::size_t TemporaryFiles(const TempDirectory& directory)
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory.Path())) {
        if (entry.path().filename().string().rfind("Configuration.ini.", 0) == 0) {
            ++count;
        }
    }
    return count;
}

} // namespace

TEST(SettingsDurability, AKilledSaveLeavesEitherTheOldOrTheNewFile)
{
    TempDirectory directory;
    ApplicationDirectoryScope applicationDirectory(directory.Path());
    WriteTextFile(directory.File("Configuration.ini"), "[User]\n");
    const std::string contentA = SavedContent(directory, 'a');
    const std::string contentB = SavedContent(directory, 'b');
    ASSERT_GT(contentA.size(), 100000u);
    ASSERT_NE(contentA, contentB);

    std::mt19937 random(StressSeed(1123));
    std::uniform_int_distribution<int> killAfterMicroseconds(0, 80000);
    int olds = 0;
    int news = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    int iteration = 0;
    for (; iteration < Iterations && std::chrono::steady_clock::now() < deadline; ++iteration) {
        const std::string before = ReadTextFile(directory.File("Configuration.ini"));
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            SaveForever(before == contentA ? 'b' : 'a');
        }
        std::this_thread::sleep_for(std::chrono::microseconds(killAfterMicroseconds(random)));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(child, waitpid(child, &status, 0));

        const std::string after = ReadTextFile(directory.File("Configuration.ini"));
        ASSERT_TRUE(after == contentA || after == contentB)
            << "iteration " << iteration << ": " << after.size() << " bytes, neither of the two saved contents";
        (after == before ? olds : news) += 1;
    }
    const std::size_t leftovers = TemporaryFiles(directory);
    std::printf("settings durability: %d kills, file intact every time (%d unchanged, %d replaced); "
                "%zu temporary files left beside it\n",
                iteration, olds, news, leftovers);
    EXPECT_GE(iteration, 50);
    EXPECT_LE(leftovers, 1u) << "a save killed in flight may leave its temporary file; no more may pile up";
}
