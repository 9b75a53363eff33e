#pragma once

#include "genapi/GCString.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

// A device's (or an XML document's) set of nodes, looked up by name.
struct INodeMap {
    virtual ~INodeMap() = default;
    // Null when no node has that name. The node stays valid while the node map lives.
    virtual INode* GetNode(const GenICam_3_4::gcstring& Name) const = 0;
    virtual void GetNodes(NodeList_t& Nodes) const = 0;
    virtual GenICam_3_4::gcstring GetDeviceName() = 0;
};

} // namespace GenApi_3_4
