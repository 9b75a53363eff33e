// Writing a settings file back: a crash-safe replacement where the folder allows it, a rewrite in
// place where only the file is writable, and a logged error when neither works.
#include "settings/IniFile.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <signal.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "log/Log.h"

namespace {

const char* const logSource = "Settings";

// Why a replacement did not happen: the folder or the file's owner refused it (rewriting in place
// may still work), or writing failed (the original must then stay exactly as it is).
enum class Replacement { Done, Refused, Failed };

bool IsRefusal(int error)
{
    return error == EACCES || error == EPERM || error == EROFS;
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

std::string DirectoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
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

// An unnamed file gets its name only once its content is on disk, so a save killed halfway leaves
// nothing behind, and nothing beside the file ever needs sweeping (a sweep could take another
// process's save in flight for abandoned). A filesystem without unnamed files gets a named one.
int OpenTemporary(const std::string& target, std::string& name)
{
    const int fd = open(DirectoryOf(target).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (fd >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)) {
        return fd;
    }
    std::string pattern = target + ".tmp." + std::to_string(getpid()) + ".XXXXXX";
    const int named = mkostemp(pattern.data(), O_CLOEXEC);
    if (named >= 0) {
        name = pattern;
    }
    return named;
}

bool NameTemporary(int fd, const std::string& target, std::string& name)
{
    if (!name.empty()) {
        return true;
    }
    static std::atomic<unsigned> sequence{0};
    const std::string source = "/proc/self/fd/" + std::to_string(fd);
    const std::string prefix = target + ".tmp." + std::to_string(getpid()) + ".";
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string candidate = prefix + std::to_string(sequence.fetch_add(1));
        if (linkat(AT_FDCWD, source.c_str(), AT_FDCWD, candidate.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            name = candidate;
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}

// The replacement keeps the original's owner, group and mode. Only root may give a file away, so a
// user replacing someone else's file would take it over: that counts as refused.
bool TakeOverAttributes(int fd, const struct stat& original)
{
    const bool sameOwner = original.st_uid == geteuid() && original.st_gid == getegid();
    if (!sameOwner && fchown(fd, original.st_uid, original.st_gid) != 0) {
        return false;
    }
    return fchmod(fd, original.st_mode & 07777) == 0;
}

// A temporary is named "<target>.tmp.<pid>.<n>" only for the moment between its content reaching the
// disk and the rename, so one is left behind only when its process died in that moment. Only those
// whose process is gone are removed: a living process may still rename its own.
void RemoveTemporariesOfEndedProcesses(const std::string& target)
{
    const std::filesystem::path targetPath(target);
    const std::string prefix = targetPath.filename().string() + ".tmp.";
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(targetPath.parent_path(), ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind(prefix, 0) != 0) {
            continue;
        }
        char* end = nullptr;
        const long owner = std::strtol(name.c_str() + prefix.size(), &end, 10);
        if (owner > 0 && *end == '.' && owner != getpid() && kill(static_cast<pid_t>(owner), 0) != 0 &&
            errno == ESRCH) {
            std::filesystem::remove(entry.path(), ignored);
        }
    }
}

void Discard(int fd, const std::string& name)
{
    if (!name.empty()) {
        unlink(name.c_str());
    }
    close(fd);
}

Replacement Replace(const std::string& target, const std::string& content, int& error)
{
    struct stat original {};
    if (stat(target.c_str(), &original) != 0) {
        error = errno;
        return Replacement::Failed;
    }
    std::string name;
    const int fd = OpenTemporary(target, name);
    if (fd < 0) {
        error = errno;
        return IsRefusal(error) ? Replacement::Refused : Replacement::Failed;
    }
    if (!TakeOverAttributes(fd, original)) {
        error = errno;
        Discard(fd, name);
        return Replacement::Refused;
    }
    const bool replaced = WriteAll(fd, content) && fsync(fd) == 0 && NameTemporary(fd, target, name) &&
                          std::rename(name.c_str(), target.c_str()) == 0;
    if (!replaced) {
        error = errno;
        Discard(fd, name);
        return Replacement::Failed;
    }
    close(fd);
    SyncDirectoryOf(target);
    RemoveTemporariesOfEndedProcesses(target);
    return Replacement::Done;
}

// Not crash-safe, so only used where the folder refuses a replacement. The new text is written over
// the old before the file is cut to length, so a failed write never leaves an empty file.
bool RewriteInPlace(const std::string& target, const std::string& content, int& error)
{
    const int fd = open(target.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0) {
        error = errno;
        return false;
    }
    const bool written =
        WriteAll(fd, content) && ftruncate(fd, static_cast<off_t>(content.size())) == 0 && fsync(fd) == 0;
    if (!written) {
        error = errno;
    }
    close(fd);
    return written;
}

} // namespace

namespace IniFile {

bool Save(const std::string& path, const std::string& content)
{
    const std::string target = ResolvedTarget(path);
    int error = 0;
    const Replacement replacement = Replace(target, content, error);
    if (replacement == Replacement::Done) {
        return true;
    }
    if (replacement == Replacement::Refused && RewriteInPlace(target, content, error)) {
        return true;
    }
    Utilities::LogError(logSource, "Failed to save " + target + ": " + std::generic_category().message(error), 1);
    return false;
}

bool ReplaceAtomically(const std::string& path, const std::string& content)
{
    int error = 0;
    return Replace(ResolvedTarget(path), content, error) == Replacement::Done;
}

} // namespace IniFile
