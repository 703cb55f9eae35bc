#include "SetEffects.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

namespace bench {

using namespace qoc::components;

namespace {

void SetNatural(const Filter& filter, int parameter, float value) {
    filter->SetParameterValue(parameter, filter->GetParameterInfo(parameter)->ToNormalised(value));
}

// The points denser at low frequencies, by turns at two levels.
Filter DrawnCurve(const char16_t* effect, int updating, int count, int firstPoint) {
    Filter filter = CreateEffect(effect);
    filter->SetParameterValueQuietly(updating, 1);
    filter->SetParameterValueQuietly(count, 1);
    for (int point = 0; point < 128; ++point) {
        const float place = static_cast<float>(point) / 127;
        filter->SetParameterValue(firstPoint + 2 * point, place * place * place);
        filter->SetParameterValue(firstPoint + 2 * point + 1, point % 2 == 0 ? 0.5F : 0.7F);
    }
    filter->SetParameterValueQuietly(updating, 0);
    return filter;
}

} // namespace

Filter DrawnFFTFilter() {
    return DrawnCurve(kFFTFilterComponentID, kFFTFilterUpdating, kFFTFilterPointCount, kFFTFilterFirstPoint);
}

Filter DrawnPhaseShifter() {
    return DrawnCurve(kGraphicPhaseShifterComponentID, kPhaseShifterUpdating, kPhaseShifterPointCount,
                      kPhaseShifterFirstPoint);
}

Filter SetGraphicEQ() {
    Filter filter = CreateEffect(kGraphicEQ30BandsComponentID);
    for (int band = 0; band < 30; ++band)
        filter->SetParameterValue(kGraphicEQFirstGain + band, band % 2 == 0 ? 0.4F : 0.6F);
    return filter;
}

Filter SetParametricEQ() {
    Filter filter = CreateEffect(kParametricEQComponentID);
    for (int band = 0; band < 9; ++band)
        filter->SetParameterValue(kParametricEQFirstEnable + band, 1);
    for (int band = 0; band < 7; ++band)
        filter->SetParameterValue(kParametricEQFirstGain + band, band % 2 == 0 ? 0.4F : 0.6F);
    for (int pass = 0; pass < 2; ++pass)
        filter->SetParameterValue(kParametricEQFirstSlope + pass, 1);
    return filter;
}

Filter IntraClipAt(float decibels) {
    Filter filter = CreateEffect(kIntraClipComponentComponentID);
    SetNatural(filter, kIntraClipLevel, decibels);
    return filter;
}

Filter PitchShiftBy(float ratio) {
    Filter filter = CreateEffect(kPitchShiftComponentID);
    SetNatural(filter, kPitchShiftRatio, ratio);
    SetNatural(filter, kPitchShiftPrecision, 2);
    return filter;
}

} // namespace bench
