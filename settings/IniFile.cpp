#include "settings/IniFile.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <vector>

namespace {

// The store is marked UTF-8 before loading: once a non-empty file is loaded
// SimpleIni ignores the mode, and only a UTF-8 store gets the byte-order mark
// on save. For char data the mode changes nothing else.
bool Load(const std::string& path, IniFile::Store& store)
{
    store.SetUnicode(true);
    return store.LoadFile(path.c_str()) >= 0;
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

// Makes the rename itself durable, not only the new file's contents.
void SyncDirectoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
    const int fd = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
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
    const std::string pattern = target + ".tmp.XXXXXX";
    std::vector<char> temporary(pattern.begin(), pattern.end());
    temporary.push_back('\0');
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    CopyPermissions(target, fd);
    bool complete = WriteAll(fd, content) && fsync(fd) == 0;
    complete = close(fd) == 0 && complete;
    if (!complete || std::rename(temporary.data(), target.c_str()) != 0) {
        unlink(temporary.data());
        return false;
    }
    SyncDirectoryOf(target);
    return true;
}

} // namespace IniFile
