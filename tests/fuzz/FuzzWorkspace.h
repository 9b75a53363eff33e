// A private temporary directory made the library's application directory
// (libraryPath) for the whole fuzzing run, so the INI files the loaders read
// and rewrite never touch anything else. Removed with its contents at exit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

class FuzzWorkspace {
public:
    FuzzWorkspace();
    ~FuzzWorkspace();
    FuzzWorkspace(const FuzzWorkspace&) = delete;
    FuzzWorkspace& operator=(const FuzzWorkspace&) = delete;

    // Path() + "/" + name.
    std::string File(const std::string& name) const;
    // Replaces the file's contents by the bytes (plain write: the fuzz input itself).
    void Write(const std::string& name, const uint8_t* data, std::size_t size) const;
    std::string Read(const std::string& name) const;

private:
    std::string m_path;
};
