// Arbitrary bytes as "Configuration.ini" through the settings loader's round trip; the library owns [User] only.
#include <strings.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzWorkspace.h"
#include "ViewerBiz3Types.h"
#include "settings/ParameterManager.h"

namespace {

HeldValues LoadSettings(const SectionKeys&, bool save)
{
    m_parameterManager.loadIniFile();
    HeldValues values = {std::to_string(m_parameterManager.GetLayoutType()), m_parameterManager.GetLanguage()};
    for (int which = 0; which < ParameterManager::SettingCount; ++which)
        values.push_back(m_parameterManager.GetParamterInfo(static_cast<ViewerBiz3::PARAMETER_INFO>(which)));
    if (save)
        m_parameterManager.saveIniFile();
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    FuzzIniRoundTrip(
        "Configuration.ini", data, size,
        [](const std::string& section) { return strcasecmp(section.c_str(), "User") == 0; }, LoadSettings);
    return 0;
}
