// The library as a host drives it, inside this program's private network namespace: started, with
// a temporary application directory, looking for GigE cameras, listening to device lists and log
// lines. TearDown closes every camera still open (images reach the host without a lock, so none
// may still deliver while UnInit takes the listeners away) and stops the library.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/PrivateNetworkNamespace.h"
#include "support/common/RequireEnvironment.h"
#include "support/common/TempDirectory.h"
#include "support/common/WaitUntil.h"

extern std::string g_privateNetworkNamespaceFailure;

class GigeHostTest : public ::testing::Test, public ViewerBiz3::IDeviceListUpdate {
public:
    static constexpr int GigE = 1;
    static constexpr int Simulated = 8;

    void OnDeviceListUpdate(int kind, std::vector<std::string>, std::vector<std::string> cameras) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (kind == 0) {
            m_cameras = std::move(cameras);
            ++m_lists;
        }
    }

protected:
    void SetUp() override
    {
        VB3_REQUIRE(InPrivateNetworkNamespace(), "no private network namespace: " << g_privateNetworkNamespaceFailure);
        VB3_REQUIRE(FakeGigeCamera::ProgramAvailable(), FakeGigeCamera::kProgram << " is not installed");
        setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "area", 1);
        ASSERT_EQ(-1, ViewerBiz3::Init());
        m_initialized = true;
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        ASSERT_EQ(0, ViewerBiz3::RegisterDeviceListUpdateListener(this));
        ASSERT_EQ(0, ViewerBiz3::SetTLTypeList(GigE));
    }

    void TearDown() override
    {
        unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
        if (!m_initialized)
            return;
        for (const std::string& id : ViewerBiz3::GetOpenedCameraIds())
            ViewerBiz3::CloseCamera(id);
        EXPECT_EQ(0, ViewerBiz3::UnInit());
    }

    static int FrameCount(const std::string& id)
    {
        return std::atoi(ViewerBiz3::GetCameraInfo(id, ViewerBiz3::CAM_FRAME_COUNT).c_str());
    }

    // Refreshes until a pass over these transports lists the camera with this serial number; its
    // identifier, or empty.
    std::string WaitForListed(const std::string& serialNumber, int types = GigE)
    {
        for (int pass = 0; pass < 10; ++pass) {
            const int lists = m_lists.load();
            ViewerBiz3::RefreshCameraList(types);
            if (!WaitUntil([&] { return m_lists.load() > lists; }))
                return {};
            std::lock_guard<std::mutex> lock(m_mutex);
            for (const std::string& id : m_cameras)
                if (id.find("(" + serialNumber + ")") != std::string::npos)
                    return id;
        }
        return {};
    }

    bool m_initialized = false;
    CameraLogRecorder m_log;

private:
    std::mutex m_mutex;
    std::atomic<int> m_lists{0};
    std::vector<std::string> m_cameras;
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};
