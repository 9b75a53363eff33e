// What the INI loader targets share: a private temporary application directory (libraryPath, removed at exit)
// for the files the loaders read and rewrite, and the round trip every input goes through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// (section, key) pairs of an INI file.
using SectionKeys = std::vector<std::pair<std::string, std::string>>;
// Everything the library holds after loading a file.
using HeldValues = std::vector<std::string>;

// The input becomes the named file, which load(its keys, true) loads and saves. An unreadable file must stay as it was;
// otherwise the saved file must read again, keep every key of the library's sections and load(keys, false) the same.
void FuzzIniRoundTrip(const std::string& name, const uint8_t* data, std::size_t size,
                      const std::function<bool(const std::string& section)>& owns,
                      const std::function<HeldValues(const SectionKeys& keys, bool save)>& load);
