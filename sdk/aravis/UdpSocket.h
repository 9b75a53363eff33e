// An IPv4 UDP socket that is closed with its owner.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ZYLGENICAM {

class UdpSocket {
public:
    UdpSocket() : m_fd(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
    ~UdpSocket() { Close(); }
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    bool IsOpen() const { return m_fd >= 0; }
    int Fd() const { return m_fd; }
    void Close()
    {
        if (m_fd >= 0)
            close(m_fd);
        m_fd = -1;
    }

private:
    int m_fd;
};

} // namespace ZYLGENICAM
