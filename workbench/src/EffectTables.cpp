#include "workbench/EffectTables.h"

#include "workbench/EffectNames.h"
#include "workbench/PanelParts.h"
#include "workbench/PanelsLibrary.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <vector>

namespace workbench {

using kroaudiofilterhost::AudioFilterParameterInfo;
using Kind = AudioFilterParameterInfo::Kind;

namespace {

using Row = std::vector<std::string>;

constexpr std::size_t kColumnGap = 2;
constexpr std::size_t kStereo = 2;

// Characters as a terminal counts them: UTF-8 without its continuation bytes.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string FormatTabbed(const std::vector<Row>& rows) {
    std::string text;
    for (const Row& row : rows)
        text += fmt::format("{}\n", fmt::join(row, "\t"));
    return text;
}

// Columns as wide as their widest cell.
std::string Format(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], Width(row[column]));
    std::string text;
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            text += row[column];
            const bool isLast = column + 1 == row.size();
            if (!isLast) text.append(widths[column] - Width(row[column]) + kColumnGap, ' ');
        }
        text += '\n';
    }
    return text;
}

std::string Abilities(const qoc::components::EffectDescription& effect) {
    if (effect.create == nullptr) return "-";
    return NewPanel(effect.create()) ? "sound, panel" : "sound";
}

std::string RangeOf(const AudioFilterParameterInfo& info) {
    if (info.GetKind() == Kind::kNumber)
        return krocore::ToStdString(info.ToText(0) + krocore::string16(u" ... ") + info.ToText(1));
    if (info.GetKind() == Kind::kSwitch)
        return krocore::ToStdString(info.ToText(0) + krocore::string16(u", ") + info.ToText(1));
    std::string items;
    for (int item = 0; item < info.GetItemCount(); ++item)
        items += (item == 0 ? "" : ", ") + krocore::ToStdString(info.GetItemName(item));
    return items;
}

} // namespace

std::string EffectTable() {
    std::vector<Row> rows = {{"NAME", "EFFECT", "CATEGORY", "HAS", "PANEL FILES"}};
    for (const auto& effect : qoc::components::AllEffects())
        rows.push_back({std::string(effect.shortName), krocore::ToStdString(effect.DisplayName()),
                        krocore::ToStdString(qoc::components::CategoryName(effect.category)), Abilities(effect),
                        PanelFilesText(effect)});
    return Format(rows);
}

std::string ParameterTableOf(std::string_view effectName, TableFormat format) {
    const auto filter = NewFilter(EffectFromName(effectName));
    constexpr std::size_t kBlock = 512;
    filter->Prepare(filter->GetSampleRate(), kBlock, kromediatypes::AudioChannelLayout::ForChannelCount(kStereo));
    std::vector<Row> rows = {{"INDEX", "ID", "NAME", "RANGE", "DEFAULT"}};
    for (int index = 0; index < filter->GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* const info = filter->GetParameterInfo(index);
        if (info == nullptr) continue;
        rows.push_back({fmt::format("{}", index), info->GetID(), krocore::ToStdString(info->GetName()), RangeOf(*info),
                        info->IsReadOnly() ? "read only" : krocore::ToStdString(info->ToText(info->GetDefault()))});
    }
    return format == TableFormat::kTabbed ? FormatTabbed(rows) : Format(rows);
}

} // namespace workbench
