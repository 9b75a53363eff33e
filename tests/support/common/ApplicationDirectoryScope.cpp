#include "support/common/ApplicationDirectoryScope.h"

#include <cstring>
#include <stdexcept>

#include "log/Log.h"

namespace {

void SetLibraryPath(const std::string& directory)
{
    if (directory.size() >= sizeof(libraryPath)) {
        throw std::length_error("application directory too long: " + directory);
    }
    std::memset(libraryPath, 0, sizeof(libraryPath));
    directory.copy(libraryPath, directory.size());
}

} // namespace

ApplicationDirectoryScope::ApplicationDirectoryScope(const std::string& directory)
    : m_previous(libraryPath, strnlen(libraryPath, sizeof(libraryPath)))
{
    SetLibraryPath(directory);
}

ApplicationDirectoryScope::~ApplicationDirectoryScope()
{
    SetLibraryPath(m_previous);
}
