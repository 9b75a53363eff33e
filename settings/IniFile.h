// Reading and rewriting the library's INI files. Both files are only ever
// rewritten when they already exist, and a rewrite never leaves a half-written
// file behind: the new text goes to a temporary file beside the original,
// which then replaces it in one rename.
#pragma once

#include <functional>
#include <string>

#include <SimpleIni.h>

namespace IniFile {

// Section and key names are matched without regard to case. A section header
// line missing its closing "]" names the section up to the end of its line.
using Store = CSimpleIniTempl<char, SI_GenericNoCase<char>, SI_ConvertA<char>>;

// Loads the file at path and hands the store to read. Returns false, without
// calling read, when the file cannot be loaded.
bool Read(const std::string& path, const std::function<void(const Store&)>& read);

// Loads the existing file at path, lets update change the store, and writes
// the result back atomically with a UTF-8 byte-order mark. Returns false when
// the file cannot be loaded (it is then not created) or cannot be replaced
// (it is then left as it was).
bool Update(const std::string& path, const std::function<void(Store&)>& update);

// Replaces the file at path by content: a temporary file in the same
// directory is written, flushed to disk and renamed over path. On failure the
// temporary file is removed and whatever was at path is left untouched.
bool ReplaceAtomically(const std::string& path, const std::string& content);

} // namespace IniFile
