#include "genapi/ArvCategoryNode.h"

#include <arv.h>

#include <mutex>

#include "genapi/ArvNodeMap.h"

namespace GenApi_3_4 {

void ArvCategoryNode::GetFeatures(FeatureList_t& Features) const
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    Features.clear();
    for (const GSList* feature = arv_gc_category_get_features(ARV_GC_CATEGORY(FeatureNode())); feature != nullptr;
         feature = feature->next) {
        // A pFeature naming a node the document lacks is skipped rather than shown as an empty entry.
        if (auto* value = dynamic_cast<IValue*>(NodeMap().GetNode(static_cast<const char*>(feature->data)))) {
            Features.push_back(value);
        }
    }
}

} // namespace GenApi_3_4
