#pragma once

#include "../ContainerAdapter.h"

namespace krotarnlio {

// Children that are in the layout while a cell has a certain value: "optional". Otherwise they take no room.
//   bind   the cell
//   value  what it is compared with; true if not given
class OptionalAdapter final : public ContainerAdapter {
public:
    explicit OptionalAdapter(const uit::lio::WidgetContext& context) : fContext(context) {}
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    bool ShowsChildren() const override { return fCell == fValue; }

private:
    const uit::lio::WidgetContext& fContext;
    orrin::any_regular_t fValue{true};
    orrin::any_regular_t fCell{true};
};

} // namespace krotarnlio
