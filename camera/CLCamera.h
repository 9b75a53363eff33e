// A Camera Link camera: its SDK handle drives the frame grabber (card side,
// opened with OpenCamera) and, once bound to a protocol and a serial port, the
// camera behind it. A serial-only camera ("GenCPCamera") has no card side.
#pragma once

#include <atomic>
#include <string>

#include "camera/Camera.h"

class CLCamera : public Camera {
public:
    // List key of a camera reached through a serial port alone.
    static constexpr const char* SERIAL_ONLY_LIST_KEY = "GenCPCamera";
    // Name prefix of the entry a lost camera leaves behind.
    static constexpr const char* PLACEHOLDER_PREFIX = "Virtual camera-";

    explicit CLCamera(ZYLGENICAM::ICamera* camera);
    ~CLCamera() override;

    // Opens the card side (or, for a serial-only camera, binds with the stored pair).
    int OpenCamera(int accessMode) override;
    bool IsOnline() override;
    // toCamera selects the camera's node map, otherwise the card's.
    int GetNodeValue(std::string nodeName, std::string& value, bool toCamera) override;
    int SetNodeValue(std::string nodeName, std::string value, bool toCamera) override;

    // Binds the camera side; two empty texts unbind it.
    int SetCLParam(std::string protocol, std::string serialPort);
    int CloseCLCamera(bool notify);
    // True also without handle, so opening goes straight to binding.
    bool cardIsOpen();
    bool IsDeviceReset() const { return m_deviceReset.load(); }
    bool IsPlaceholder() const;

private:
    int OpenCardSide(ZYLGENICAM::ICamera* handle, uint64_t startMs);
    int OpenSerialOnly(uint64_t startMs);
    void BecomeBound(bool bound);
    GenApi_3_4::INodeMap* SelectedNodeMap(bool toCamera) const;
    void LogOpenFailure(int result);

    std::atomic<bool> m_deviceReset{false};
};
