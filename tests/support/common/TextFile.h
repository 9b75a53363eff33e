// Whole-file reading and writing for tests that check what landed on disk.
#pragma once

#include <string>
#include <vector>

// The file's bytes, or an empty string when it cannot be read.
std::string ReadTextFile(const std::string& path);
void WriteTextFile(const std::string& path, const std::string& content);
// The file's lines without their line ends.
std::vector<std::string> ReadLines(const std::string& path);
