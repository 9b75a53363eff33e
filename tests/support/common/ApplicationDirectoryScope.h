// Points the library's application directory (libraryPath) at a test's own directory for the
// lifetime of the object, then restores the previous one. Create it after any SetUpLogging call,
// which overwrites libraryPath.
#pragma once

#include <cstring>
#include <stdexcept>
#include <string>

#include "log/Log.h"

class ApplicationDirectoryScope {
public:
    explicit ApplicationDirectoryScope(const std::string& directory)
        : m_previous(libraryPath, strnlen(libraryPath, sizeof(libraryPath)))
    {
        Set(directory);
    }
    ~ApplicationDirectoryScope() { Set(m_previous); }
    ApplicationDirectoryScope(const ApplicationDirectoryScope&) = delete;
    ApplicationDirectoryScope& operator=(const ApplicationDirectoryScope&) = delete;

private:
    static void Set(const std::string& directory)
    {
        if (directory.size() >= sizeof(libraryPath)) {
            throw std::length_error("application directory too long: " + directory);
        }
        std::memset(libraryPath, 0, sizeof(libraryPath));
        directory.copy(libraryPath, directory.size());
    }

    std::string m_previous;
};
