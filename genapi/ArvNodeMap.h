#pragma once

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>

#include "genapi/ArvForward.h"
#include "genapi/INodeMap.h"

namespace GenApi_3_4 {

class ArvNode;

// A node map over an Aravis GenICam interpreter. ArvGc is not thread-safe, so every access through this
// node map and its nodes holds one recursive mutex, shared by all node maps over the same ArvGc.
class ArvNodeMap final : public INodeMap {
public:
    using Lock = std::lock_guard<std::recursive_mutex>;

    // Takes a reference on genicam and, when not null, on device (which owns the interpreter then).
    ArvNodeMap(ArvGc* genicam, ArvDevice* device, std::string deviceName);
    ~ArvNodeMap() override;
    ArvNodeMap(const ArvNodeMap&) = delete;
    ArvNodeMap& operator=(const ArvNodeMap&) = delete;

    INode* GetNode(const GenICam_3_4::gcstring& Name) const override;
    void GetNodes(NodeList_t& Nodes) const override;
    GenICam_3_4::gcstring GetDeviceName() override;

    std::recursive_mutex& Mutex() const { return *m_mutex; }
    ArvGc* Genicam() const { return m_genicam; }
    // Our node for an Aravis feature node of this interpreter, made on first use.
    ArvNode* NodeFor(ArvGcFeatureNode* featureNode) const;
    // True when the node is reachable from the category "Root" (GenApi's definition of a feature).
    bool IsFeatureName(const std::string& name) const;

private:
    ArvGcFeatureNode* FindEnumEntry(const std::string& fullName) const;

    ArvGc* m_genicam;
    ArvDevice* m_device;
    std::string m_deviceName;
    std::shared_ptr<std::recursive_mutex> m_mutex;
    mutable std::unordered_map<std::string, std::unique_ptr<ArvNode>> m_nodes;
    mutable std::unique_ptr<std::set<std::string>> m_featureNames;
};

} // namespace GenApi_3_4
