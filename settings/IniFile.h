// Reading and rewriting the library's INI files. Both files are only ever
// rewritten when they already exist. Where the folder lets us, a rewrite never
// leaves a half-written file behind: the new text goes to a temporary file
// beside the original, which then replaces it in one rename. Where only the
// file is writable (an application installed in a folder its user may not
// change) the file is rewritten in place instead.
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

// Loads the existing file at path, lets update change the store, and saves
// the result with a UTF-8 byte-order mark. Returns false when the file cannot
// be loaded (it is then not created) or cannot be saved.
bool Update(const std::string& path, const std::function<void(Store&)>& update);

// Writes content to the existing file at path: replaced atomically where the
// folder allows it with the file's owner, group and mode kept, else rewritten
// in place. When neither works the error is logged with the path and the
// system's reason, and false returned.
bool Save(const std::string& path, const std::string& content);

// Replaces the file at path by content: a temporary file in the same
// directory is written, flushed to disk and renamed over path. On failure
// nothing is left behind and whatever was at path is left untouched.
bool ReplaceAtomically(const std::string& path, const std::string& content);

} // namespace IniFile
