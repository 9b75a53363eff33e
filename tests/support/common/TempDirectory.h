// A fresh directory under the system's temporary folder, removed with its contents with the object.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

class TempDirectory {
public:
    TempDirectory() : m_path((std::filesystem::temp_directory_path() / "vb3-test-XXXXXX").string())
    {
        if (mkdtemp(m_path.data()) == nullptr) {
            throw std::runtime_error("cannot create a temporary directory from " + m_path);
        }
    }
    ~TempDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    const std::string& Path() const { return m_path; }
    std::string File(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};
