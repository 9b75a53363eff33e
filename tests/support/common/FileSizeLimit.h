// Makes every file write of this process beyond a few bytes fail as on a full disk (RLIMIT_FSIZE,
// with SIGXFSZ ignored so the write returns EFBIG instead of killing the test), until the object
// goes away.
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>
#include <stdexcept>

class FileSizeLimit {
public:
    explicit FileSizeLimit(std::size_t maxBytes)
    {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGXFSZ, &ignore, &m_previousAction);
        getrlimit(RLIMIT_FSIZE, &m_previousLimit);
        rlimit limited = m_previousLimit;
        limited.rlim_cur = maxBytes;
        if (setrlimit(RLIMIT_FSIZE, &limited) != 0) {
            sigaction(SIGXFSZ, &m_previousAction, nullptr);
            throw std::runtime_error("cannot limit the file size");
        }
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_previousLimit);
        sigaction(SIGXFSZ, &m_previousAction, nullptr);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_previousLimit{};
    struct sigaction m_previousAction {};
};
