// Makes every file write of this process beyond maxBytes fail as on a full disk (RLIMIT_FSIZE;
// SIGXFSZ ignored so that the write returns EFBIG instead of killing the test) while it lives.
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>
#include <stdexcept>

class FileSizeLimit {
public:
    explicit FileSizeLimit(std::size_t maxBytes)
    {
        m_previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_previousLimit);
        rlimit limited = m_previousLimit;
        limited.rlim_cur = maxBytes;
        if (setrlimit(RLIMIT_FSIZE, &limited) != 0) {
            std::signal(SIGXFSZ, m_previousHandler);
            throw std::runtime_error("cannot limit the file size");
        }
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_previousLimit);
        std::signal(SIGXFSZ, m_previousHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_previousLimit{};
    void (*m_previousHandler)(int) = nullptr;
};
