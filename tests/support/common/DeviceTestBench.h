// The stage for device-manager tests: a network namespace of the test's own
// holding the adapter "vb3a" (169.254.10.1/16, the scripted GigE cameras'
// default host interface), entered before the manager starts its threads, the
// manager itself, a temporary application directory and an event recorder.
#pragma once

#include <memory>
#include <string>

#include "support/common/DeviceEventRecorder.h"
#include "support/common/NetworkNamespace.h"
#include "support/common/TempDirectory.h"

class ApplicationDirectoryScope;
class DeviceManager;

class DeviceTestBench {
public:
    static constexpr const char* ADAPTER_KEY = "vb3a[169.254.10.1]";

    DeviceTestBench();
    // Releases the manager (threads stopped, devices closed), then leaves the namespace.
    ~DeviceTestBench();

    // False with a reason when no namespace could be made (tests skip then).
    bool Ready() const { return m_ready; }
    std::string Failure() const { return m_namespace.Failure(); }

    DeviceManager& Manager() { return *m_manager; }
    DeviceEventRecorder& Events() { return m_events; }

    // Asks for a refresh and waits for the pass's whole-list notification.
    bool RunPass(int types = 1 | 2 | 8);
    // Waits until this many whole-list notifications came in all.
    bool WaitForPasses(std::size_t count);
    void ReleaseManager();

private:
    NetworkNamespace m_namespace;
    bool m_ready = false;
    TempDirectory m_directory;
    DeviceEventRecorder m_events;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
    DeviceManager* m_manager = nullptr;
};
