#include "workbench/session/ScriptFilter.h"

#include "orrin/sheet.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace workbench {

using kroaudiofilterhost::AudioFilterBlock;
using kroaudiofilterhost::AudioFilterParameterInfo;
using orrin::name_t;

// A parameter as the sheet sees it: a normalised number.
class ScriptFilter::Info final : public AudioFilterParameterInfo {
public:
    Info(std::size_t index, float initial) : fID("in" + std::to_string(index)), fDefault(initial) {}

    float ToNatural(float normalised) const override { return normalised; }
    float ToNormalised(float natural) const override { return natural; }
    std::string GetID() const override { return fID; }
    krocore::string16 GetName() const override { return krocore::FromASCII(fID); }
    float GetDefault() const override { return fDefault; }
    int GetDecimalPlaces() const override { return 3; }

private:
    std::string fID;
    float fDefault;
};

ScriptFilter::ScriptFilter(std::string scripts) : AudioFilter(kMostParameters), fScripts(std::move(scripts)) {
}

ScriptFilter::~ScriptFilter() = default;

void ScriptFilter::SetDefaults(std::span<const float> values) {
    const std::size_t count = std::min(values.size(), kMostParameters);
    std::vector<std::unique_ptr<Info>> infos;
    for (std::size_t i = 0; i < count; ++i) {
        const float before = i < fInfos.size() ? fInfos[i]->GetDefault() : 0.0F;
        if (StoredParameter(i) == before) StoreParameter(static_cast<int>(i), values[i]);
        infos.push_back(std::make_unique<Info>(i, values[i]));
    }
    fInfos = std::move(infos);
}

krocore::string16 ScriptFilter::GetComponentID() const {
    return u"workbench.Scripts";
}

const AudioFilterParameterInfo* ScriptFilter::GetParameterInfo(int index) const {
    const auto at = static_cast<std::size_t>(index);
    return index >= 0 && at < fInfos.size() ? fInfos[at].get() : nullptr;
}

void ScriptFilter::OnProcess(const AudioFilterBlock& block) noexcept {
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
        if (block.outputs[channel] != block.inputs[channel])
            std::copy_n(block.inputs[channel], block.frames, block.outputs[channel]);
}

bool ScriptFilter::GetResponseCurve(int /*index*/, std::size_t size, std::vector<float>& values) const {
    if (size == 0) return false;
    values.assign(size, 0.0F);
    return true;
}

namespace {

// A stand-in for what the panel's functions and names will give: inputs don't depend on it.
orrin::any_regular_t Anything(name_t /*function*/, const orrin::any_regular_t& /*arguments*/) {
    return {};
}

orrin::any_regular_t Itself(name_t name) {
    return name;
}

} // namespace

std::optional<std::vector<float>> InputDefaults(const std::string& sheetScript) {
    orrin::sheet_t sheet;
    sheet.machine().set_function_lookup(&Anything);
    sheet.machine().set_variable_lookup(&Itself);
    try {
        sheet.load(sheetScript, "");
    } catch (const orrin::error_t&) {
        return {}; // whoever opens the panel is told
    }
    std::vector<float> values;
    for (const orrin::cell_info_t& cell : sheet.cells()) {
        const std::string_view text = cell.name.text();
        if (cell.kind != orrin::cell_kind_t::input || !text.starts_with("in")) continue;
        std::size_t index = ScriptFilter::kMostParameters;
        const auto [end, error] = std::from_chars(text.data() + 2, text.data() + text.size(), index);
        if (error != std::errc() || end != text.data() + text.size() || index >= ScriptFilter::kMostParameters)
            continue;
        values.resize(std::max(values.size(), index + 1));
        values[index] = static_cast<float>(sheet.get(cell.name).get_or<double>(0));
    }
    return values;
}

} // namespace workbench
