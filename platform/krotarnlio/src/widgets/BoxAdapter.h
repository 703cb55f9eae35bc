#pragma once

#include "../ContainerAdapter.h"

namespace krotarnlio {

// Arranges its children: "row", "column", and "subview" around a whole layout. Has no attributes but those of every
// widget.
class BoxAdapter final : public ContainerAdapter {
public:
    explicit BoxAdapter(Placement placement, float margin = 0) : fPlacement(placement), fMargin(margin) {}

    Placement DefaultPlacement() const override { return fPlacement; }
    Margins DefaultMargins() const override { return {fMargin, fMargin, fMargin, fMargin}; }
    void SetAttribute(int /*row*/, const orrin::any_regular_t& /*value*/) override {}

private:
    Placement fPlacement;
    float fMargin;
};

} // namespace krotarnlio
