#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "settings/ParameterManager.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/FileSizeLimit.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

using namespace ViewerBiz3;

namespace {

namespace fs = std::filesystem;

PARAMETER_INFO Setting(int which)
{
    return static_cast<PARAMETER_INFO>(which);
}

// A viewer installation: its own application directory, optionally with a "Configuration.ini" of the given content.
class SettingsFile : public ::testing::Test {
protected:
    std::string Path() const { return m_directory.File("Configuration.ini"); }
    void Install(const std::string& content) { WriteTextFile(Path(), content); }
    std::unique_ptr<ParameterManager> LoadedSettings()
    {
        auto settings = std::make_unique<ParameterManager>();
        settings->loadIniFile();
        return settings;
    }

    TempDirectory m_directory;
    ApplicationDirectoryScope m_applicationDirectory{m_directory.Path()};
};

TEST_F(SettingsFile, LayoutOfZeroOrTextLoadsAsOneButNegativeValuesStay)
{
    for (const auto& [stored, loaded] : std::vector<std::pair<std::string, int>>{
             {"0", 1}, {"abc", 1}, {"NULL", 1}, {"", 1}, {"-2", -2}, {"12", 12}, {"7x", 7}}) {
        Install("[User]\nLayout = " + stored + "\n");
        EXPECT_EQ(loaded, LoadedSettings()->GetLayoutType()) << stored;
    }
    Install("[Other]\nLayout = 5\n");
    EXPECT_EQ(1, LoadedSettings()->GetLayoutType()) << "only the user section counts";
    Install("\xEF\xBB\xBF[User\r\nLayout = 3\r\n");
    EXPECT_EQ(3, LoadedSettings()->GetLayoutType()) << "found by the fuzzer: a header without its ']' still counts";
}

TEST_F(SettingsFile, RelativePathsBecomeFoldersOfTheWorkingDirectory)
{
    Install("[User]\nImagePath = ./\nVideoPath = ./clips\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    EXPECT_EQ(fs::current_path().string() + "/Pictures", settings->GetParamterInfo(PARAM_IMAGE_PATH));
    EXPECT_EQ("./clips", settings->GetParamterInfo(PARAM_VIDEO_PATH));
}

TEST_F(SettingsFile, KeysAndSectionAreFoundWhateverTheirCase)
{
    Install("[user]\nLAYOUT = 4\nimage2dsaveforamt = 9\nlanguage = Deutsch\nLanguage = Italiano\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    EXPECT_EQ(4, settings->GetLayoutType());
    EXPECT_EQ("9", settings->GetParamterInfo(PARAM_IMAGE_2D_SAVE_FORMAT));
    EXPECT_EQ("Italiano", settings->GetLanguage()) << "a key given twice counts as its last line";

    // Saving updates the existing keys rather than adding a second spelling.
    settings->SetLayoutType(static_cast<LAYOUT_TYPE>(5));
    settings->saveIniFile();
    const std::string content = ReadTextFile(Path());
    EXPECT_NE(std::string::npos, content.find("LAYOUT = 5\n"));
    EXPECT_EQ(std::string::npos, content.find("\nLayout ="));
}

TEST_F(SettingsFile, EverySettingSurvivesASaveAndLoadAndNoneOutsideTheRangeIsTaken)
{
    Install(""); // saving updates an existing file only
    ParameterManager before;
    EXPECT_EQ(-1, before.SetParamterInfo(Setting(ParameterManager::SettingCount), "x"));
    EXPECT_EQ(-1, before.SetParamterInfo(Setting(-1), "x"));
    EXPECT_EQ("", before.GetParamterInfo(Setting(ParameterManager::SettingCount)));
    before.SetLayoutType(static_cast<LAYOUT_TYPE>(7));
    before.SetLanguage("Deutsch");
    for (int which = 0; which < ParameterManager::SettingCount; ++which) {
        before.SetParamterInfo(Setting(which), "value " + std::to_string(which));
    }
    before.saveIniFile();

    std::unique_ptr<ParameterManager> after = LoadedSettings();
    EXPECT_EQ(7, after->GetLayoutType());
    EXPECT_EQ("Deutsch", after->GetLanguage());
    for (int which = 0; which < ParameterManager::SettingCount; ++which) {
        EXPECT_EQ("value " + std::to_string(which), after->GetParamterInfo(Setting(which))) << which;
    }
}

// Saving rewrites the file whole: what the library does not own stays, the UTF-8 mark is added
// once, and no temporary file is left beside it.
TEST_F(SettingsFile, SavingKeepsForeignSectionsAndKeys)
{
    Install("; installed with the viewer\n\n[Window]\nWidth = 1920\n\n[User]\nCustomKey = kept\nLayout = 2\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    settings->SetLayoutType(static_cast<LAYOUT_TYPE>(3));
    settings->saveIniFile();
    settings->saveIniFile();
    const std::string content = ReadTextFile(Path());
    EXPECT_EQ(0u, content.find("\xEF\xBB\xBF; installed with the viewer\n"));
    EXPECT_EQ(std::string::npos, content.find("\xEF\xBB\xBF", 1));
    EXPECT_NE(std::string::npos, content.find("[Window]\nWidth = 1920\n"));
    EXPECT_NE(std::string::npos, content.find("[User]\nCustomKey = kept\nLayout = 3\n"));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(m_directory.Path()), fs::directory_iterator()));
}

// The one check of atomic saving at this layer: a write that fails half-way leaves the old file.
TEST_F(SettingsFile, FullDiskDuringSaveLeavesTheInstalledFileWhole)
{
    const std::string installed = "[User]\nLayout = 2\n";
    Install(installed);
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    settings->SetLayoutType(static_cast<LAYOUT_TYPE>(6));
    {
        FileSizeLimit fullDisk(64);
        settings->saveIniFile();
    }
    EXPECT_EQ(installed, ReadTextFile(Path()));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(m_directory.Path()), fs::directory_iterator()));
}

} // namespace
