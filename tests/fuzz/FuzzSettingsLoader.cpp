// Arbitrary bytes as "Configuration.ini". Loading and saving never crash; a
// file the loader cannot read is left byte for byte as it was; otherwise the
// rewritten file still holds every key its [User] section had, and every value
// the library keeps reads back as the library holds it.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzExpect.h"
#include "FuzzWorkspace.h"
#include "ViewerBiz3Types.h"
#include "settings/IniFile.h"
#include "settings/ParameterManager.h"

namespace {

constexpr char fileName[] = "Configuration.ini";
constexpr char userSection[] = "User";

// The keys of the [User] section, copied out of the store.
bool UserKeys(const std::string& path, std::vector<std::string>& keys)
{
    return IniFile::Read(path, [&keys](const IniFile::Store& store) {
        IniFile::Store::TNamesDepend names;
        store.GetAllKeys(userSection, names);
        for (const auto& name : names)
            keys.emplace_back(name.pItem);
    });
}

// Everything the library holds after a load.
std::vector<std::string> HeldValues()
{
    std::vector<std::string> values = {std::to_string(m_parameterManager.GetLayoutType()),
                                       m_parameterManager.GetLanguage()};
    for (int which = 0; which < ParameterManager::SettingCount; ++which)
        values.push_back(m_parameterManager.GetParamterInfo(static_cast<ViewerBiz3::PARAMETER_INFO>(which)));
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const FuzzWorkspace workspace;
    workspace.Write(fileName, data, size);
    const std::string path = workspace.File(fileName);
    std::vector<std::string> keysBefore;
    const bool loadable = UserKeys(path, keysBefore);

    m_parameterManager.loadIniFile();
    const std::vector<std::string> held = HeldValues();
    m_parameterManager.saveIniFile();

    if (!loadable) {
        FuzzExpect(workspace.Read(fileName) == std::string(reinterpret_cast<const char*>(data), size),
                   "a file the loader cannot read is left untouched");
        return 0;
    }
    const bool reloaded = IniFile::Read(path, [&keysBefore](const IniFile::Store& store) {
        for (const std::string& key : keysBefore)
            FuzzExpect(store.GetValue(userSection, key.c_str(), nullptr) != nullptr,
                       "every [User] key survives a save");
    });
    FuzzExpect(reloaded, "the saved file can be read again");
    m_parameterManager.loadIniFile();
    FuzzExpect(HeldValues() == held, "loading the saved file gives back every value");
    return 0;
}
