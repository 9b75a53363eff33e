#include "genapi/ArvNodeMap.h"

#include <arv.h>

#include <map>
#include <vector>

#include "genapi/ArvBooleanNode.h"
#include "genapi/ArvCategoryNode.h"
#include "genapi/ArvCommandNode.h"
#include "genapi/ArvEnumEntryNode.h"
#include "genapi/ArvEnumerationNode.h"
#include "genapi/ArvFloatNode.h"
#include "genapi/ArvIntegerNode.h"
#include "genapi/ArvNode.h"
#include "genapi/ArvRegisterNode.h"
#include "genapi/ArvStringNode.h"

namespace GenApi_3_4 {

namespace {

const char* const kEnumEntryPrefix = "EnumEntry_";

// Several node maps may wrap the same ArvGc (a device opened twice by the SDK layer); they must share one lock.
std::shared_ptr<std::recursive_mutex> MutexForGenicam(ArvGc* genicam)
{
    static std::mutex registryMutex;
    static std::map<ArvGc*, std::weak_ptr<std::recursive_mutex>> registry;
    const std::lock_guard<std::mutex> lock(registryMutex);
    for (auto it = registry.begin(); it != registry.end();) {
        it = it->second.expired() ? registry.erase(it) : std::next(it);
    }
    std::shared_ptr<std::recursive_mutex> mutex = registry[genicam].lock();
    if (!mutex) {
        mutex = std::make_shared<std::recursive_mutex>();
        registry[genicam] = mutex;
    }
    return mutex;
}

// GenApi names an enumeration's entries "EnumEntry_<enumeration>_<symbolic>"; ArvGc does not register them.
std::string EnumEntryName(ArvGcFeatureNode* entry)
{
    ArvDomNode* parent = arv_dom_node_get_parent_node(ARV_DOM_NODE(entry));
    const char* enumerationName = parent != nullptr && ARV_IS_GC_FEATURE_NODE(parent)
                                      ? arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(parent))
                                      : nullptr;
    const char* symbolic = arv_gc_feature_node_get_name(entry);
    return std::string(kEnumEntryPrefix) + (enumerationName != nullptr ? enumerationName : "") + "_" +
           (symbolic != nullptr ? symbolic : "");
}

std::string NodeName(ArvGcFeatureNode* featureNode)
{
    if (ARV_IS_GC_ENUM_ENTRY(featureNode)) {
        return EnumEntryName(featureNode);
    }
    const char* name = arv_gc_feature_node_get_name(featureNode);
    return name != nullptr ? name : "";
}

// Every feature node of the document (enumeration entries and structure entries included), in document order.
void CollectFeatureNodes(ArvDomNode* parent, std::vector<ArvGcFeatureNode*>& found)
{
    for (ArvDomNode* child = arv_dom_node_get_first_child(parent); child != nullptr;
         child = arv_dom_node_get_next_sibling(child)) {
        if (ARV_IS_GC_FEATURE_NODE(child)) {
            found.push_back(ARV_GC_FEATURE_NODE(child));
        }
        CollectFeatureNodes(child, found);
    }
}

std::vector<ArvGcFeatureNode*> AllFeatureNodes(ArvGc* genicam)
{
    std::vector<ArvGcFeatureNode*> found;
    ArvDomElement* root = arv_dom_document_get_document_element(ARV_DOM_DOCUMENT(genicam));
    if (root != nullptr) {
        CollectFeatureNodes(ARV_DOM_NODE(root), found);
    }
    return found;
}

// Register-backed nodes offer the raw bytes beside their typed interface.
template <class ValueNode>
std::unique_ptr<ArvNode> MakeValueNode(ArvNodeMap& nodeMap, ArvGcFeatureNode* featureNode, std::string name)
{
    if (ARV_IS_GC_REGISTER(featureNode)) {
        return std::make_unique<ArvRegisterNode<ValueNode>>(nodeMap, featureNode, std::move(name));
    }
    return std::make_unique<ValueNode>(nodeMap, featureNode, std::move(name));
}

std::unique_ptr<ArvNode> MakeNode(ArvNodeMap& nodeMap, ArvGcFeatureNode* featureNode, std::string name)
{
    // Same order as ArvNode::GetPrincipalInterfaceType: an ArvGc enumeration also passes the integer test.
    if (ARV_IS_GC_ENUMERATION(featureNode)) {
        return std::make_unique<ArvEnumerationNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_ENUM_ENTRY(featureNode)) {
        return std::make_unique<ArvEnumEntryNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_CATEGORY(featureNode)) {
        return std::make_unique<ArvCategoryNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_COMMAND(featureNode)) {
        return std::make_unique<ArvCommandNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_BOOLEAN(featureNode)) {
        return std::make_unique<ArvBooleanNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_PORT(featureNode)) {
        return std::make_unique<ArvNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_INTEGER(featureNode)) {
        return MakeValueNode<ArvIntegerNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_FLOAT(featureNode)) {
        return MakeValueNode<ArvFloatNode>(nodeMap, featureNode, std::move(name));
    }
    if (ARV_IS_GC_STRING(featureNode)) {
        return MakeValueNode<ArvStringNode>(nodeMap, featureNode, std::move(name));
    }
    return MakeValueNode<ArvNode>(nodeMap, featureNode, std::move(name));
}

} // namespace

ArvNodeMap::ArvNodeMap(ArvGc* genicam, ArvDevice* device, std::string deviceName)
    : m_genicam(ARV_GC(g_object_ref(genicam))),
      m_device(device != nullptr ? ARV_DEVICE(g_object_ref(device)) : nullptr), m_deviceName(std::move(deviceName)),
      m_mutex(MutexForGenicam(genicam))
{
}

ArvNodeMap::~ArvNodeMap()
{
    {
        const Lock lock(*m_mutex);
        m_nodes.clear();
        g_object_unref(m_genicam);
    }
    if (m_device != nullptr) {
        g_object_unref(m_device);
    }
}

INode* ArvNodeMap::GetNode(const GenICam_3_4::gcstring& Name) const
{
    const Lock lock(*m_mutex);
    const std::string name = Name;
    const auto known = m_nodes.find(name);
    if (known != m_nodes.end()) {
        return known->second.get();
    }
    ArvGcNode* node = name.empty() ? nullptr : arv_gc_get_node(m_genicam, name.c_str());
    if (node != nullptr && ARV_IS_GC_FEATURE_NODE(node)) {
        return NodeFor(ARV_GC_FEATURE_NODE(node));
    }
    ArvGcFeatureNode* entry = FindEnumEntry(name);
    return entry != nullptr ? NodeFor(entry) : nullptr;
}

ArvGcFeatureNode* ArvNodeMap::FindEnumEntry(const std::string& fullName) const
{
    if (fullName.compare(0, std::char_traits<char>::length(kEnumEntryPrefix), kEnumEntryPrefix) != 0) {
        return nullptr;
    }
    for (ArvGcFeatureNode* featureNode : AllFeatureNodes(m_genicam)) {
        if (ARV_IS_GC_ENUM_ENTRY(featureNode) && EnumEntryName(featureNode) == fullName) {
            return featureNode;
        }
    }
    return nullptr;
}

ArvNode* ArvNodeMap::NodeFor(ArvGcFeatureNode* featureNode) const
{
    const Lock lock(*m_mutex);
    std::string name = NodeName(featureNode);
    auto& slot = m_nodes[name];
    if (!slot) {
        slot = MakeNode(const_cast<ArvNodeMap&>(*this), featureNode, std::move(name));
    }
    return slot.get();
}

void ArvNodeMap::GetNodes(NodeList_t& Nodes) const
{
    const Lock lock(*m_mutex);
    Nodes.clear();
    for (ArvGcFeatureNode* featureNode : AllFeatureNodes(m_genicam)) {
        Nodes.push_back(NodeFor(featureNode));
    }
}

GenICam_3_4::gcstring ArvNodeMap::GetDeviceName()
{
    return m_deviceName;
}

bool ArvNodeMap::IsFeatureName(const std::string& name) const
{
    const Lock lock(*m_mutex);
    if (!m_featureNames) {
        // The category tree is fixed by the document, so it is walked once.
        auto names = std::make_unique<std::set<std::string>>();
        std::vector<std::string> pending{"Root"};
        while (!pending.empty()) {
            const std::string current = pending.back();
            pending.pop_back();
            ArvGcNode* node = arv_gc_get_node(m_genicam, current.c_str());
            if (node == nullptr || !names->insert(current).second || !ARV_IS_GC_CATEGORY(node)) {
                continue;
            }
            for (const GSList* feature = arv_gc_category_get_features(ARV_GC_CATEGORY(node)); feature != nullptr;
                 feature = feature->next) {
                pending.emplace_back(static_cast<const char*>(feature->data));
            }
        }
        m_featureNames = std::move(names);
    }
    return m_featureNames->count(name) != 0;
}

} // namespace GenApi_3_4
