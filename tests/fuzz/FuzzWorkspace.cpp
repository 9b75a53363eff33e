#include "FuzzWorkspace.h"

#include <cstdio>

#include "FuzzExpect.h"
#include "log/Log.h"
#include "settings/IniFile.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

namespace {

struct ApplicationDirectory : TempDirectory {
    ApplicationDirectory()
    {
        FuzzExpect(Path().size() < sizeof(libraryPath), "the temporary directory fits the application directory");
        std::snprintf(libraryPath, sizeof(libraryPath), "%s", Path().c_str());
    }
};

} // namespace

void FuzzIniRoundTrip(const std::string& name, const uint8_t* data, std::size_t size,
                      const std::function<bool(const std::string& section)>& owns,
                      const std::function<HeldValues(const SectionKeys& keys, bool save)>& load)
{
    static const ApplicationDirectory directory;
    const std::string path = directory.File(name);
    const std::string input(reinterpret_cast<const char*>(data), size);
    WriteTextFile(path, input);

    SectionKeys keys;
    const bool loadable = IniFile::Read(path, [&keys](const IniFile::Store& store) {
        IniFile::Store::TNamesDepend sections;
        store.GetAllSections(sections);
        for (const auto& section : sections) {
            IniFile::Store::TNamesDepend names;
            store.GetAllKeys(section.pItem, names);
            for (const auto& name : names)
                keys.emplace_back(section.pItem, name.pItem);
        }
    });
    const HeldValues held = load(keys, true);
    if (!loadable) {
        FuzzExpect(ReadTextFile(path) == input, "a file the loader cannot read is left untouched");
        return;
    }
    const bool readable = IniFile::Read(path, [&keys, &owns](const IniFile::Store& store) {
        for (const auto& [section, key] : keys)
            FuzzExpect(!owns(section) || store.GetValue(section.c_str(), key.c_str(), nullptr) != nullptr,
                       "every key of the library's sections survives a save");
    });
    FuzzExpect(readable, "the saved file can be read again");
    FuzzExpect(load(keys, false) == held, "loading the saved file gives back what the library held");
}
