#include "device/Card.h"

#include "ZylSdk.h"
#include "camera/CLCamera.h"
#include "device/DeviceManager.h"
#include "log/Log.h"

Card::Card() = default;

std::size_t Card::TextSlot(int info)
{
    // The fifteenth string, which no CARD_INFO value reads, lies between 12 and 13.
    std::size_t slot = static_cast<std::size_t>(info - FIRST_TEXT);
    return info > ViewerBiz3::CARD_TEXT12 ? slot + 1 : slot;
}

int Card::Open()
{
    CLCamera* cardCamera = m_cardCamera.load();
    if (cardCamera == nullptr)
        return -1;
    int result = cardCamera->OpenCamera(1);
    if (result == 0)
        SetOpened(true);
    return result;
}

int Card::Close()
{
    CLCamera* cardCamera = m_cardCamera.load();
    if (cardCamera == nullptr || !IsOpened())
        return -1;
    if (cardCamera->IsOpened())
        DeviceManager::getInstance()->CloseCLCamera(cardCamera->GetKey());
    SetOpened(false);
    int result = cardCamera->CloseCamera(true);
    std::string key = GetKey();
    if (result != 0)
        Utilities::LogInfo(key, "Close card failed, ret = " + std::to_string(result), 1);
    else
        Utilities::LogInfo(key, "Close card success...", 1);
    return result;
}

void Card::SetOpened(bool opened)
{
    // Opened and flag 4 always change together.
    m_opened.store(opened ? 1 : 0);
    m_flag4.store(opened ? 1 : 0);
}

std::string Card::GetInfo(ViewerBiz3::CARD_INFO info)
{
    switch (info) {
    case ViewerBiz3::CARD_KEY:
        return GetKey();
    case ViewerBiz3::CARD_TYPE:
        return std::to_string(m_type.load());
    case ViewerBiz3::CARD_FLAG2:
        return std::to_string(m_flag2.load());
    case ViewerBiz3::CARD_OPENED:
        return std::to_string(m_opened.load());
    case ViewerBiz3::CARD_FLAG4:
        return std::to_string(m_flag4.load());
    case ViewerBiz3::CARD_IN_USE:
        return std::to_string(m_inUse.load());
    default:
        return GetText(info);
    }
}

const char* Card::GetXML()
{
    CLCamera* cardCamera = m_cardCamera.load();
    if (cardCamera == nullptr)
        return nullptr;
    ZYLGENICAM::IModule* module = cardCamera->GetXML(ViewerBiz3::FOCUS_CARD);
    return module == nullptr ? nullptr : module->GetXML();
}

GenApi_3_4::INodeMap* Card::GetNodeMap()
{
    CLCamera* cardCamera = m_cardCamera.load();
    return cardCamera == nullptr ? nullptr : cardCamera->GetNodeMap(ViewerBiz3::NODEMAP_MODULE2);
}

int Card::GetNodeValue(std::string name, std::string& value)
{
    CLCamera* cardCamera = m_cardCamera.load();
    return cardCamera == nullptr ? -1 : cardCamera->GetNodeValue(name, value, false);
}

std::string Card::GetKey()
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    return m_key;
}

void Card::SetKey(const std::string& key)
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_key = key;
}

std::string Card::GetText(ViewerBiz3::CARD_INFO info)
{
    if (!IsText(info))
        return "";
    std::lock_guard<std::mutex> lock(m_textMutex);
    return m_texts[TextSlot(info)];
}

void Card::SetText(ViewerBiz3::CARD_INFO info, const std::string& text)
{
    if (!IsText(info))
        return;
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_texts[TextSlot(info)] = text;
}
