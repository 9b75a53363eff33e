#include "genapi/ArvCommandNode.h"

#include <arv.h>

#include <cstring>
#include <mutex>

#include "genapi/ArvNodeMap.h"
#include "genapi/GCException.h"

namespace GenApi_3_4 {

EAccessMode ArvCommandNode::OwnAccessMode() const
{
    // ArvGc calls a command that writes its own <Value> read-only; GenApi lets it be executed.
    if (!HasPropertyElement("pValue")) {
        const ArvGcAccessMode imposed = arv_gc_feature_node_get_imposed_access_mode(FeatureNode());
        return imposed == ARV_GC_ACCESS_MODE_RO ? RO : imposed == ARV_GC_ACCESS_MODE_WO ? WO : RW;
    }
    return ArvNode::OwnAccessMode();
}

void ArvCommandNode::Execute(bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("Execute");
    }
    CallArv("Execute", [&](GError** e) { arv_gc_command_execute(ARV_GC_COMMAND(FeatureNode()), e); });
}

int64_t ArvCommandNode::ReadProperty(const char* literalName, const char* pointerName) const
{
    for (ArvDomNode* child = arv_dom_node_get_first_child(ARV_DOM_NODE(FeatureNode())); child != nullptr;
         child = arv_dom_node_get_next_sibling(child)) {
        const char* tag = arv_dom_node_get_node_name(child);
        if (ARV_IS_GC_PROPERTY_NODE(child) && tag != nullptr &&
            (std::strcmp(tag, literalName) == 0 || std::strcmp(tag, pointerName) == 0)) {
            return CallArv("IsDone",
                           [&](GError** e) { return arv_gc_property_node_get_int64(ARV_GC_PROPERTY_NODE(child), e); });
        }
    }
    Throw<GenICam_3_4::LogicalErrorException>(std::string("Command has no ") + literalName + ".",
                                              "LogicalErrorException", "IsDone");
}

bool ArvCommandNode::IsDone(bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("IsDone");
    }
    // A command over its own <Value> completes when written; one over a device register is done once the
    // device has cleared the command value again (self-clearing register).
    if (!HasPropertyElement("pValue")) {
        return true;
    }
    return ReadProperty("Value", "pValue") != ReadProperty("CommandValue", "pCommandValue");
}

} // namespace GenApi_3_4
