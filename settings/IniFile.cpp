#include "settings/IniFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>
#include <vector>

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

bool WriteAll(int fd, const std::string& content)
{
    const char* data = content.data();
    std::size_t remaining = content.size();
    while (remaining > 0) {
        const ssize_t written = write(fd, data, remaining);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        remaining -= static_cast<std::size_t>(written);
    }
    return true;
}

// The replacement keeps the permissions of the file it replaces (mkstemp
// creates it private to the owner).
void CopyPermissions(const std::string& from, int toFd)
{
    struct stat original {};
    if (stat(from.c_str(), &original) == 0) {
        fchmod(toFd, original.st_mode & 07777);
    }
}

std::string DirectoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
}

// A save killed before its rename leaves its temporary file behind. Every writer holds an
// exclusive lock on its temporary file until the rename, so one that nobody holds belongs to
// a writer that died: it is removed before the next save instead of piling up.
void RemoveAbandonedTemporaries(const std::string& target)
{
    const std::size_t slash = target.rfind('/');
    const std::string directory = DirectoryOf(target);
    const std::string prefix = target.substr(slash == std::string::npos ? 0 : slash + 1) + ".tmp.";
    DIR* listing = opendir(directory.c_str());
    if (listing == nullptr) {
        return;
    }
    while (const dirent* entry = readdir(listing)) {
        const std::string name = entry->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0) {
            continue;
        }
        const std::string abandoned = directory + "/" + name;
        const int fd = open(abandoned.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (fd < 0) {
            continue;
        }
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) {
            unlink(abandoned.c_str());
        }
        close(fd);
    }
    closedir(listing);
}

// Makes the rename itself durable, not only the new file's contents.
void SyncDirectoryOf(const std::string& path)
{
    const int fd = open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

// A link is followed so that the file it points at is replaced, not the link.
std::string ResolvedTarget(const std::string& path)
{
    char resolved[PATH_MAX];
    if (realpath(path.c_str(), resolved) != nullptr) {
        return resolved;
    }
    return path;
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
    return ReplaceAtomically(path, content);
}

bool ReplaceAtomically(const std::string& path, const std::string& content)
{
    const std::string target = ResolvedTarget(path);
    RemoveAbandonedTemporaries(target);
    const std::string pattern = target + ".tmp.XXXXXX";
    std::vector<char> temporary(pattern.begin(), pattern.end());
    temporary.push_back('\0');
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    // Held until the rename (released when the descriptor closes or the process dies).
    flock(fd, LOCK_EX);
    CopyPermissions(target, fd);
    // Renamed while still open and locked, so no other writer takes it for abandoned; once
    // fsync has succeeded the contents are on disk whatever close reports.
    const bool written = WriteAll(fd, content) && fsync(fd) == 0;
    const bool renamed = written && std::rename(temporary.data(), target.c_str()) == 0;
    close(fd);
    if (!renamed) {
        unlink(temporary.data());
        return false;
    }
    SyncDirectoryOf(target);
    return true;
}

} // namespace IniFile
