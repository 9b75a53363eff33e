#include "settings/ParameterManager.h"

#include <unistd.h>

#include <cstdlib>

#include "events/EventManager.h"
#include "log/Log.h"
#include "settings/IniFile.h"

using namespace ViewerBiz3;

ParameterManager m_parameterManager;

namespace {

struct Setting {
    const char* key;
    // Before any file is read, and for good when there is none.
    const char* constructorDefault;
    // What loading stores when the file lacks the key; differs on purpose.
    const char* missingDefault;
};

// Indexed by PARAMETER_INFO.
constexpr Setting settings[ParameterManager::SettingCount] = {
    {"ImagePathAuto", "0", "0"},
    {"ImagePath", "./", "./"},
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
    {"VideoPath", "", "./"},
    {"VideoFileSavePrefix", "", "Video"},
    {"VideoFileSaveFormat", "", "0"},
    {"VideoSaveFormat", "", "0"},
    {"VideoSaveQuality", "", "0"},
    {"VideoRateMode", "", "0"},
    {"VideoRecordRate", "", "1"},
    {"SLImageShowMode", "", "0"},
};

// The order in which keys new to the file are appended to its section.
constexpr PARAMETER_INFO saveOrder[ParameterManager::SettingCount] = {
    PARAM_IMAGE_PATH_AUTO,
    PARAM_IMAGE_PATH,
    PARAM_IMAGE_2D_SAVE_FORMAT,
    PARAM_IMAGE_2D_SAVE_QUALITY,
    PARAM_IMAGE_2D_MULTI_SAVE_STRATEGY,
    PARAM_IMAGE_2D_MULTI_SAVE_INTERVAL_FRAME_COUNT,
    PARAM_IMAGE_2D_MULTI_SAVE_INTERVAL_TIME,
    PARAM_IMAGE_2D_MULTI_SAVE_TIME_LIMIT_ENABLE,
    PARAM_IMAGE_2D_MULTI_SAVE_TIME_LIMIT,
    PARAM_IMAGE_2D_MULTI_SAVE_LIMIT_NUMBER_ENABLE,
    PARAM_IMAGE_2D_MULTI_SAVE_LIMIT_NUMBER,
    PARAM_IMAGE_CONTOUR_HIGH_FORMAT_ENABLE,
    PARAM_IMAGE_CONTOUR_HIGH_FORMAT,
    PARAM_IMAGE_CONTOUR_BRIGHTNESS_FORMAT_ENABLE,
    PARAM_IMAGE_CONTOUR_BRIGHTNESS_FORMAT,
    PARAM_IMAGE_3D_HIGH_FORMAT_ENABLE,
    PARAM_IMAGE_3D_HIGH_FORMAT,
    PARAM_IMAGE_3D_BRIGHTNESS_FORMAT_ENABLE,
    PARAM_IMAGE_3D_BRIGHTNESS_FORMAT,
    PARAM_IMAGE_FILE_SAVE_PREFIX,
    PARAM_IMAGE_FILE_SAVE_FORMAT,
    PARAM_IMAGE_SAVE_COUNT,
    PARAM_ACQUIRE_BUFFER_CACHE_COUNT,
    PARAM_IMAGE_SAVE_BUFFER_CACHE_COUNT,
    PARAM_ATTRIBUTE_VISUAL_LEVEL,
    PARAM_VIDEO_PATH_AUTO,
    PARAM_VIDEO_PATH,
    PARAM_VIDEO_FILE_SAVE_PREFIX,
    PARAM_VIDEO_FILE_SAVE_FORMAT,
    PARAM_VIDEO_SAVE_FORMAT,
    PARAM_VIDEO_SAVE_QUALITY,
    PARAM_VIDEO_RATE_MODE,
    PARAM_VIDEO_RECORD_RATE,
    PARAM_SL_IMAGE_SHOW_MODE,
};

constexpr char userSection[] = "User";
constexpr char layoutKey[] = "Layout";
constexpr char languageKey[] = "Language";
constexpr char defaultLanguage[] = "English";
// The default handed to the reader, so a stored "NULL" also counts as missing.
constexpr char missingValue[] = "NULL";
constexpr char relativePath[] = "./";

std::string SettingsFilePath()
{
    return Utilities::ApplicationDirectory() + "/Configuration.ini";
}

bool IsSetting(PARAMETER_INFO which)
{
    return which >= 0 && which < ParameterManager::SettingCount;
}

std::string ReadValue(const IniFile::Store& store, const char* key, const char* defaultWhenMissing)
{
    const std::string value = store.GetValue(userSection, key, missingValue);
    return value == missingValue ? defaultWhenMissing : value;
}

// A relative "./" path becomes a folder of the working directory.
std::string ResolvedPath(const std::string& path, const char* folder)
{
    if (path != relativePath) {
        return path;
    }
    char workingDirectory[1024] = {};
    if (getcwd(workingDirectory, sizeof(workingDirectory)) == nullptr) {
        workingDirectory[0] = '\0';
    }
    return std::string(workingDirectory) + folder;
}

} // namespace

ParameterManager::ParameterManager() : m_layout(LAYOUT_DEFAULT), m_language(defaultLanguage)
{
    for (int which = 0; which < SettingCount; ++which) {
        m_settings[which] = settings[which].constructorDefault;
    }
}

void ParameterManager::loadIniFile()
{
    IniFile::Read(SettingsFilePath(), [this](const IniFile::Store& store) {
        const int layout = std::atoi(store.GetValue(userSection, layoutKey, missingValue));
        std::lock_guard<std::mutex> lock(m_mutex);
        m_layout = layout == 0 ? LAYOUT_DEFAULT : layout;
        m_language = ReadValue(store, languageKey, defaultLanguage);
        for (int which = 0; which < SettingCount; ++which) {
            m_settings[which] = ReadValue(store, settings[which].key, settings[which].missingDefault);
        }
        m_settings[PARAM_IMAGE_PATH] = ResolvedPath(m_settings[PARAM_IMAGE_PATH], "/Pictures");
        m_settings[PARAM_VIDEO_PATH] = ResolvedPath(m_settings[PARAM_VIDEO_PATH], "/Videos");
    });
}

void ParameterManager::saveIniFile()
{
    IniFile::Update(SettingsFilePath(), [this](IniFile::Store& store) {
        std::lock_guard<std::mutex> lock(m_mutex);
        store.SetValue(userSection, layoutKey, std::to_string(m_layout).c_str());
        store.SetValue(userSection, languageKey, m_language.c_str());
        for (PARAMETER_INFO which : saveOrder) {
            store.SetValue(userSection, settings[which].key, m_settings[which].c_str());
        }
    });
}

int ParameterManager::SetParamterInfo(PARAMETER_INFO which, std::string value)
{
    if (!IsSetting(which)) {
        return -1;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_settings[which] = std::move(value);
    return 0;
}

std::string ParameterManager::GetParamterInfo(PARAMETER_INFO which)
{
    if (!IsSetting(which)) {
        return {};
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_settings[which];
}

void ParameterManager::SetLayoutType(LAYOUT_TYPE layout)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_layout = layout;
    }
    m_event.NotifyLayoutUpdateListener(layout);
}

LAYOUT_TYPE ParameterManager::GetLayoutType()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<LAYOUT_TYPE>(m_layout);
}

void ParameterManager::SetLanguage(std::string language)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_language = language;
    }
    m_event.NotifyLangUpdateListener(language);
}

std::string ParameterManager::GetLanguage()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_language;
}
