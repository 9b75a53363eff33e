// A camera opened for the length of one command and closed again after it.
#pragma once

#include <string>

class OpenedCamera {
public:
    explicit OpenedCamera(std::string id);
    ~OpenedCamera();
    OpenedCamera(const OpenedCamera&) = delete;
    OpenedCamera& operator=(const OpenedCamera&) = delete;

    // The result of OpenCamera: 0 when the camera is open.
    int Result() const { return m_result; }
    const std::string& Id() const { return m_id; }

private:
    const std::string m_id;
    int m_result;
};
