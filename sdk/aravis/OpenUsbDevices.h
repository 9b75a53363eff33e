// The USB3 Vision devices this process has open. Aravis lists a USB3 Vision device without its
// user-defined name, and reading the name needs the device open (opening claims it), so the name
// is read only where a handle of ours already holds the device: discovery then names an opened,
// renamed camera by its new name instead of undoing the rename.
#pragma once

#include <arv.h>

#include <map>
#include <mutex>
#include <string>

#include "sdk/aravis/GObjectPtr.h"

namespace ZYLGENICAM {

class OpenUsbDevices {
public:
    static OpenUsbDevices& Instance();

    void Add(const std::string& aravisDeviceId, ArvDevice* device);
    void Remove(const std::string& aravisDeviceId);
    // True when a handle of ours has the device open; name is then its user-defined name as the
    // device holds it now (empty when it does not answer).
    bool ReadUserDefinedName(const std::string& aravisDeviceId, std::string& name);

private:
    std::mutex m_mutex;
    std::map<std::string, GObjectPtr<ArvDevice>> m_devices;
};

} // namespace ZYLGENICAM
