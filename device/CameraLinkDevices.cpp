#include "device/CameraLinkDevices.h"

#include <iterator>
#include <utility>

#include "camera/CLCamera.h"
#include "camera/CameraHost.h"
#include "device/Card.h"
#include "device/DeviceIdentity.h"
#include "device/DeviceMaps.h"
#include "device/SdkRecords.h"
#include "log/Log.h"

namespace {

// The first camera attached to a card drives it.
void AttachToCard(CLCamera* camera, Card* card, const std::string& cameraKey)
{
    camera->SetCard(card);
    if (card->GetCardCamera() == nullptr) {
        card->SetCardCamera(camera);
        card->SetText(Card::CAMERA_NAME_TEXT, cameraKey);
    }
}

} // namespace

CameraLinkDevices::CameraLinkDevices(DeviceRegistry& registry, CameraHost& host) : m_registry(registry), m_host(host) {}

CameraLinkDevices::~CameraLinkDevices()
{
    Stop();
}

void CameraLinkDevices::StartRefresh(bool cardsAndCameras)
{
    JoinFinishedRefreshes();
    auto refresh = std::make_unique<RefreshThread>();
    RefreshThread* started = refresh.get();
    std::lock_guard<std::mutex> lock(m_refreshThreadsMutex);
    if (m_stopped)
        return;
    started->thread = std::thread([this, cardsAndCameras, started] {
        if (cardsAndCameras)
            DiscoverCardsAndCameras();
        else
            DiscoverCamerasOnly();
        started->done.store(true);
    });
    m_refreshThreads.push_back(std::move(refresh));
}

void CameraLinkDevices::JoinFinishedRefreshes()
{
    std::list<std::unique_ptr<RefreshThread>> finished;
    {
        std::lock_guard<std::mutex> lock(m_refreshThreadsMutex);
        for (auto entry = m_refreshThreads.begin(); entry != m_refreshThreads.end();) {
            auto next = std::next(entry);
            if ((*entry)->done.load())
                finished.splice(finished.end(), m_refreshThreads, entry);
            entry = next;
        }
    }
    for (auto& refresh : finished)
        refresh->thread.join();
}

void CameraLinkDevices::Stop()
{
    std::list<std::unique_ptr<RefreshThread>> running;
    {
        std::lock_guard<std::mutex> lock(m_refreshThreadsMutex);
        m_stopped = true;
        running.swap(m_refreshThreads);
    }
    for (auto& refresh : running)
        refresh->thread.join();
}

int CameraLinkDevices::OpenCard(const std::string& key)
{
    Card* card = GetPointerFromMap<Card>(m_registry.cardList, m_registry.cardListMutex, key);
    if (card == nullptr)
        return -1;
    int result = card->Open();
    if (result == 0) {
        std::string cardKey = card->GetKey();
        {
            std::lock_guard<std::mutex> lock(m_registry.openedCardsMutex);
            m_registry.openedCards.emplace(cardKey, card);
        }
        m_host.NotifyDeviceListUpdate(cardKey, "");
    }
    return result;
}

int CameraLinkDevices::CloseCard(const std::string& key)
{
    Card* card = GetPointerFromMap<Card>(m_registry.cardList, m_registry.cardListMutex, key);
    if (card == nullptr)
        return -1;
    int result = card->Close();
    if (result == 0) {
        std::lock_guard<std::mutex> lock(m_registry.openedCardsMutex);
        EraseObject(m_registry.openedCards, card);
    }
    return result;
}

int CameraLinkDevices::GetCardNodeValue(const std::string& key, const std::string& node, std::string& value)
{
    Card* card = m_registry.FindOpenedCard(key);
    return card == nullptr ? -1 : card->GetNodeValue(node, value);
}

int CameraLinkDevices::SetCardNodeValue(const std::string& key, const std::string& node, const std::string& value)
{
    Card* card = m_registry.FindOpenedCard(key);
    CLCamera* cardCamera = card == nullptr ? nullptr : card->GetCardCamera();
    return cardCamera == nullptr ? -1 : cardCamera->SetNodeValue(node, value, false);
}

int CameraLinkDevices::BindCamera(CLCamera* camera, const std::string& protocol, const std::string& serialPort,
                                  DeviceRegistry::CLCameraMap& openedMap, std::mutex& openedMutex)
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
    m_host.NotifyDeviceListUpdate(camera->GetListKey(), key);
    return 0;
}

int CameraLinkDevices::OpenCamera(const std::string& key, const std::string& protocol, const std::string& serialPort)
{
    bool serialOnly = false;
    CLCamera* camera = m_registry.FindCLCamera(key, serialOnly);
    if (camera == nullptr)
        return -1;
    int result;
    if (serialOnly) {
        result =
            BindCamera(camera, protocol, serialPort, m_registry.openedOtherCameras, m_registry.openedOtherCamerasMutex);
    } else if (camera->cardIsOpen()) {
        result = BindCamera(camera, protocol, serialPort, m_registry.openedCLCameras, m_registry.openedCLCamerasMutex);
    } else {
        result = OpenCard(camera->GetListKey());
        if (result == 0) {
            result =
                BindCamera(camera, protocol, serialPort, m_registry.openedCLCameras, m_registry.openedCLCamerasMutex);
            if (result != 0)
                m_host.NotifyDeviceListUpdate(camera->GetListKey(), camera->GetKey());
        }
    }
    if (result != 0)
        Utilities::LogInfo(key, "Open camera failed, ret = " + std::to_string(result), 1);
    else
        Utilities::LogInfo(key, "Open camera success...", 1);
    return result;
}

int CameraLinkDevices::CloseCamera(const std::string& key)
{
    bool serialOnly = false;
    CLCamera* camera = m_registry.FindCLCamera(key, serialOnly);
    if (camera == nullptr)
        return -1;
    int result = camera->CloseCLCamera(true);
    if (result == 0) {
        std::mutex& openedMutex = serialOnly ? m_registry.openedOtherCamerasMutex : m_registry.openedCLCamerasMutex;
        DeviceRegistry::CLCameraMap& openedMap =
            serialOnly ? m_registry.openedOtherCameras : m_registry.openedCLCameras;
        std::lock_guard<std::mutex> lock(openedMutex);
        EraseObject(openedMap, camera);
    }
    if (result != 0)
        Utilities::LogInfo(key, "Close camera failed, ret = " + std::to_string(result), 1);
    else
        Utilities::LogInfo(key, "Close camera success!", 1);
    return result;
}

void CameraLinkDevices::AddCamera(Camera* camera)
{
    auto* clCamera = dynamic_cast<CLCamera*>(camera);
    if (clCamera == nullptr)
        return;
    // The list's own mutex is taken too (innermost), so readers of the list never race this insert.
    std::lock_guard<std::mutex> openedCL(m_registry.openedCLCamerasMutex);
    std::lock_guard<std::mutex> list(m_registry.clCameraListMutex);
    m_registry.clCameraList.emplace(clCamera->GetKey(), clCamera);
}

void CameraLinkDevices::DiscoverCardsAndCameras()
{
    bool changed = DiscoverCards();
    changed = DiscoverCameras() || changed;
    if (changed)
        m_host.NotifyDeviceListUpdate();
}

void CameraLinkDevices::DiscoverCamerasOnly()
{
    if (DiscoverCameras())
        m_host.NotifyDeviceListUpdate();
}

bool CameraLinkDevices::DiscoverCards()
{
    // Cards are added, never replaced: host threads use the listed objects without holding the list.
    SdkRecords records(ZYLGENICAM::DiscoveryCLCards());
    bool changed = false;
    for (ZYLGENICAM::ICameraInfo* record : records.List()) {
        if (record == nullptr)
            continue;
        std::string cardKey = SdkText(record->GetSerialNumber());
        if (cardKey.empty() || HasKey(m_registry.cardList, m_registry.cardListMutex, cardKey))
            continue;
        auto* card = new Card();
        card->SetKey(cardKey);
        card->SetType(Card::FRAME_GRABBER);
        card->SetFlag2(0);
        card->SetOpened(false);
        card->SetInUseCount(0);
        card->SetText(ViewerBiz3::CARD_INTERFACE_NAME, SdkText(record->GetModelName()));
        {
            std::lock_guard<std::mutex> lock(m_registry.clCameraListMutex);
            for (auto& entry : m_registry.clCameraList) {
                CLCamera* camera = entry.second;
                if (camera != nullptr && camera->GetListKey() == cardKey && camera->GetCard() == nullptr)
                    AttachToCard(camera, card, camera->GetKey());
            }
        }
        std::lock_guard<std::mutex> lock(m_registry.cardListMutex);
        changed = m_registry.cardList.emplace(cardKey, card).second || changed;
    }
    return changed;
}

bool CameraLinkDevices::DiscoverCameras()
{
    SdkRecords records(ZYLGENICAM::DiscoveryCLCameras());
    bool changed = false;
    for (ZYLGENICAM::ICameraInfo* record : records.List()) {
        if (record == nullptr)
            continue;
        std::string identifier = CameraIdentifier(record);
        std::string cardKey = SdkText(record->GetCLInfo(ZYLGENICAM::CL_CARD_KEY));
        bool serialOnly = cardKey == CLCamera::SERIAL_ONLY_LIST_KEY;
        DeviceRegistry::CLCameraMap& list = serialOnly ? m_registry.otherCameraList : m_registry.clCameraList;
        std::mutex& listMutex = serialOnly ? m_registry.otherCameraListMutex : m_registry.clCameraListMutex;
        if (HasKey(list, listMutex, identifier))
            continue;
        auto owned = std::make_unique<CLCamera>(ZYLGENICAM::CreateCamera(record));
        CLCamera* camera = owned.get();
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
            if (Card* card = GetPointerFromMap<Card>(m_registry.cardList, m_registry.cardListMutex, cardKey))
                AttachToCard(camera, card, identifier);
        }
        std::lock_guard<std::mutex> lock(listMutex);
        if (list.emplace(identifier, camera).second) {
            owned.release();
            changed = true;
        }
    }
    return changed;
}
