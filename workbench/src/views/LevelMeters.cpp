#include "workbench/views/LevelMeters.h"

#include "krocore/Localizer.h"
#include "kroui/ui/PixelGrid.h"
#include "workbench/commands/TextOfSound.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace workbench {

namespace {

constexpr float kLowest = -60; // dB, left end of the bars
constexpr std::array<float, 6> kTicks = {-60, -48, -36, -24, -12, 0};

constexpr float kWideMargin = 16;
constexpr float kNarrowMargin = 8;
constexpr float kNarrow = 200;
constexpr float kTitleHeight = 40;
constexpr float kScaleHeight = 20;
constexpr float kBottomMargin = 8;
constexpr float kWidestRow = 24;
constexpr float kNarrowestRow = 8;
constexpr float kThickestBar = 8;
constexpr float kNameWidth = 38;
constexpr float kValueWidth = 40;
constexpr float kGap = 8;
constexpr float kMarkWidth = 2;
constexpr float kRadius = 6;
constexpr kroui::limner::Font kSmallFont{10};
constexpr kroui::limner::Font kTitleFont{12, true};

kroui::limner::TextPlacement RightAligned() {
    return {.alignment = kroui::limner::TextAlignment::kRight};
}

} // namespace

void LevelMeters::SetChannels(const std::vector<krocore::string16>& inputs,
                              const std::vector<krocore::string16>& outputs) {
    fBars.clear();
    const auto add = [this](const char* key, const std::vector<krocore::string16>& names) {
        for (const krocore::string16& name : names)
            fBars.push_back(
                {krocore::ReplacePlaceholders(krocore::Localize(key), {name}), {}, LevelText(MeterBallistics::kFloor)});
    };
    add("$$$/Workbench/InputLevel=in @0", inputs);
    add("$$$/Workbench/OutputLevel=out @0", outputs);
    UI_Invalidate();
}

void LevelMeters::Feed(const std::vector<float>& peaks, float seconds) {
    for (std::size_t row = 0; row < std::min(fBars.size(), peaks.size()); ++row) {
        Bar& bar = fBars[row];
        const float oldMark = bar.level.Mark();
        if (!bar.level.Feed(peaks[row], seconds)) continue;
        if (bar.level.Mark() != oldMark) bar.text = LevelText(bar.level.Mark());
        UI_InvalidateRect(RowRect(row));
    }
}

bool LevelMeters::IsAtRest() const {
    return std::all_of(fBars.begin(), fBars.end(), [](const Bar& bar) { return bar.level.IsAtRest(); });
}

float LevelMeters::WantedHeight() const {
    return kTitleHeight + static_cast<float>(fBars.size()) * kWidestRow + kScaleHeight + kBottomMargin;
}

float LevelMeters::RowHeight() const {
    const float room = UI_GetFrame().height - kTitleHeight - kScaleHeight - kBottomMargin;
    return std::clamp(std::floor(room / static_cast<float>(std::max<std::size_t>(1, fBars.size()))), kNarrowestRow,
                      kWidestRow);
}

float LevelMeters::Margin() const {
    return UI_GetFrame().width < kNarrow ? kNarrowMargin : kWideMargin;
}

kroui::Rect LevelMeters::RowRect(std::size_t row) const {
    const float height = RowHeight();
    return {Margin(), kTitleHeight + static_cast<float>(row) * height, UI_GetFrame().width - 2 * Margin(), height};
}

kroui::Rect LevelMeters::BarRect(std::size_t row) const {
    const kroui::Rect whole = RowRect(row);
    const float thickness = std::min(kThickestBar, whole.height - 2);
    const float left = whole.left + kNameWidth + kGap;
    return {left, whole.top + std::floor((whole.height - thickness) / 2), whole.Right() - kValueWidth - left,
            thickness};
}

float LevelMeters::PlaceOf(float decibels, const kroui::Rect& bar) const {
    return bar.left + bar.width * std::clamp((decibels - kLowest) / -kLowest, 0.0F, 1.0F);
}

void LevelMeters::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = kroui::ui::PixelGrid(*this, *limner).Snap(UI_GetLocalRect());
    limner->FillRoundRect(rect, kRadius, GetColor(kroui::ui::kColorPanel));
    limner->DrawText(krocore::Localize("$$$/Workbench/Levels=Levels"), kTitleFont, GetColor(kroui::ui::kColorDimText),
                     {Margin(), 0, rect.width - 2 * Margin(), kTitleHeight}, {});
    const kroui::Rect visible = limner->ClipBounds();
    for (std::size_t row = 0; row < fBars.size(); ++row)
        if (visible.Intersects(RowRect(row))) DrawBar(*limner, row);
    if (!fBars.empty()) DrawScale(*limner);
}

void LevelMeters::DrawBar(kroui::limner::Limner& limner, std::size_t row) const {
    const Bar& bar = fBars[row];
    const kroui::Rect whole = RowRect(row);
    const kroui::Rect track = kroui::ui::PixelGrid(*this, limner).Snap(BarRect(row));
    const bool isOver = bar.level.Mark() > 0;
    limner.FillRect(track, GetColor(kroui::ui::kColorTrack));
    if (bar.level.Level() > kLowest) {
        const kroui::Rect level = {track.left, track.top, PlaceOf(bar.level.Level(), track) - track.left, track.height};
        limner.FillRect(kroui::ui::PixelGrid(*this, limner).Snap(level), GetColor(kroui::ui::kColorMeter));
    }
    if (bar.level.Mark() > kLowest) {
        const float place = std::min(PlaceOf(bar.level.Mark(), track), track.Right() - kMarkWidth);
        limner.FillRect(kroui::ui::PixelGrid(*this, limner).Snap({place, track.top, kMarkWidth, track.height}),
                        GetColor(kroui::ui::kColorWarning));
    }
    if (whole.height < kSmallFont.size) return; // no room for texts
    limner.DrawText(bar.name, kSmallFont, GetColor(kroui::ui::kColorDimText),
                    {whole.left, whole.top, kNameWidth, whole.height}, RightAligned());
    limner.DrawText(bar.text, kSmallFont, GetColor(isOver ? kroui::ui::kColorWarning : kroui::ui::kColorText),
                    {whole.Right() - kValueWidth, whole.top, kValueWidth, whole.height}, RightAligned());
}

void LevelMeters::DrawScale(kroui::limner::Limner& limner) const {
    constexpr float kTickLength = 4;
    constexpr float kLabelWidth = 26;
    const kroui::Rect last = RowRect(fBars.size() - 1);
    const kroui::Rect bar = BarRect(0);
    const float labels = last.Bottom() + kTickLength;
    const kroui::Rect unit = {bar.Right(), labels, last.Right() - bar.Right(), kScaleHeight - kTickLength};
    limner.DrawText(u"dB", kSmallFont, GetColor(kroui::ui::kColorDimText), unit, RightAligned());
    // Where labels would touch, every other one is left out, never the last.
    const bool isNarrow = bar.width < kLabelWidth * static_cast<float>(kTicks.size() - 1);
    bool isLabelled = kTicks.size() % 2 == 1;
    for (const float tick : kTicks) {
        const float place = PlaceOf(tick, bar);
        limner.FillRect(kroui::ui::PixelGrid(*this, limner).Snap({place, last.Bottom(), 1, kTickLength}),
                        GetColor(kroui::ui::kColorRulerTick));
        const kroui::Rect label = {place - kLabelWidth / 2, labels, kLabelWidth, kScaleHeight - kTickLength};
        if (isLabelled || !isNarrow)
            limner.DrawText(krocore::FromASCII(std::to_string(static_cast<int>(tick))), kSmallFont,
                            GetColor(kroui::ui::kColorDimText), label,
                            {.alignment = kroui::limner::TextAlignment::kCentre});
        isLabelled = !isLabelled;
    }
}

kroui::ui::AccessibleInfo LevelMeters::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_Node::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kMeter;
    info.name = krocore::Localize("$$$/Workbench/Levels=Levels");
    for (const Bar& bar : fBars)
        info.value += (info.value.empty() ? u"" : u", ") + bar.name + u" " + bar.text + u" dB";
    return info;
}

// The highest of late, as it is written beside the bar.
kroui::ui::AccessiblePart LevelMeters::UI_GetAccessiblePart(int part) const {
    const auto row = static_cast<std::size_t>(part);
    const Bar& bar = fBars[row];
    const double mark = bar.level.Mark();
    kroui::ui::AccessiblePart told;
    told.bounds = RowRect(row);
    told.info.role = kroui::ui::Role::kMeter;
    told.info.name = bar.name;
    told.info.value = bar.text + u" dB";
    told.info.range = {.value = std::max<double>(mark, kLowest), .minimum = kLowest, .maximum = std::max(mark, 0.0)};
    return told;
}

} // namespace workbench
