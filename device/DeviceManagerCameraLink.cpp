// Camera Link: frame-grabber cards, the cameras behind them and serial-only
// cameras, and the enumeration that fills their lists from the SDK.
#include "camera/CLCamera.h"
#include "device/Card.h"
#include "device/DeviceIdentity.h"
#include "device/DeviceManager.h"
#include "device/DeviceMaps.h"
#include "log/Log.h"

namespace {

void DestroyRecords(std::list<ZYLGENICAM::ICameraInfo*>& records)
{
    for (ZYLGENICAM::ICameraInfo* record : records)
        if (record != nullptr)
            record->Destroy();
}

} // namespace

Card* DeviceManager::FindOpenedCard(const std::string& key)
{
    return GetPointerFromMap<Card>(m_openedCards, m_openedCardsMutex, key);
}

CLCamera* DeviceManager::FindCLCamera(const std::string& key, bool& serialOnly)
{
    serialOnly = false;
    if (CLCamera* camera = GetPointerFromMap<CLCamera>(m_clCameraList, m_clCameraListMutex, key))
        return camera;
    serialOnly = true;
    return GetPointerFromMap<CLCamera>(m_otherCameraList, m_otherCameraListMutex, key);
}

int DeviceManager::OpenCard(std::string key)
{
    Card* card = GetPointerFromMap<Card>(m_cardList, m_cardListMutex, key);
    if (card == nullptr)
        return -1;
    int result = card->Open();
    if (result == 0) {
        std::string cardKey = card->GetKey();
        {
            std::lock_guard<std::mutex> lock(m_openedCardsMutex);
            m_openedCards.emplace(cardKey, card);
        }
        NotifyDeviceListUpdate(cardKey, "");
    }
    return result;
}

int DeviceManager::CloseCard(std::string key)
{
    Card* card = GetPointerFromMap<Card>(m_cardList, m_cardListMutex, key);
    if (card == nullptr)
        return -1;
    int result = card->Close();
    if (result == 0) {
        std::lock_guard<std::mutex> lock(m_openedCardsMutex);
        EraseObject(m_openedCards, card);
    }
    return result;
}

std::vector<std::string> DeviceManager::GetOpenedCardIds()
{
    // Read under the map's mutex: host threads open and close cards meanwhile.
    std::vector<std::string> ids;
    AppendKeys(m_openedCards, m_openedCardsMutex, ids);
    return ids;
}

std::string DeviceManager::GetCardInfo(std::string key, ViewerBiz3::CARD_INFO info)
{
    // Read while the map is held: discovery replaces the adapters on every pass.
    auto readFrom = [&key, info](CardMap& map, std::mutex& mutex, std::string& text) {
        std::lock_guard<std::mutex> lock(mutex);
        Card* card = FindInMap<Card>(map, key);
        if (card != nullptr)
            text = card->GetInfo(info);
        return card != nullptr;
    };
    std::string text;
    if (readFrom(m_adapterList, m_adapterListMutex, text) || readFrom(m_cardList, m_cardListMutex, text) ||
        readFrom(m_secondAdapterMap, m_secondAdapterMapMutex, text))
        return text;
    return "";
}

int DeviceManager::GetCardNodeValue(std::string key, std::string node, std::string& value)
{
    Card* card = FindOpenedCard(key);
    return card == nullptr ? -1 : card->GetNodeValue(node, value);
}

int DeviceManager::SetCardNodeValue(std::string key, std::string node, std::string value)
{
    Card* card = FindOpenedCard(key);
    CLCamera* cardCamera = card == nullptr ? nullptr : card->GetCardCamera();
    return cardCamera == nullptr ? -1 : cardCamera->SetNodeValue(node, value, false);
}

int DeviceManager::BindCLCamera(CLCamera* camera, const std::string& protocol, const std::string& serialPort,
                                CLCameraMap& openedMap, std::mutex& openedMutex)
{
    int result = camera->SetCLParam(protocol, serialPort);
    if (result != 0)
        return result;
    std::string key = camera->GetKey();
    {
        std::lock_guard<std::mutex> lock(openedMutex);
        if (protocol.empty() || serialPort.empty())
            EraseObject(openedMap, camera);
        else
            openedMap.emplace(key, camera);
    }
    NotifyDeviceListUpdate(camera->GetListKey(), key);
    return 0;
}

int DeviceManager::OpenCLCamera(std::string key, std::string protocol, std::string serialPort)
{
    CallScope scope(*this);
    std::lock_guard<std::mutex> operation(m_operationMutex);
    bool serialOnly = false;
    CLCamera* camera = FindCLCamera(key, serialOnly);
    if (camera == nullptr)
        return -1;
    int result;
    if (serialOnly) {
        result = BindCLCamera(camera, protocol, serialPort, m_openedOtherCameras, m_openedOtherCamerasMutex);
    } else if (camera->cardIsOpen()) {
        result = BindCLCamera(camera, protocol, serialPort, m_openedCLCameras, m_openedCLCamerasMutex);
    } else {
        result = OpenCard(camera->GetListKey());
        if (result == 0) {
            result = BindCLCamera(camera, protocol, serialPort, m_openedCLCameras, m_openedCLCamerasMutex);
            if (result != 0)
                NotifyDeviceListUpdate(camera->GetListKey(), camera->GetKey());
        }
    }
    if (result != 0)
        Utilities::LogInfo(key, "Open camera failed, ret = " + std::to_string(result), 1);
    else
        Utilities::LogInfo(key, "Open camera success...", 1);
    return result;
}

int DeviceManager::CloseCLCamera(std::string key)
{
    CallScope scope(*this);
    std::lock_guard<std::mutex> operation(m_operationMutex);
    bool serialOnly = false;
    CLCamera* camera = FindCLCamera(key, serialOnly);
    if (camera == nullptr)
        return -1;
    int result = camera->CloseCLCamera(true);
    if (result == 0) {
        std::mutex& openedMutex = serialOnly ? m_openedOtherCamerasMutex : m_openedCLCamerasMutex;
        CLCameraMap& openedMap = serialOnly ? m_openedOtherCameras : m_openedCLCameras;
        std::lock_guard<std::mutex> lock(openedMutex);
        EraseObject(openedMap, camera);
    }
    if (result != 0)
        Utilities::LogInfo(key, "Close camera failed, ret = " + std::to_string(result), 1);
    else
        Utilities::LogInfo(key, "Close camera success!", 1);
    return result;
}

void DeviceManager::AddCLCamera(Camera* camera)
{
    auto* clCamera = dynamic_cast<CLCamera*>(camera);
    if (clCamera == nullptr)
        return;
    // The list's own mutex is taken too (innermost), so readers of the list never race this insert.
    std::lock_guard<std::mutex> openedCL(m_openedCLCamerasMutex);
    std::lock_guard<std::mutex> list(m_clCameraListMutex);
    m_clCameraList.emplace(clCamera->GetKey(), clCamera);
}

int DeviceManager::GetCLProtocolsAndSerials(std::list<std::string>& protocols, std::list<std::string>& serials)
{
    protocols = ZYLGENICAM::GetCLProtocols();
    serials = ZYLGENICAM::GetCLSerials();
    return 0;
}

void DeviceManager::RunCameraLinkRefresh(bool cardsAndCameras)
{
    if (cardsAndCameras)
        DiscoveryCLList();
    else
        DiscoveryCLCamera();
    // Last access to this object: the destructor waits for the count to reach zero.
    m_clRefreshThreads.fetch_sub(1);
}

void DeviceManager::DiscoveryCLList()
{
    bool changed = DiscoverCLCards();
    changed = DiscoverCLCameras() || changed;
    if (changed)
        NotifyDeviceListUpdate();
}

void DeviceManager::DiscoveryCLCamera()
{
    if (DiscoverCLCameras())
        NotifyDeviceListUpdate();
}

bool DeviceManager::DiscoverCLCards()
{
    // Cards are added, never replaced: host threads use the listed objects without holding the list.
    std::list<ZYLGENICAM::ICameraInfo*> records = ZYLGENICAM::DiscoveryCLCards();
    bool changed = false;
    for (ZYLGENICAM::ICameraInfo* record : records) {
        if (record == nullptr)
            continue;
        std::string cardKey = SdkText(record->GetSerialNumber());
        bool known;
        {
            std::lock_guard<std::mutex> lock(m_cardListMutex);
            known = m_cardList.count(cardKey) != 0;
        }
        if (cardKey.empty() || known)
            continue;
        auto* card = new Card();
        card->SetKey(cardKey);
        card->SetType(Card::FRAME_GRABBER);
        card->SetFlag2(0);
        card->SetOpened(false);
        card->SetInUseCount(0);
        card->SetText(ViewerBiz3::CARD_INTERFACE_NAME, SdkText(record->GetModelName()));
        {
            // The first camera behind the card drives it.
            std::lock_guard<std::mutex> lock(m_clCameraListMutex);
            for (auto& entry : m_clCameraList) {
                CLCamera* camera = entry.second;
                if (camera != nullptr && camera->GetListKey() == cardKey && camera->GetCard() == nullptr) {
                    camera->SetCard(card);
                    if (card->GetCardCamera() == nullptr) {
                        card->SetCardCamera(camera);
                        card->SetText(Card::CAMERA_NAME_TEXT, camera->GetKey());
                    }
                }
            }
        }
        std::lock_guard<std::mutex> lock(m_cardListMutex);
        changed = m_cardList.emplace(cardKey, card).second || changed;
    }
    DestroyRecords(records);
    return changed;
}

bool DeviceManager::DiscoverCLCameras()
{
    std::list<ZYLGENICAM::ICameraInfo*> records = ZYLGENICAM::DiscoveryCLCameras();
    bool changed = false;
    for (ZYLGENICAM::ICameraInfo* record : records) {
        if (record == nullptr)
            continue;
        std::string identifier = CameraIdentifier(record);
        std::string cardKey = SdkText(record->GetCLInfo(ZYLGENICAM::CL_CARD_KEY));
        bool serialOnly = cardKey == CLCamera::SERIAL_ONLY_LIST_KEY;
        CLCameraMap& list = serialOnly ? m_otherCameraList : m_clCameraList;
        std::mutex& listMutex = serialOnly ? m_otherCameraListMutex : m_clCameraListMutex;
        bool known;
        {
            std::lock_guard<std::mutex> lock(listMutex);
            known = list.count(identifier) != 0;
        }
        if (known)
            continue;
        auto* camera = new CLCamera(ZYLGENICAM::CreateCamera(record));
        std::string serial = SdkText(record->GetSerialNumber());
        camera->SetName(identifier);
        camera->SetKey(identifier);
        camera->SetListKey(cardKey);
        camera->SetKind(CameraKind::CameraLink);
        camera->SetFlag3(false);
        FillRecordTexts(*camera, record);
        camera->SetText(ViewerBiz3::CAM_CL_PROTOCOL, SdkText(record->GetCLInfo(ZYLGENICAM::CL_PROTOCOL)));
        camera->SetText(ViewerBiz3::CAM_CL_SERIAL_PORT, SdkText(record->GetCLInfo(ZYLGENICAM::CL_SERIAL_PORT)));
        camera->SetVirtualSuffix(serial);
        if (!serialOnly) {
            if (Card* card = GetPointerFromMap<Card>(m_cardList, m_cardListMutex, cardKey)) {
                camera->SetCard(card);
                if (card->GetCardCamera() == nullptr) {
                    card->SetCardCamera(camera);
                    card->SetText(Card::CAMERA_NAME_TEXT, identifier);
                }
            }
        }
        std::lock_guard<std::mutex> lock(listMutex);
        if (list.emplace(identifier, camera).second)
            changed = true;
        else
            delete camera;
    }
    DestroyRecords(records);
    return changed;
}
