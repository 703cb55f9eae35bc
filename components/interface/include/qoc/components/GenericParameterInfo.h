#pragma once

#include "kroaudiofilterhost/AudioFilterParameterInfo.h"
#include "qoc/components/ParameterRow.h"

namespace qoc::components {

// The parameter description of the effects of this library, made from one table row. Owned by its effect.
class GenericParameterInfo : public kroaudiofilterhost::AudioFilterParameterInfo {
public:
    // `number` counts parameters that share a row from 1; 0 for a row that stands once.
    explicit GenericParameterInfo(const ParameterRow& row, int number = 0);
    ~GenericParameterInfo() override;

    // The natural range.
    float GetLoBound() const noexcept { return fLo; }
    float GetHiBound() const noexcept { return fHi; }
    const ParameterRow& GetRow() const noexcept { return fRow; }

    // Half the sample rate in hertz, for rows whose range follows it. While the sound thread does not run the effect.
    void SetNyquist(float hertz) noexcept;
    // Another upper end for a range that follows the number of channels. Under the same rule.
    void SetHiBound(float hi) noexcept { fHi = hi; }

    // The natural value brought into the range: the nearest item's value for a choice. `lo` when `normalised` is no
    // number.
    float ToClampedNatural(float normalised) const noexcept;

    float ToNatural(float normalised) const override;
    float ToNormalised(float natural) const override;
    std::string GetID() const override;
    krocore::string16 GetName() const override;
    krocore::string16 GetUnit() const override;
    float GetDefault() const override;
    Kind GetKind() const override;
    int GetDecimalPlaces() const override { return fRow.decimals; }
    Scale GetScale() const override;
    bool IsWhole() const override { return (fRow.flags & kParameterWhole) != 0; }
    bool IsAutomatable() const override { return (fRow.flags & kParameterNotAutomatable) == 0; }
    bool NeedsPrepare() const override { return (fRow.flags & kParameterNeedsPrepare) != 0; }
    bool IsReadOnly() const override { return (fRow.flags & kParameterReadOnly) != 0; }
    std::string GetLinkID() const override { return fRow.linkedBy; }
    std::string GetCurveID() const override { return fRow.curve; }
    int GetItemCount() const override { return static_cast<int>(fRow.items.size()); }
    krocore::string16 GetItemName(int item) const override;
    int ToItem(float normalised) const override;
    float FromItem(int item) const override;

private:
    float ItemValue(int item) const noexcept;
    int NearestItem(float natural) const noexcept;

    ParameterRow fRow;
    int fNumber;
    float fLo;
    float fHi;
};

} // namespace qoc::components
