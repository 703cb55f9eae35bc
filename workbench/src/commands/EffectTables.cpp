#include "workbench/commands/EffectTables.h"

#include "host/FactoryPresets.h"
#include "host/UserPresets.h"
#include "krocore/FilePath.h"
#include "krocore/NumberFormat.h"
#include "workbench/session/EffectNames.h"
#include "workbench/session/PanelParts.h"
#include "workbench/session/PanelsLibrary.h"
#include "workbench/views/EffectSearch.h"

#include <cmath>
#include <optional>
#include <vector>

namespace workbench {

using kroaudiofilterhost::AudioFilterParameterInfo;
using Kind = AudioFilterParameterInfo::Kind;
using Strings = std::vector<std::string>;

namespace {

constexpr std::size_t kBlock = 512;

std::string Abilities(const qoc::components::EffectDescription& effect, bool hasPanel) {
    if (effect.create == nullptr) return "-";
    return hasPanel ? "sound, panel" : "sound";
}

Strings ItemsOf(const AudioFilterParameterInfo& info) {
    Strings items;
    for (int item = 0; item < info.GetItemCount(); ++item)
        items.push_back(krocore::ToStdString(info.GetItemName(item)));
    return items;
}

std::string RangeText(const AudioFilterParameterInfo& info) {
    if (info.GetKind() == Kind::kNumber)
        return krocore::ToStdString(info.ToText(0) + krocore::string16(u" ... ") + info.ToText(1));
    if (info.GetKind() == Kind::kSwitch)
        return krocore::ToStdString(info.ToText(0) + krocore::string16(u", ") + info.ToText(1));
    std::string text;
    for (const std::string& item : ItemsOf(info))
        text += (text.empty() ? "" : ", ") + item;
    return text;
}

// The number with the fewest decimals that is stored as the same value: what rounding has added is left out.
Table::Cell NaturalNumber(const AudioFilterParameterInfo& info, float normalised) {
    constexpr int kMostDecimals = 6;
    constexpr float kStoredStep = 1e-7F;
    const double natural = info.ToNatural(normalised);
    if (!std::isfinite(natural)) return {};
    for (int decimals = 0; decimals < kMostDecimals; ++decimals) {
        const double scale = std::pow(10.0, decimals);
        const double rounded = std::round(natural * scale) / scale;
        if (std::abs(info.ToNormalised(static_cast<float>(rounded)) - normalised) <= kStoredStep)
            return rounded + 0.0; // not -0
    }
    return krocore::ParsePlainNumber(krocore::FormatShortest(static_cast<float>(natural))).value_or(natural);
}

Table::Cell DefaultOf(const AudioFilterParameterInfo& info) {
    if (info.IsReadOnly()) return {};
    const float normalised = info.GetDefault();
    switch (info.GetKind()) {
    case Kind::kSwitch: return normalised >= 0.5F;
    case Kind::kChoice: return krocore::ToStdString(info.GetItemName(info.ToItem(normalised)));
    case Kind::kNumber: break;
    }
    return NaturalNumber(info, normalised);
}

const char* KindName(Kind kind) {
    switch (kind) {
    case Kind::kSwitch: return "switch";
    case Kind::kChoice: return "choice";
    case Kind::kNumber: break;
    }
    return "number";
}

// Whether the stored value runs against the natural one.
bool IsDescending(const AudioFilterParameterInfo& info) {
    return info.GetKind() == Kind::kNumber && info.ToNatural(1) < info.ToNatural(0);
}

// What programs get about the range: numbers have two ends, a unit and a scale, choices their items.
struct Range {
    Table::Cell minimum = {};
    Table::Cell maximum = {};
    Table::Cell unit = {};
    Table::Cell scale = {};
    Table::Cell decimals = {};
    Table::Cell items = {};
};

Range RangeOf(const AudioFilterParameterInfo& info) {
    if (info.GetKind() == Kind::kChoice) return {.items = ItemsOf(info)};
    if (info.GetKind() == Kind::kSwitch) return {};
    const bool isLogarithmic = info.GetScale() == AudioFilterParameterInfo::Scale::kLogarithmic;
    const bool isDescending = IsDescending(info);
    return {.minimum = NaturalNumber(info, isDescending ? 1 : 0),
            .maximum = NaturalNumber(info, isDescending ? 0 : 1),
            .unit = krocore::ToStdString(info.GetUnit()),
            .scale = std::string(isLogarithmic ? "logarithmic" : "linear"),
            .decimals = static_cast<double>(info.GetDecimalPlaces())};
}

Table::Row ParameterRow(int index, const AudioFilterParameterInfo& info) {
    const Range range = RangeOf(info);
    const auto text = info.IsReadOnly() ? krocore::string16(u"read only") : info.ToText(info.GetDefault());
    return {static_cast<double>(index),
            info.GetID(),
            krocore::ToStdString(info.GetName()),
            std::string(KindName(info.GetKind())),
            range.minimum,
            range.maximum,
            DefaultOf(info),
            range.unit,
            range.scale,
            range.decimals,
            range.items,
            info.IsAutomatable(),
            info.IsReadOnly(),
            info.GetLinkID(),
            IsDescending(info),
            info.IsWhole(),
            info.NeedsPrepare(),
            info.GetCurveID(),
            RangeText(info),
            krocore::ToStdString(text)};
}

} // namespace

Table EffectTable(std::string_view words) {
    const bool isSearch = words.find_first_not_of(' ') != std::string_view::npos;
    Table table({{"name", "NAME"},
                 {"title", "EFFECT"},
                 {"category", "CATEGORY"},
                 {"sound", ""},
                 {"panel", ""},
                 {"", "HAS"},
                 {"panelFiles", "PANEL FILES"},
                 {isSearch ? "foundBy" : "", isSearch ? "FOUND BY" : ""}});
    const EffectSearch search{qohost::UserPresets(qohost::UserPresets::UsualFolder())};
    for (const auto& effect : qoc::components::AllEffects()) {
        const auto hit = search.Find(effect, krocore::ToUTF16(words));
        if (!hit) continue;
        const bool hasSound = effect.create != nullptr;
        const bool hasPanel = hasSound && NewPanel(effect.create()) != nullptr;
        table.Add({std::string(effect.shortName), krocore::ToStdString(effect.DisplayName()),
                   krocore::ToStdString(qoc::components::CategoryName(effect.category)), hasSound, hasPanel,
                   Abilities(effect, hasPanel), PanelFilesText(effect), krocore::ToStdString(hit->by)});
    }
    return table;
}

Table ParameterTable(std::string_view effectName, const SoundFormat& format) {
    const auto filter = NewFilter(EffectFromName(effectName));
    filter->Prepare(format.sampleRate, kBlock, kromediatypes::AudioChannelLayout::ForChannelCount(format.channels));
    Table table({{"index", "INDEX"},   {"id", "ID"},     {"name", "NAME"},       {"kind", ""},
                 {"minimum", ""},      {"maximum", ""},  {"default", ""},        {"unit", ""},
                 {"scale", ""},        {"decimals", ""}, {"items", ""},          {"automatable", ""},
                 {"readOnly", ""},     {"linkedBy", ""}, {"descending", ""},     {"whole", ""},
                 {"needsPrepare", ""}, {"curve", ""},    {"rangeText", "RANGE"}, {"defaultText", "DEFAULT"}});
    for (int index = 0; index < filter->GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* const info = filter->GetParameterInfo(index);
        if (info != nullptr) table.Add(ParameterRow(index, *info));
    }
    return table;
}

Table PresetTable(std::string_view effectName) {
    const qoc::components::EffectDescription& effect = EffectFromName(effectName);
    const qohost::UserPresets saved(qohost::UserPresets::UsualFolder());
    Table table({{"name", "NAME"}, {"origin", ""}, {"file", ""}});
    table.HideHeadings();
    for (const qohost::Preset& preset : qohost::FactoryPresets(effect))
        table.Add({preset.name, std::string("factory"), {}});
    for (const std::string& name : saved.Names(effect.shortName))
        table.Add({name, std::string("user"), krocore::PathText(saved.FileOf(effect.shortName, name))});
    return table;
}

} // namespace workbench
