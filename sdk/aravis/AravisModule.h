// A module: a node map and the GenICam XML it was built from.
#pragma once

#include <string>

#include "ZylSdk.h"

namespace ZYLGENICAM {

class AravisModule final : public IModule {
public:
    AravisModule(GenApi_3_4::INodeMap* nodeMap, std::string xml) : m_nodeMap(nodeMap), m_xml(std::move(xml)) {}

    GenApi_3_4::INodeMap* GetNodeMap() override { return m_nodeMap; }
    const char* GetXML() override { return m_xml.empty() ? nullptr : m_xml.c_str(); }
    uint64_t GetXMLSize() override { return m_xml.size(); }

private:
    GenApi_3_4::INodeMap* m_nodeMap; // owned by the camera
    std::string m_xml;
};

} // namespace ZYLGENICAM
