// What the INI loader targets share: a private temporary directory made the library's application
// directory (libraryPath) for the whole run, so the files the loaders read and rewrite never touch
// anything else (removed at exit), and the round trip every input goes through.
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

std::string FileText(const std::string& path);

// The input becomes the named file, which load(its keys, true) loads and saves. A file the loader cannot read must stay
// byte for byte as it was; otherwise the saved file must read again, still hold every key of the sections the library
// owns, and give back through load(keys, false) what the first load held.
void FuzzIniRoundTrip(const std::string& name, const uint8_t* data, std::size_t size,
                      const std::function<bool(const std::string& section)>& owns,
                      const std::function<HeldValues(const SectionKeys& keys, bool save)>& load);
