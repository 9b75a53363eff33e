#include "settings/IniFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

const char utf8ByteOrderMark[] = "\xEF\xBB\xBF";

bool ReadAll(const std::string& path, std::string& content)
{
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    char buffer[16384];
    for (;;) {
        const ssize_t count = read(fd, buffer, sizeof(buffer));
        if (count == 0) {
            break;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            close(fd);
            return false;
        }
        content.append(buffer, static_cast<std::size_t>(count));
    }
    close(fd);
    return true;
}

// SimpleIni files the keys that follow a header line lacking its "]" under a
// name that runs on into those lines, and every save writes that name back one
// line longer. Such a header is read as naming its section up to the end of
// its line instead.
std::string WithSectionHeadersClosed(std::string text)
{
    std::size_t lineStart = text.compare(0, 3, utf8ByteOrderMark) == 0 ? 3 : 0;
    while (lineStart < text.size()) {
        std::size_t lineEnd = std::min(text.find_first_of("\r\n", lineStart), text.size());
        const std::size_t first = text.find_first_not_of(" \t", lineStart);
        if (first < lineEnd && text[first] == '[' && text.find(']', first) > lineEnd) {
            text.insert(lineEnd, 1, ']');
            ++lineEnd;
        }
        lineStart = lineEnd + 1;
    }
    return text;
}

// The store is marked UTF-8 before loading: once a non-empty file is loaded
// SimpleIni ignores the mode, and only a UTF-8 store gets the byte-order mark
// on save. For char data the mode changes nothing else.
bool Load(const std::string& path, IniFile::Store& store)
{
    store.SetUnicode(true);
    std::string text;
    if (!ReadAll(path, text)) {
        return false;
    }
    return store.LoadData(WithSectionHeadersClosed(std::move(text))) >= 0;
}

} // namespace

namespace IniFile {

bool Read(const std::string& path, const std::function<void(const Store&)>& read)
{
    Store store(false, false, false);
    if (!Load(path, store)) {
        return false;
    }
    read(store);
    return true;
}

bool Update(const std::string& path, const std::function<void(Store&)>& update)
{
    Store store(false, false, false);
    if (!Load(path, store)) {
        return false;
    }
    update(store);
    std::string content;
    if (store.Save(content, true) < 0) {
        return false;
    }
    return Save(path, content);
}

} // namespace IniFile
