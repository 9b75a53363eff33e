#include "support/common/GigeDiscoveryStage.h"

#include <algorithm>

#include "ZylSdk.h"
#include "device/DeviceManager.h"

GigeDiscoveryStage::GigeDiscoveryStage()
{
    ZYLGENICAM::Init();
    manager = DeviceManager::getInstance();
    m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
    manager->SetTLTypeList(ZYLGENICAM::TL_GIGE);
}

GigeDiscoveryStage::~GigeDiscoveryStage()
{
    manager->Release();
    ZYLGENICAM::UnInit();
}

std::string GigeDiscoveryStage::WaitForListed(const std::string& serialNumber, int passes)
{
    std::string id;
    for (int attempt = 0; attempt < passes && id.empty(); ++attempt) {
        std::size_t lists = events.Snapshot().WholeLists();
        manager->RefreshDeviceList(ZYLGENICAM::TL_GIGE);
        if (!events.WaitUntil([lists](const DeviceEventRecorder::Events& seen) { return seen.WholeLists() > lists; },
                              std::chrono::seconds(20)))
            return {};
        id = ListedIdentifier(events.Snapshot(), serialNumber);
    }
    return id;
}

std::string ListedIdentifier(const DeviceEventRecorder::Events& events, const std::string& serialNumber)
{
    std::vector<std::string> keys = events.LastWholeList().second;
    const std::string suffix = "(" + serialNumber + ")";
    auto found = std::find_if(keys.begin(), keys.end(), [&](const std::string& key) {
        return key.size() > suffix.size() && key.compare(key.size() - suffix.size(), suffix.size(), suffix) == 0;
    });
    return found == keys.end() ? std::string() : *found;
}
