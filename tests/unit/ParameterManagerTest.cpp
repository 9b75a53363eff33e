#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "events/EventManager.h"
#include "settings/ParameterManager.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/FileSizeLimit.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

using namespace ViewerBiz3;

namespace {

namespace fs = std::filesystem;

const std::string utf8Bom = "\xEF\xBB\xBF";

PARAMETER_INFO Setting(int which)
{
    return static_cast<PARAMETER_INFO>(which);
}

std::string WorkingDirectoryFolder(const std::string& folder)
{
    return fs::current_path().string() + folder;
}

// A viewer installation: its own application directory, optionally with a
// "Configuration.ini" of the given content.
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

class LayoutAndLanguageListener : public ILayoutUpdate, public ILangUpdate {
public:
    LayoutAndLanguageListener()
    {
        m_event.RegisterLayoutUpdateListener(this);
        m_event.RegisterLangUpdateListener(this);
    }
    ~LayoutAndLanguageListener() override
    {
        m_event.UnRegisterLayoutUpdateListener(this);
        m_event.UnRegisterLangUpdateListener(this);
    }
    void OnLayoutUpdate(LAYOUT_TYPE layout) override { heard.push_back("layout " + std::to_string(layout)); }
    void OnLangUpdate(std::string language) override { heard.push_back("language " + language); }

    std::vector<std::string> heard;
};

TEST(SettingsInMemory, ValuesOutsideTheSettingRangeAreRefused)
{
    ParameterManager settings;
    EXPECT_EQ(-1, settings.SetParamterInfo(Setting(34), "x"));
    EXPECT_EQ(-1, settings.SetParamterInfo(Setting(-1), "x"));
    EXPECT_EQ("", settings.GetParamterInfo(Setting(34)));
    EXPECT_EQ("", settings.GetParamterInfo(Setting(-1)));
    EXPECT_EQ(0, settings.SetParamterInfo(PARAM_SL_IMAGE_SHOW_MODE, "not validated"));
    EXPECT_EQ("not validated", settings.GetParamterInfo(PARAM_SL_IMAGE_SHOW_MODE));
}

TEST(SettingsInMemory, LayoutAndLanguageChangesAreAnnouncedToTheHost)
{
    LayoutAndLanguageListener host;
    ParameterManager settings;
    settings.SetLayoutType(static_cast<LAYOUT_TYPE>(4));
    settings.SetLanguage("Deutsch");
    EXPECT_EQ(4, settings.GetLayoutType());
    EXPECT_EQ("Deutsch", settings.GetLanguage());
    EXPECT_EQ((std::vector<std::string>{"layout 4", "language Deutsch"}), host.heard);
}

TEST_F(SettingsFile, LoadingAnnouncesNothing)
{
    Install("[User]\nLayout = 3\nLanguage = Deutsch\n");
    LayoutAndLanguageListener host;
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    EXPECT_EQ(3, settings->GetLayoutType());
    EXPECT_TRUE(host.heard.empty());
}

TEST_F(SettingsFile, LayoutOfZeroOrTextLoadsAsOneButNegativeValuesStay)
{
    for (const auto& [stored, loaded] : std::vector<std::pair<std::string, int>>{
             {"0", 1}, {"abc", 1}, {"NULL", 1}, {"", 1}, {"-2", -2}, {"12", 12}, {"7x", 7}}) {
        Install("[User]\nLayout = " + stored + "\n");
        EXPECT_EQ(loaded, LoadedSettings()->GetLayoutType()) << stored;
    }
}

TEST_F(SettingsFile, RelativePathsBecomeFoldersOfTheWorkingDirectory)
{
    Install("[User]\nImagePath = ./\nVideoPath = ./\n");
    std::unique_ptr<ParameterManager> relative = LoadedSettings();
    EXPECT_EQ(WorkingDirectoryFolder("/Pictures"), relative->GetParamterInfo(PARAM_IMAGE_PATH));
    EXPECT_EQ(WorkingDirectoryFolder("/Videos"), relative->GetParamterInfo(PARAM_VIDEO_PATH));

    Install("[User]\nImagePath = /tmp/x\nVideoPath = ./clips\n");
    std::unique_ptr<ParameterManager> absolute = LoadedSettings();
    EXPECT_EQ("/tmp/x", absolute->GetParamterInfo(PARAM_IMAGE_PATH));
    EXPECT_EQ("./clips", absolute->GetParamterInfo(PARAM_VIDEO_PATH));
}

TEST_F(SettingsFile, StoredNullMeansMissing)
{
    Install("[User]\nImage2DSaveQuality = NULL\nLanguage = NULL\nVideoFileSavePrefix = NULL\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    EXPECT_EQ("26", settings->GetParamterInfo(PARAM_IMAGE_2D_SAVE_QUALITY));
    EXPECT_EQ("English", settings->GetLanguage());
    EXPECT_EQ("Video", settings->GetParamterInfo(PARAM_VIDEO_FILE_SAVE_PREFIX));
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

TEST_F(SettingsFile, EverySettingSurvivesASaveAndLoad)
{
    Install("");
    ParameterManager before;
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

TEST_F(SettingsFile, SavingKeepsForeignSectionsAndKeys)
{
    Install("; installed with the viewer\n\n[Window]\nWidth = 1920\n\n[User]\nCustomKey = kept\nLayout = 2\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    settings->SetLayoutType(static_cast<LAYOUT_TYPE>(3));
    settings->saveIniFile();
    const std::string content = ReadTextFile(Path());
    EXPECT_EQ(0u, content.find(utf8Bom + "; installed with the viewer\n"));
    EXPECT_NE(std::string::npos, content.find("[Window]\nWidth = 1920\n"));
    EXPECT_NE(std::string::npos, content.find("[User]\nCustomKey = kept\nLayout = 3\n"));
}

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

// Garbage of every kind is the fuzz target's work; here what a fuzzer cannot
// reach: a huge file, and keys outside the user section or written twice.
TEST_F(SettingsFile, HugeAndOddFilesLoadWithoutHarm)
{
    std::string huge = "[User]\n";
    for (int i = 0; huge.size() < 8 * 1024 * 1024; ++i) {
        huge += "Filler" + std::to_string(i) + " = " + std::string(40, 'x') + "\n";
    }
    Install(huge + "Image2DSaveQuality = 55\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    EXPECT_EQ("55", settings->GetParamterInfo(PARAM_IMAGE_2D_SAVE_QUALITY));
    settings->saveIniFile();
    EXPECT_EQ(0u, ReadTextFile(Path()).find(utf8Bom));

    Install("[Other]\nLayout = 5\n");
    EXPECT_EQ(1, LoadedSettings()->GetLayoutType());
    Install("[User]\nLayout = 2\nLayout = 3\n");
    const int layout = LoadedSettings()->GetLayoutType();
    EXPECT_TRUE(layout == 2 || layout == 3) << layout;
}

} // namespace
