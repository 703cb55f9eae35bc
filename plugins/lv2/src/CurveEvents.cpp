#include "qolv2/CurveEvents.h"

#include <lv2/atom/util.h>
#include <lv2/patch/patch.h>

#include <algorithm>
#include <cmath>

namespace qolv2 {

CurveEvents::CurveEvents(const HostFeatures& host, const kroaudiofilterhost::AudioFilter& filter)
    : fObject(host.Map(LV2_ATOM__Object)), fVector(host.Map(LV2_ATOM__Vector)), fFloat(host.Map(LV2_ATOM__Float)),
      fURID(host.Map(LV2_ATOM__URID)), fSet(host.Map(LV2_PATCH__Set)), fGet(host.Map(LV2_PATCH__Get)),
      fProperty(host.Map(LV2_PATCH__property)), fValue(host.Map(LV2_PATCH__value)) {
    for (const auto& curve : filter.GetCurves())
        fCurves.push_back({host.Map(("urn:qoaudio:curve:" + curve.id).c_str()), &curve});
}

std::optional<CurveEvents::Setting> CurveEvents::ReadSet(const LV2_Atom_Object& object) const noexcept {
    if (fSet == 0 || object.body.otype != fSet) return {};
    const LV2_Atom* property = nullptr;
    const LV2_Atom* value = nullptr;
    lv2_atom_object_get(&object, fProperty, &property, fValue, &value, 0);
    if (property == nullptr || property->type != fURID || value == nullptr || value->type != fVector) return {};
    const auto curve =
        std::ranges::find(fCurves, reinterpret_cast<const LV2_Atom_URID*>(property)->body, &Curve::property);
    if (curve == fCurves.end() || value->size < sizeof(LV2_Atom_Vector_Body)) return {};
    const auto& vector = reinterpret_cast<const LV2_Atom_Vector*>(value)->body;
    const std::size_t count = (value->size - sizeof vector) / sizeof(float);
    if (vector.child_type != fFloat || vector.child_size != sizeof(float) || count > kMostValues || count % 2 != 0)
        return {};
    const std::span values(reinterpret_cast<const float*>(&vector + 1), count);
    if (!std::ranges::all_of(values, [](float number) { return std::isfinite(number); })) return {};
    return Setting{static_cast<std::size_t>(curve - fCurves.begin()), values};
}

bool CurveEvents::IsGet(const LV2_Atom_Object& object) const noexcept {
    return fGet != 0 && object.body.otype == fGet;
}

void CurveEvents::WriteSet(LV2_Atom_Forge& forge, const Setting& setting) const noexcept {
    LV2_Atom_Forge_Frame frame;
    lv2_atom_forge_object(&forge, &frame, 0, fSet);
    lv2_atom_forge_key(&forge, fProperty);
    lv2_atom_forge_urid(&forge, fCurves[setting.curve].property);
    lv2_atom_forge_key(&forge, fValue);
    lv2_atom_forge_vector(&forge, sizeof(float), fFloat, static_cast<std::uint32_t>(setting.values.size()),
                          setting.values.data());
    lv2_atom_forge_pop(&forge, &frame);
}

void CurveEvents::WriteGet(LV2_Atom_Forge& forge) const noexcept {
    LV2_Atom_Forge_Frame frame;
    lv2_atom_forge_object(&forge, &frame, 0, fGet);
    lv2_atom_forge_pop(&forge, &frame);
}

std::size_t CurveEvents::ValuesOf(const kroaudiofilterhost::AudioFilter& filter, std::size_t curve,
                                  Values& values) const noexcept {
    const kroaudiofilterhost::AudioFilterCurve& its = *fCurves[curve].described;
    const auto natural = [&](int parameter) {
        return filter.GetParameterInfo(parameter)->ToNatural(filter.GetParameterValue(parameter));
    };
    const auto most = std::min(static_cast<std::size_t>(its.mostPoints), kMostValues / 2);
    const auto points = std::min(most, static_cast<std::size_t>(std::lround(std::max(0.0F, natural(its.countIndex)))));
    for (std::size_t i = 0; i < 2 * points; ++i)
        values[i] = natural(its.firstPoint + static_cast<int>(i));
    return 2 * points;
}

} // namespace qolv2
