#include "qoc/components/MultiChannelComponentBase.h"

namespace qoc::components {

MultiChannelComponentBase::~MultiChannelComponentBase() = default;

bool MultiChannelComponentBase::GetDisplayParameterValue(int /*index*/, float& /*value*/) {
    return false;
}

} // namespace qoc::components
