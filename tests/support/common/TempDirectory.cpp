#include "support/common/TempDirectory.h"

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <vector>

TempDirectory::TempDirectory()
{
    const std::string pattern = (std::filesystem::temp_directory_path() / "vb3-test-XXXXXX").string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary directory from " + pattern);
    }
    m_path = name.data();
}

TempDirectory::~TempDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TempDirectory::File(const std::string& name) const
{
    return m_path + "/" + name;
}
