#pragma once

#include "genapi/GCString.h"
#include "genapi/IBase.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

struct INodeMap;

// One named node of a node map with its descriptive properties.
struct INode : virtual public IBase {
    virtual GenICam_3_4::gcstring GetName(bool FullQualified = false) const = 0;
    virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
    // Text of the property element PropertyName (e.g. "pIsAvailable" gives the referenced node's name);
    // false when the node has no such property.
    virtual bool GetProperty(const GenICam_3_4::gcstring& PropertyName, GenICam_3_4::gcstring& ValueStr,
                             GenICam_3_4::gcstring& AttributeStr) const = 0;
    virtual GenICam_3_4::gcstring GetDisplayName() const = 0;
    virtual GenICam_3_4::gcstring GetToolTip() const = 0;
    virtual GenICam_3_4::gcstring GetDescription() const = 0;
    virtual EVisibility GetVisibility() const = 0;
    virtual bool IsFeature() const = 0;
    // Nodes this node reads from (the nodes its p… properties point at).
    virtual void GetChildren(NodeList_t& Children) const = 0;
    virtual INodeMap* GetNodeMap() const = 0;
    virtual GenICam_3_4::gcstring GetDeviceName() const = 0;
};

} // namespace GenApi_3_4
