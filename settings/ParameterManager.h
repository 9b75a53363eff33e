// The host viewer's preferences kept in "Configuration.ini" (layout, language
// and 34 opaque settings) and the profile cameras' own settings kept in
// "CameraParameters.ini". Both files live in the application directory.
#pragma once

#include <array>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3Types.h"

class ParameterManager {
public:
    static constexpr int SettingCount = 34;

    ParameterManager();

    // Reads "Configuration.ini"; a missing or unreadable file keeps every value.
    void loadIniFile();
    // Writes every value into "Configuration.ini" if it exists; never creates it.
    void saveIniFile();

    // -1 (and nothing changed) for a value outside 0-33.
    int SetParamterInfo(ViewerBiz3::PARAMETER_INFO which, std::string value);
    // An empty string for a value outside 0-33.
    std::string GetParamterInfo(ViewerBiz3::PARAMETER_INFO which);

    // Both setters notify their listeners with the new value.
    void SetLayoutType(ViewerBiz3::LAYOUT_TYPE layout);
    ViewerBiz3::LAYOUT_TYPE GetLayoutType();
    void SetLanguage(std::string language);
    std::string GetLanguage();

    // The six settings of a profile camera, by the camera field they fill; kept
    // in "CameraParameters.ini", one section per camera key.
    using CameraParameters = std::map<ViewerBiz3::CAM_INFO, std::string>;
    static std::vector<ViewerBiz3::CAM_INFO> CameraParameterFields();
    // The values stored for the camera; a missing key (or one reading "NULL") is left out.
    CameraParameters loadCameraParameters(const std::string& cameraKey);
    // Writes every field; one missing from the values is written empty.
    void saveCameraParameters(const std::string& cameraKey, const CameraParameters& values);

private:
    // Guards the fields only; never held while listeners run.
    std::mutex m_mutex;
    int m_layout;
    std::string m_language;
    std::array<std::string, SettingCount> m_settings;
};

extern ParameterManager m_parameterManager;
