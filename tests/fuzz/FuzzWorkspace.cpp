#include "FuzzWorkspace.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "FuzzExpect.h"
#include "log/Log.h"

FuzzWorkspace::FuzzWorkspace()
{
    const std::string pattern = (std::filesystem::temp_directory_path() / "vb3-fuzz-XXXXXX").string();
    std::vector<char> path(pattern.begin(), pattern.end());
    path.push_back('\0');
    FuzzExpect(mkdtemp(path.data()) != nullptr, "a private temporary directory can be created");
    m_path = path.data();
    FuzzExpect(m_path.size() < sizeof(libraryPath), "the temporary directory fits the application directory");
    std::memset(libraryPath, 0, sizeof(libraryPath));
    m_path.copy(libraryPath, sizeof(libraryPath) - 1);
}

FuzzWorkspace::~FuzzWorkspace()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string FuzzWorkspace::File(const std::string& name) const
{
    return m_path + "/" + name;
}

void FuzzWorkspace::Write(const std::string& name, const uint8_t* data, std::size_t size) const
{
    std::ofstream file(File(name), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    file.close();
    FuzzExpect(file.good(), "the input file can be written");
}

std::string FuzzWorkspace::Read(const std::string& name) const
{
    std::ifstream file(File(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}
