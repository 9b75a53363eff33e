// One node map of a scripted device and the GenICam XML it was built from.
#pragma once

#include <memory>
#include <string>

#include "ZylSdk.h"

namespace Scripted {

class ScriptedModule final : public ZYLGENICAM::IModule {
public:
    // Throws GenICam_3_4::GenericException when the XML cannot be parsed.
    ScriptedModule(const std::string& xml, const std::string& deviceName);
    ~ScriptedModule();
    ScriptedModule(const ScriptedModule&) = delete;
    ScriptedModule& operator=(const ScriptedModule&) = delete;

    GenApi_3_4::INodeMap* GetNodeMap() override;
    const char* GetXML() override;
    uint64_t GetXMLSize() override;

private:
    std::string m_xml;
    std::unique_ptr<GenApi_3_4::INodeMap> m_nodeMap;
};

} // namespace Scripted
