// Makes every file write of this process beyond a few bytes fail as on a full
// disk (RLIMIT_FSIZE, with SIGXFSZ ignored so the write returns EFBIG instead
// of killing the test), until the object goes away.
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>

class FileSizeLimit {
public:
    explicit FileSizeLimit(std::size_t maxBytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_previousLimit{};
    struct sigaction m_previousAction {};
};
