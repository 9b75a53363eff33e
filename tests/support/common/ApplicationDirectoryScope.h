// Points the library's application directory (libraryPath) at a test's own
// directory for the lifetime of the object, then restores the previous one.
// Create it after any SetUpLogging call, which overwrites libraryPath.
#pragma once

#include <string>

class ApplicationDirectoryScope {
public:
    explicit ApplicationDirectoryScope(const std::string& directory);
    ~ApplicationDirectoryScope();
    ApplicationDirectoryScope(const ApplicationDirectoryScope&) = delete;
    ApplicationDirectoryScope& operator=(const ApplicationDirectoryScope&) = delete;

private:
    std::string m_previous;
};
