#include "qolv2/PluginPorts.h"

#include <algorithm>
#include <cmath>

namespace qolv2 {

namespace {

using Kind = kroaudiofilterhost::AudioFilterParameterInfo::Kind;

} // namespace

float ParameterPort::Minimum() const {
    return info->GetKind() == Kind::kNumber ? info->GetMinimum() : 0;
}

float ParameterPort::Maximum() const {
    switch (info->GetKind()) {
    case Kind::kSwitch: return 1;
    case Kind::kChoice: return static_cast<float>(info->GetItemCount() - 1);
    case Kind::kNumber: break;
    }
    return info->GetMaximum();
}

float ParameterPort::Default() const {
    return std::clamp(FromStored(info->GetDefault()), Minimum(), Maximum());
}

float ParameterPort::FromStored(float stored) const noexcept {
    switch (info->GetKind()) {
    case Kind::kSwitch: return stored >= 0.5F ? 1 : 0;
    case Kind::kChoice: return static_cast<float>(info->ToItem(stored));
    case Kind::kNumber: break;
    }
    return info->ToNatural(stored);
}

float ParameterPort::ToStored(float value) const noexcept {
    switch (info->GetKind()) {
    case Kind::kSwitch: return value >= 0.5F ? 1 : 0;
    case Kind::kChoice: return info->FromItem(static_cast<int>(std::lround(std::clamp(value, 0.0F, Maximum()))));
    case Kind::kNumber: break;
    }
    return info->ToNormalised(std::clamp(value, Minimum(), Maximum()));
}

PluginPorts::PluginPorts(const kroaudiofilterhost::AudioFilter& filter)
    : fInputs(filter.GetNumberOfInputChannels()), fOutputs(filter.GetNumberOfOutputChannels()) {
    for (int i = 0; i < filter.GetParameterCount(); ++i) {
        const auto* const info = filter.GetParameterInfo(i);
        if (info != nullptr && info->GetCurveID().empty()) fParameters.push_back({i, info});
    }
}

} // namespace qolv2
