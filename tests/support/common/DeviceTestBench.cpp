#include "support/common/DeviceTestBench.h"

#include "ZylSdk.h"
#include "device/DeviceManager.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/WaitUntil.h"

DeviceTestBench::DeviceTestBench() : m_namespace({NetworkNamespace::Veth{"vb3a", "vb3b", "169.254.10.1", 16, ""}})
{
    m_ready = m_namespace.IsReady() && m_namespace.Enter();
    if (!m_ready)
        return;
    ZYLGENICAM::Init();
    m_manager = DeviceManager::getInstance();
    // After the manager's logging set-up, which fills the application directory.
    m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
}

DeviceTestBench::~DeviceTestBench()
{
    ReleaseManager();
    m_applicationDirectory.reset();
}

void DeviceTestBench::ReleaseManager()
{
    if (m_manager == nullptr)
        return;
    m_manager->Release();
    m_manager = nullptr;
    ZYLGENICAM::UnInit();
}

bool DeviceTestBench::RunPass(int types)
{
    std::size_t before = m_events.Snapshot().WholeLists();
    m_manager->RefreshDeviceList(types);
    return WaitForPasses(before + 1);
}

bool DeviceTestBench::WaitForPasses(std::size_t count)
{
    return WaitUntil([&] { return m_events.Snapshot().WholeLists() >= count; });
}
