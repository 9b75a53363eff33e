#include "support/common/FileSizeLimit.h"

#include <stdexcept>

FileSizeLimit::FileSizeLimit(std::size_t maxBytes)
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

FileSizeLimit::~FileSizeLimit()
{
    setrlimit(RLIMIT_FSIZE, &m_previousLimit);
    sigaction(SIGXFSZ, &m_previousAction, nullptr);
}
