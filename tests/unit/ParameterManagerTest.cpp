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

// The settings as the viewer sees them: constructor default and what a file
// without the key gives (paths aside, which depend on the working directory).
struct Expected {
    const char* key;
    const char* constructorDefault;
    const char* missingDefault;
};

const Expected expectedSettings[ParameterManager::SettingCount] = {
    {"ImagePathAuto", "0", "0"},
    {"ImagePath", "./", nullptr},
    {"ImageFileSavePrefix", "PIC", "PIC"},
    {"ImageFileSaveFormat", "0", "2"},
    {"Image2DSaveForamt", "0", "3"},
    {"Image2DSaveQuality", "100", "26"},
    {"Image2DMultiSaveStrategy", "1", "1"},
    {"Image2DMultiSaveIntervalFrameCount", "0", "0"},
    {"Image2DMultiSaveIntervalTime", "1", "1.00"},
    {"Image2DMultiSaveTimeLimitEnable", "1", "1"},
    {"Image2DMultiSaveTimeLimit", "300", "1200.00"},
    {"Image2DMultiSaveLimitNumberEnable", "1", "1"},
    {"Image2DMultiSaveLimitNumber", "1000", "20"},
    {"ImageContourHighFormatEnable", "1", "1"},
    {"ImageContourHighFormat", "0", "3"},
    {"ImageContourBrightnessFormatEnable", "0", "0"},
    {"ImageContourBrightnessFormat", "0", "0"},
    {"Image3DHighFormatEnable", "1", "1"},
    {"Image3DHighFormat", "0", "4"},
    {"Image3DBrightnessFormatEnable", "0", "0"},
    {"Image3DBrightnessFormat", "0", "0"},
    {"ImageSaveCount", "100", "20"},
    {"AcquireBufferCacheCount", "8", "8"},
    {"ImageSaveBufferCacheCount", "8", "8"},
    {"AttributeVisualLevel", "0", "0"},
    {"VideoPathAuto", "", "0"},
    {"VideoPath", "", nullptr},
    {"VideoFileSavePrefix", "", "Video"},
    {"VideoFileSaveFormat", "", "0"},
    {"VideoSaveFormat", "", "0"},
    {"VideoSaveQuality", "", "0"},
    {"VideoRateMode", "", "0"},
    {"VideoRecordRate", "", "1"},
    {"SLImageShowMode", "", "0"},
};

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
    void ExpectMissingDefaults(ParameterManager& settings)
    {
        EXPECT_EQ(1, settings.GetLayoutType());
        EXPECT_EQ("English", settings.GetLanguage());
        for (int which = 0; which < ParameterManager::SettingCount; ++which) {
            if (expectedSettings[which].missingDefault != nullptr) {
                EXPECT_EQ(expectedSettings[which].missingDefault, settings.GetParamterInfo(Setting(which)))
                    << expectedSettings[which].key;
            }
        }
        EXPECT_EQ(WorkingDirectoryFolder("/Pictures"), settings.GetParamterInfo(PARAM_IMAGE_PATH));
        EXPECT_EQ(WorkingDirectoryFolder("/Videos"), settings.GetParamterInfo(PARAM_VIDEO_PATH));
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

TEST(SettingsInMemory, ConstructorDefaultsAreTheTablesFirstColumn)
{
    ParameterManager settings;
    EXPECT_EQ(1, settings.GetLayoutType());
    EXPECT_EQ("English", settings.GetLanguage());
    for (int which = 0; which < ParameterManager::SettingCount; ++which) {
        EXPECT_EQ(expectedSettings[which].constructorDefault, settings.GetParamterInfo(Setting(which)))
            << expectedSettings[which].key;
    }
}

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

TEST_F(SettingsFile, WithoutAFileTheConstructorDefaultsStayAndNoFileIsCreated)
{
    ParameterManager settings;
    settings.loadIniFile();
    EXPECT_EQ("./", settings.GetParamterInfo(PARAM_IMAGE_PATH));
    EXPECT_EQ("", settings.GetParamterInfo(PARAM_VIDEO_PATH));
    settings.SetParamterInfo(PARAM_IMAGE_SAVE_COUNT, "5");
    settings.saveIniFile();
    EXPECT_FALSE(fs::exists(Path()));
}

TEST_F(SettingsFile, EmptyUserSectionGivesTheMissingDefaults)
{
    Install("[User]\n");
    ExpectMissingDefaults(*LoadedSettings());
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
    Install("[user]\nLAYOUT = 4\nimage2dsaveforamt = 9\nlanguage = Italiano\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    EXPECT_EQ(4, settings->GetLayoutType());
    EXPECT_EQ("9", settings->GetParamterInfo(PARAM_IMAGE_2D_SAVE_FORMAT));
    EXPECT_EQ("Italiano", settings->GetLanguage());

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
        EXPECT_EQ("value " + std::to_string(which), after->GetParamterInfo(Setting(which)))
            << expectedSettings[which].key;
    }
}

TEST_F(SettingsFile, SavedFileHasTheMarkTheUserSectionAndTheKeysAsSpelled)
{
    Install("[User]\nLanguage = English\n");
    std::unique_ptr<ParameterManager> settings = LoadedSettings();
    settings->saveIniFile();
    const std::vector<std::string> lines = ReadLines(Path());
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(utf8Bom + "[User]", lines[0]);
    // Existing keys keep their place; new ones follow in the writer's order.
    const std::vector<std::string> expectedStart = {utf8Bom + "[User]", "Language = English", "Layout = 1",
                                                    "ImagePathAuto = 0",
                                                    "ImagePath = " + WorkingDirectoryFolder("/Pictures"),
                                                    "Image2DSaveForamt = 3", "Image2DSaveQuality = 26"};
    EXPECT_EQ(expectedStart, std::vector<std::string>(lines.begin(), lines.begin() + expectedStart.size()));
    // The section line, "Language", "Layout" and the 34 settings.
    EXPECT_EQ(1u + 2u + ParameterManager::SettingCount, lines.size()) << ReadTextFile(Path());
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

TEST_F(SettingsFile, GarbageFilesLoadWithoutHarm)
{
    std::string binary;
    for (int i = 0; i < 4096; ++i) {
        binary += static_cast<char>(i * 7919 % 256);
    }
    std::string huge = "[User]\n";
    for (int i = 0; huge.size() < 8 * 1024 * 1024; ++i) {
        huge += "Filler" + std::to_string(i) + " = " + std::string(40, 'x') + "\n";
    }
    huge += "Image2DSaveQuality = 55\n";
    const char embeddedNull[] = "[User]\nLayout = 9\0\nLanguage = hidden\n";
    const std::vector<std::string> files = {
        "",
        binary,
        std::string(embeddedNull, sizeof(embeddedNull) - 1),
        "[Other]\nLayout = 5\nImage2DSaveQuality = 1\n",
        "[User]\nLayout = 2\nLayout = 3\nImageSaveCount = a\nImageSaveCount = b\n",
        "[User\nLayout 4\n=5\n[]\n= \n[User]]\n",
        huge,
    };
    for (const std::string& content : files) {
        Install(content);
        std::unique_ptr<ParameterManager> settings = LoadedSettings();
        settings->saveIniFile();
        EXPECT_EQ(0u, ReadTextFile(Path()).find(utf8Bom));
    }

    Install("[Other]\nLayout = 5\n");
    ExpectMissingDefaults(*LoadedSettings());

    Install("[User]\nLayout = 2\nLayout = 3\n");
    const int layout = LoadedSettings()->GetLayoutType();
    EXPECT_TRUE(layout == 2 || layout == 3) << layout;

    Install(huge);
    EXPECT_EQ("55", LoadedSettings()->GetParamterInfo(PARAM_IMAGE_2D_SAVE_QUALITY));
}

} // namespace
