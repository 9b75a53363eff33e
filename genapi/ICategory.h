#pragma once

#include "genapi/IValue.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

// A grouping node: the features (and sub-categories) shown under it.
struct ICategory : virtual public IValue {
    virtual void GetFeatures(FeatureList_t& Features) const = 0;
};

} // namespace GenApi_3_4
