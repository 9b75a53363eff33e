#include "support/scripted/ScriptedModule.h"

#include "genapi/NodeMapFactory.h"

namespace Scripted {

ScriptedModule::ScriptedModule(const std::string& xml, const std::string& deviceName)
    : m_xml(xml), m_nodeMap(GenApi_3_4::CreateNodeMapFromXml(xml, deviceName))
{
}

ScriptedModule::~ScriptedModule() = default;

GenApi_3_4::INodeMap* ScriptedModule::GetNodeMap()
{
    return m_nodeMap.get();
}

const char* ScriptedModule::GetXML()
{
    return m_xml.c_str();
}

uint64_t ScriptedModule::GetXMLSize()
{
    return m_xml.size();
}

} // namespace Scripted
