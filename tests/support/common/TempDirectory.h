// A fresh directory under the system's temporary folder, removed with all its
// contents when the object goes away.
#pragma once

#include <string>

class TempDirectory {
public:
    TempDirectory();
    ~TempDirectory();
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    const std::string& Path() const { return m_path; }
    // Path() + "/" + name.
    std::string File(const std::string& name) const;

private:
    std::string m_path;
};
