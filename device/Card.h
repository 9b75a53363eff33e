// One card of the device list: a host network adapter, the USB pseudo-adapter
// "usbCard" or a Camera Link frame grabber driven through its card camera.
// Fields are read by CARD_INFO; host threads read them while discovery and the
// Camera Link operations write them, so every field is guarded.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "ViewerBiz3Types.h"
#include "camera/FrameGrabberCard.h"

namespace GenApi_3_4 {
struct INodeMap;
}

class CLCamera;

class Card final : public FrameGrabberCard {
public:
    // Card types (CARD_INFO 1).
    static constexpr uint16_t NETWORK_ADAPTER = 1;
    static constexpr uint16_t USB_ADAPTER = 2;
    static constexpr uint16_t FRAME_GRABBER = 3;
    // The text that names the camera driving a frame grabber.
    static constexpr ViewerBiz3::CARD_INFO CAMERA_NAME_TEXT = ViewerBiz3::CARD_TEXT11;

    Card();
    ~Card() = default;
    Card(const Card&) = delete;
    Card& operator=(const Card&) = delete;

    // Opens the frame grabber through its card camera (open mode 1).
    int Open();
    // Unbinds the card camera if it is bound, then closes the card side.
    int Close();
    // The field as text (numbers in decimal); empty for values above 19.
    std::string GetInfo(ViewerBiz3::CARD_INFO info);
    // The card's GenICam description text; null without card camera.
    const char* GetXML();
    GenApi_3_4::INodeMap* GetNodeMap();
    int GetNodeValue(std::string name, std::string& value);

    CLCamera* GetCardCamera() const { return m_cardCamera.load(); }
    void SetCardCamera(CLCamera* camera) { m_cardCamera.store(camera); }
    std::string GetKey();
    void SetKey(const std::string& key);
    uint16_t GetType() const { return m_type.load(); }
    void SetType(uint16_t type) { m_type.store(type); }
    void SetFlag2(uint8_t value) { m_flag2.store(value); }
    bool IsOpened() const override { return m_opened.load() != 0; }
    void SetOpened(bool opened);
    uint8_t GetInUseCount() const { return m_inUse.load(); }
    void SetInUseCount(uint8_t count) { m_inUse.store(count); }
    void AddInUse() { m_inUse.fetch_add(1); }
    // Texts 6-19 (the one between 12 and 13 is not reachable by CARD_INFO).
    std::string GetText(ViewerBiz3::CARD_INFO info);
    void SetText(ViewerBiz3::CARD_INFO info, const std::string& text);
    void SetCameraName(const std::string& name) override { SetText(CAMERA_NAME_TEXT, name); }

private:
    static constexpr int FIRST_TEXT = ViewerBiz3::CARD_INTERFACE_NAME;
    static constexpr int LAST_TEXT = ViewerBiz3::CARD_TEXT19;
    static constexpr std::size_t TEXT_COUNT = 15;
    static bool IsText(int info) { return info >= FIRST_TEXT && info <= LAST_TEXT; }
    // Position of a CARD_INFO text among the fifteen strings (the unreadable one sits after 12).
    static std::size_t TextSlot(int info);

    std::atomic<CLCamera*> m_cardCamera{nullptr};
    std::string m_key;
    std::atomic<uint16_t> m_type{0};
    std::atomic<uint8_t> m_flag2{0};
    std::atomic<uint8_t> m_opened{0};
    std::atomic<uint8_t> m_flag4{0};
    std::atomic<uint8_t> m_inUse{0};
    std::array<std::string, TEXT_COUNT> m_texts;
    std::mutex m_textMutex;
};
