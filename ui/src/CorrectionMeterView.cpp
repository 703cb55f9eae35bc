#include "qocui/ui/CorrectionMeterView.h"

#include <cmath>

namespace qocui::ui {

using kroui::Rect;
using kroui::limner::Color;
using kroui::utility::LinearRuler;
using kroui::utility::RulerBase;
using kroui::utility::RulerColors;

namespace {

constexpr float kMargin = 8; // above, right of and below the bar's area

// How far marks stick out of the area, on its left and right.
constexpr int kMajorBefore = 4;
constexpr int kMajorBehind = 5;
constexpr int kMinorBefore = 2;
constexpr int kMinorBehind = 3;

constexpr Color kMeterColor{0.2F, 0.2F, 0.2F, 0.9F};
constexpr Color kBarColor{0.8F, 0, 0, 0.9F};

} // namespace

CorrectionMeterView::CorrectionMeterView() : fRuler(new LinearRuler) {
    fRuler->SetVertical(true);
    fRuler->SetTextNearTickStart(true);
    fRuler->HideTruncatedStrings(true);
    fRuler->SetStyle(RulerBase::kSpan);
    fRuler->SetValueRange(fMaxValue, fMinValue);
}

CorrectionMeterView::~CorrectionMeterView() = default;

void CorrectionMeterView::SetValue(float cents) {
    if (std::isnan(cents)) return;
    if (cents > fMaxValue) cents = fMaxValue;
    if (cents < fMinValue) cents = fMinValue;
    if (cents == fValue) return;
    fValue = cents;
    UI_Invalidate();
}

void CorrectionMeterView::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_SubView::UI_SizeChanged(rect);
    fMeterRect = {std::floor(rect.left + rect.width * 0.5F), rect.top + kMargin, std::ceil(rect.width * 0.5F) - kMargin,
                  rect.height - 2 * kMargin};
    const int left = static_cast<int>(fMeterRect.left);
    const int right = left + static_cast<int>(fMeterRect.width);
    fRuler->SetMajorTickSpan(static_cast<float>(left - kMajorBefore), static_cast<float>(right + kMajorBehind));
    fRuler->SetMinorTickSpan(static_cast<float>(left - kMinorBefore), static_cast<float>(right + kMinorBehind));
    fRuler->SetPixelRange(std::trunc(fMeterRect.top), std::trunc(fMeterRect.top) + std::trunc(fMeterRect.height) - 1);
}

void CorrectionMeterView::UI_Draw(kroui::limner::Limner* limner) {
    const Rect bounds = UI_GetLocalRect();
    limner->FillRect(bounds, GetColor(kroui::ui::kColorMeterBackground));
    fRuler->Draw(*limner, RoundedOut(bounds), RulerColors::Of(*this), UI_GetDrawSupplier());
    if (fMeterRect.IsEmpty()) return;
    limner->FillRect(fMeterRect, kMeterColor);
    limner->FillRect(BarRect(), kBarColor);
    limner->NewPath();
    limner->AddRect({fMeterRect.left + 0.5F, fMeterRect.top + 0.5F, fMeterRect.width - 1, fMeterRect.height - 1});
    limner->Stroke({GetColor(kroui::ui::kColorFrame), 1});
}

Rect CorrectionMeterView::BarRect() const {
    const float zero = fRuler->GetPixel(0);
    const float pixel = fRuler->GetPixel(fValue);
    if (fValue == 0) return {fMeterRect.left, zero, fMeterRect.width, 1};
    if (fValue > 0) return {fMeterRect.left, pixel, fMeterRect.width, zero - pixel};
    return {fMeterRect.left, zero, fMeterRect.width, pixel - zero};
}

} // namespace qocui::ui
