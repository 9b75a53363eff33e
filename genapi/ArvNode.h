#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "genapi/ArvForward.h"
#include "genapi/INode.h"
#include "genapi/IValue.h"
#include "genapi/NodeErrors.h"

namespace GenApi_3_4 {

class ArvNodeMap;

// A node of an ArvNodeMap: the descriptive properties and access mode every node type shares. The typed
// subclasses add their interface. Every public call holds the node map's mutex.
class ArvNode : public virtual INode, public virtual IValue {
public:
    ArvNode(ArvNodeMap& nodeMap, ArvGcFeatureNode* featureNode, std::string name);
    ~ArvNode() override = default;
    ArvNode(const ArvNode&) = delete;
    ArvNode& operator=(const ArvNode&) = delete;

    // IBase: folds in implemented, available, locked and the node's own access mode.
    EAccessMode GetAccessMode() const override;

    // INode
    GenICam_3_4::gcstring GetName(bool FullQualified = false) const override;
    EInterfaceType GetPrincipalInterfaceType() const override;
    bool GetProperty(const GenICam_3_4::gcstring& PropertyName, GenICam_3_4::gcstring& ValueStr,
                     GenICam_3_4::gcstring& AttributeStr) const override;
    GenICam_3_4::gcstring GetDisplayName() const override;
    GenICam_3_4::gcstring GetToolTip() const override;
    GenICam_3_4::gcstring GetDescription() const override;
    EVisibility GetVisibility() const override;
    bool IsFeature() const override;
    void GetChildren(NodeList_t& Children) const override;
    INodeMap* GetNodeMap() const override;
    GenICam_3_4::gcstring GetDeviceName() const override;

    // IValue
    INode* GetNode() override;
    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) override;

    // True when the node's element has a child element of that name (<Inc>, <pValue> ...).
    bool HasPropertyElement(const char* propertyName) const;

protected:
    // The access the node itself declares, before availability and locking are applied.
    virtual EAccessMode OwnAccessMode() const;

    ArvGcFeatureNode* FeatureNode() const { return m_featureNode; }
    ArvNodeMap& NodeMap() const { return m_nodeMap; }
    const std::string& Name() const { return m_name; }

    // This node, then the nodes its value is read from through pValue, as far as plain Integer and Float nodes
    // pass it on (a Converter's pValue is its raw input, not its value). Ends at a cycle.
    std::vector<const ArvNode*> ValueChain() const;
    // The first representation declared along the value chain; PureNumber, GenApi's default, when none is.
    ERepresentation RepresentationAlongValueChain() const;

    void RequireReadable(const char* operation) const;
    void RequireWritable(const char* operation) const;

    template <class Exception>
    [[noreturn]] void Throw(const std::string& text, const char* exceptionName, const char* operation) const
    {
        ThrowNodeError<Exception>(text, exceptionName, m_name, operation);
    }

    // Runs an Aravis call taking a trailing GError** and turns a reported error into a GenICam exception.
    template <class Call>
    auto CallArv(const char* operation, Call call) const
    {
        GError* error = nullptr;
        if constexpr (std::is_void_v<decltype(call(&error))>) {
            call(&error);
            if (error != nullptr) {
                ThrowForGError(error, m_name, operation);
            }
        } else {
            auto result = call(&error);
            if (error != nullptr) {
                ThrowForGError(error, m_name, operation);
            }
            return result;
        }
    }

    // As CallArv, giving fallback when the call only fails because the property it evaluates is not declared.
    template <class T, class Call>
    T CallArvOr(const char* operation, T fallback, Call call) const
    {
        GError* error = nullptr;
        const T result = call(&error);
        if (error == nullptr) {
            return result;
        }
        if (ConsumeUndefinedPropertyError(error)) {
            return fallback;
        }
        ThrowForGError(error, m_name, operation);
    }

    // As CallArv, with the register cache switched off for the call when ignoreCache is set.
    template <class Call>
    auto ReadArv(const char* operation, bool ignoreCache, Call call) const
    {
        const CacheBypass bypass(*this, ignoreCache);
        return CallArv(operation, call);
    }

private:
    class CacheBypass {
    public:
        CacheBypass(const ArvNode& node, bool active);
        ~CacheBypass();
        CacheBypass(const CacheBypass&) = delete;
        CacheBypass& operator=(const CacheBypass&) = delete;

    private:
        ArvGc* m_genicam;
        int m_savedPolicy;
    };

    ArvNodeMap& m_nodeMap;
    ArvGcFeatureNode* m_featureNode;
    std::string m_name;
};

} // namespace GenApi_3_4
