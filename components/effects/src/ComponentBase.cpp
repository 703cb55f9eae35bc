#include "qoc/components/ComponentBase.h"

#include "qoc/dsp/stream/DenormalGuard.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kSwitchThreshold = 0.5F;

} // namespace

const GenericParameterInfo* ComponentBase::GetParameterInfo(int index) const {
    return index < GetParameterCount() ? fTable.Find(index) : nullptr;
}

void ComponentBase::OnProcess(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    const DenormalGuard guard;
    const std::int32_t dirtyCount = GetParameterDirtyCount();
    if (dirtyCount != fSeenDirtyCount && TryHoldParameters()) {
        fSeenDirtyCount = dirtyCount;
        ReadParameters(false);
        ReleaseParameters();
    }
    ProcessBlock(block);
}

void ComponentBase::OnReset() noexcept {
    if (!fIsPrepared) return;
    fSeenDirtyCount = GetParameterDirtyCount();
    ResetProcessing();
    ReadParameters(true);
}

ComponentBase::ComponentBase(const char16_t* componentID, ParameterTable table)
    : MultiChannelComponentBase(static_cast<std::size_t>(table.Size())), fComponentID(componentID),
      fTable(std::move(table)) {
    for (int index = 0; index < fTable.Size(); ++index) {
        if (const GenericParameterInfo* info = fTable.Find(index)) StoreParameter(index, info->GetDefault());
    }
}

ComponentBase::~ComponentBase() = default;

void ComponentBase::PrepareProcessing(std::size_t /*maximumBlock*/) {
}

void ComponentBase::ResetProcessing() noexcept {
}

float ComponentBase::Natural(int index) const noexcept {
    return fTable.Find(index)->ToClampedNatural(StoredParameter(static_cast<std::size_t>(index)));
}

int ComponentBase::Item(int index) const noexcept {
    return fTable.Find(index)->ToItem(StoredParameter(static_cast<std::size_t>(index)));
}

bool ComponentBase::IsOn(int index) const noexcept {
    return StoredParameter(static_cast<std::size_t>(index)) >= kSwitchThreshold;
}

void ComponentBase::TellParameter(int index, double natural) noexcept {
    if (std::isnan(natural)) return; // nothing was measured
    const float stored = std::clamp(fTable.Find(index)->ToNormalised(static_cast<float>(natural)), 0.0F, 1.0F);
    if (stored != StoredParameter(static_cast<std::size_t>(index))) StoreParameter(index, stored);
}

void ComponentBase::OnSampleRateChanged() {
    constexpr float kNyquistPerSampleRate = 0.5F;
    for (int index = 0; index < fTable.Size(); ++index) {
        GenericParameterInfo* const info = fTable.Find(index);
        if (info == nullptr) continue;
        const float oldDefault = info->GetDefault();
        info->SetNyquist(GetSampleRate() * kNyquistPerSampleRate);
        // A frequency that nobody has set stays the default frequency at whatever rate.
        const bool isDefault = StoredParameter(static_cast<std::size_t>(index)) == oldDefault;
        if (isDefault && info->GetDefault() != oldDefault) StoreParameter(index, info->GetDefault());
    }
}

void ComponentBase::OnPrepare(std::size_t maximumBlock) {
    PrepareProcessing(maximumBlock);
    fIsPrepared = true;
    OnReset();
}

} // namespace qoc::components
