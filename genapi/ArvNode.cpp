#include "genapi/ArvNode.h"

#include <arv.h>

#include <algorithm>
#include <mutex>
#include <set>

#include "genapi/ArvNodeMap.h"
#include "genapi/GCException.h"
#include "genapi/Pointer.h"
#include "genapi/Representation.h"

namespace GenApi_3_4 {

namespace {

std::string TextOrEmpty(const char* text)
{
    return text != nullptr ? std::string(text) : std::string();
}

// Text content of a property element such as <pIsAvailable>Flag</pIsAvailable>.
std::string ElementText(ArvDomNode* element)
{
    std::string text;
    for (ArvDomNode* child = arv_dom_node_get_first_child(element); child != nullptr;
         child = arv_dom_node_get_next_sibling(child)) {
        if (ARV_IS_DOM_TEXT(child)) {
            text += TextOrEmpty(arv_dom_character_data_get_data(ARV_DOM_CHARACTER_DATA(child)));
        }
    }
    return text;
}

EAccessMode FromArvAccessMode(ArvGcAccessMode mode)
{
    switch (mode) {
    case ARV_GC_ACCESS_MODE_RO:
        return RO;
    case ARV_GC_ACCESS_MODE_WO:
        return WO;
    default:
        return RW;
    }
}

} // namespace

ArvNode::CacheBypass::CacheBypass(const ArvNode& node, bool active)
    : m_genicam(active ? node.NodeMap().Genicam() : nullptr), m_savedPolicy(0)
{
    if (m_genicam != nullptr) {
        m_savedPolicy = arv_gc_get_register_cache_policy(m_genicam);
        arv_gc_set_register_cache_policy(m_genicam, ARV_REGISTER_CACHE_POLICY_DISABLE);
    }
}

ArvNode::CacheBypass::~CacheBypass()
{
    if (m_genicam != nullptr) {
        arv_gc_set_register_cache_policy(m_genicam, static_cast<ArvRegisterCachePolicy>(m_savedPolicy));
    }
}

ArvNode::ArvNode(ArvNodeMap& nodeMap, ArvGcFeatureNode* featureNode, std::string name)
    : m_nodeMap(nodeMap), m_featureNode(featureNode), m_name(std::move(name))
{
}

EAccessMode ArvNode::GetAccessMode() const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    if (!CallArv("GetAccessMode", [&](GError** e) { return arv_gc_feature_node_is_implemented(m_featureNode, e); })) {
        return NI;
    }
    if (!CallArv("GetAccessMode", [&](GError** e) { return arv_gc_feature_node_is_available(m_featureNode, e); })) {
        return NA;
    }
    const EAccessMode own = OwnAccessMode();
    if (CallArv("GetAccessMode", [&](GError** e) { return arv_gc_feature_node_is_locked(m_featureNode, e); })) {
        // A locked node keeps only its read access.
        if (own == RW) {
            return RO;
        }
        if (own == WO) {
            return NA;
        }
    }
    return own;
}

EAccessMode ArvNode::OwnAccessMode() const
{
    return FromArvAccessMode(arv_gc_feature_node_get_actual_access_mode(m_featureNode));
}

GenICam_3_4::gcstring ArvNode::GetName(bool FullQualified) const
{
    if (!FullQualified) {
        return m_name;
    }
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    const bool standard = arv_gc_feature_node_get_name_space(m_featureNode) == ARV_GC_NAME_SPACE_STANDARD;
    return (standard ? "Std::" : "Cust::") + m_name;
}

EInterfaceType ArvNode::GetPrincipalInterfaceType() const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    // An ArvGc enumeration also implements Aravis's integer and string interfaces, and an IntReg its register
    // interface, so the order of these tests decides the GenApi interface.
    if (ARV_IS_GC_ENUMERATION(m_featureNode)) {
        return intfIEnumeration;
    }
    if (ARV_IS_GC_ENUM_ENTRY(m_featureNode)) {
        return intfIEnumEntry;
    }
    if (ARV_IS_GC_CATEGORY(m_featureNode)) {
        return intfICategory;
    }
    if (ARV_IS_GC_COMMAND(m_featureNode)) {
        return intfICommand;
    }
    if (ARV_IS_GC_BOOLEAN(m_featureNode)) {
        return intfIBoolean;
    }
    if (ARV_IS_GC_PORT(m_featureNode)) {
        return intfIPort;
    }
    if (ARV_IS_GC_INTEGER(m_featureNode)) {
        return intfIInteger;
    }
    if (ARV_IS_GC_FLOAT(m_featureNode)) {
        return intfIFloat;
    }
    if (ARV_IS_GC_STRING(m_featureNode)) {
        return intfIString;
    }
    if (ARV_IS_GC_REGISTER(m_featureNode)) {
        return intfIRegister;
    }
    return intfIBase;
}

bool ArvNode::GetProperty(const GenICam_3_4::gcstring& PropertyName, GenICam_3_4::gcstring& ValueStr,
                          GenICam_3_4::gcstring& AttributeStr) const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    const std::string wanted = PropertyName;
    std::string joined;
    bool found = false;
    for (ArvDomNode* child = arv_dom_node_get_first_child(ARV_DOM_NODE(m_featureNode)); child != nullptr;
         child = arv_dom_node_get_next_sibling(child)) {
        if (ARV_IS_GC_PROPERTY_NODE(child) && wanted == TextOrEmpty(arv_dom_node_get_node_name(child))) {
            // Repeated properties (several pFeature, pInvalidator…) are joined with tabs, as GenApi does.
            joined += (found ? "\t" : "") + ElementText(child);
            found = true;
        }
    }
    if (found) {
        ValueStr = joined;
        AttributeStr = "";
    }
    return found;
}

bool ArvNode::HasPropertyElement(const char* propertyName) const
{
    GenICam_3_4::gcstring value;
    GenICam_3_4::gcstring attribute;
    return GetProperty(propertyName, value, attribute);
}

std::vector<const ArvNode*> ArvNode::ValueChain() const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    std::vector<const ArvNode*> chain{this};
    for (;;) {
        const ArvNode* last = chain.back();
        GenICam_3_4::gcstring target;
        GenICam_3_4::gcstring attribute;
        if ((!ARV_IS_GC_INTEGER_NODE(last->m_featureNode) && !ARV_IS_GC_FLOAT_NODE(last->m_featureNode)) ||
            !last->GetProperty("pValue", target, attribute)) {
            return chain;
        }
        const auto* next = dynamic_cast<const ArvNode*>(m_nodeMap.GetNode(target));
        if (next == nullptr || std::find(chain.begin(), chain.end(), next) != chain.end()) {
            return chain;
        }
        chain.push_back(next);
    }
}

ERepresentation ArvNode::RepresentationAlongValueChain() const
{
    for (const ArvNode* node : ValueChain()) {
        const ERepresentation declared = DeclaredRepresentation(node->m_featureNode);
        if (declared != _UndefinedRepresentation) {
            return declared;
        }
    }
    return PureNumber;
}

GenICam_3_4::gcstring ArvNode::GetDisplayName() const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    const char* displayName = arv_gc_feature_node_get_display_name(m_featureNode);
    return displayName != nullptr && *displayName != '\0' ? GenICam_3_4::gcstring(displayName)
                                                          : GenICam_3_4::gcstring(m_name);
}

GenICam_3_4::gcstring ArvNode::GetToolTip() const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    return TextOrEmpty(arv_gc_feature_node_get_tooltip(m_featureNode));
}

GenICam_3_4::gcstring ArvNode::GetDescription() const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    return TextOrEmpty(arv_gc_feature_node_get_description(m_featureNode));
}

EVisibility ArvNode::GetVisibility() const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    switch (arv_gc_feature_node_get_visibility(m_featureNode)) {
    case ARV_GC_VISIBILITY_INVISIBLE:
        return Invisible;
    case ARV_GC_VISIBILITY_GURU:
        return Guru;
    case ARV_GC_VISIBILITY_EXPERT:
        return Expert;
    default:
        return Beginner;
    }
}

bool ArvNode::IsFeature() const
{
    return m_nodeMap.IsFeatureName(m_name);
}

void ArvNode::GetChildren(NodeList_t& Children) const
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    Children.clear();
    std::set<INode*> seen;
    for (ArvDomNode* child = arv_dom_node_get_first_child(ARV_DOM_NODE(m_featureNode)); child != nullptr;
         child = arv_dom_node_get_next_sibling(child)) {
        ArvGcNode* linked = nullptr;
        if (ARV_IS_GC_PROPERTY_NODE(child)) {
            linked = arv_gc_property_node_get_linked_node(ARV_GC_PROPERTY_NODE(child));
        } else if (ARV_IS_GC_FEATURE_NODE(child)) {
            linked = ARV_GC_NODE(child);
        }
        if (linked != nullptr && ARV_IS_GC_FEATURE_NODE(linked)) {
            INode* node = m_nodeMap.NodeFor(ARV_GC_FEATURE_NODE(linked));
            if (node != nullptr && seen.insert(node).second) {
                Children.push_back(node);
            }
        }
    }
}

INodeMap* ArvNode::GetNodeMap() const
{
    return &m_nodeMap;
}

GenICam_3_4::gcstring ArvNode::GetDeviceName() const
{
    return m_nodeMap.GetDeviceName();
}

INode* ArvNode::GetNode()
{
    return this;
}

GenICam_3_4::gcstring ArvNode::ToString(bool /*Verify*/, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    RequireReadable("ToString");
    return TextOrEmpty(ReadArv("ToString", IgnoreCache,
                               [&](GError** e) { return arv_gc_feature_node_get_value_as_string(m_featureNode, e); }));
}

void ArvNode::FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify)
{
    const ArvNodeMap::Lock lock(m_nodeMap.Mutex());
    if (Verify) {
        RequireWritable("FromString");
    }
    CallArv("FromString",
            [&](GError** e) { arv_gc_feature_node_set_value_from_string(m_featureNode, ValueStr.c_str(), e); });
}

void ArvNode::RequireReadable(const char* operation) const
{
    if (!IsReadable(GetAccessMode())) {
        Throw<GenICam_3_4::AccessException>("Node is not readable.", "AccessException", operation);
    }
}

void ArvNode::RequireWritable(const char* operation) const
{
    if (!IsWritable(GetAccessMode())) {
        Throw<GenICam_3_4::AccessException>("Node is not writable.", "AccessException", operation);
    }
}

} // namespace GenApi_3_4
