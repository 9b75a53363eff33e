#include "support/common/SdkCameraFeatures.h"

using namespace ZYLGENICAM;

namespace SdkCameraFeatures {

ICamera* CreateBySerial(uint64_t tlTypes, const std::string& serial)
{
    ICamera* created = nullptr;
    for (ICameraInfo* info : DiscoveryByTLType(tlTypes)) {
        if (created == nullptr && serial == info->GetSerialNumber())
            created = CreateCamera(info);
        info->Destroy();
    }
    return created;
}

GenApi::INodeMap* Features(ICamera* camera)
{
    IModule* module = camera->GetModule3();
    return module != nullptr ? module->GetNodeMap() : nullptr;
}

std::string Read(ICamera* camera, const char* name)
{
    GenApi::CValuePtr value = Features(camera)->GetNode(name);
    return value->ToString().c_str();
}

void Write(ICamera* camera, const char* name, const std::string& text)
{
    GenApi::CValuePtr value = Features(camera)->GetNode(name);
    value->FromString(text.c_str());
}

} // namespace SdkCameraFeatures
