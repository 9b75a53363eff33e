#pragma once

#include "genapi/ArvNode.h"
#include "genapi/ICategory.h"

namespace GenApi_3_4 {

class ArvCategoryNode final : public ArvNode, public virtual ICategory {
public:
    using ArvNode::ArvNode;

    void GetFeatures(FeatureList_t& Features) const override;

protected:
    EAccessMode OwnAccessMode() const override { return RO; }
};

} // namespace GenApi_3_4
