#include "DirectWriteShaper.h"

#include "DirectWriteFace.h"
#include "ShownText.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <cmath>

namespace kroui::limner {

namespace {

constexpr std::size_t kMostFonts = 64;
constexpr float kSmallestFont = 1;
constexpr float kLargestFont = 1000;
constexpr float kWidestLine = 1e6F;
constexpr char16_t kEllipsis = 0x2026;

// The system's own first.
constexpr const wchar_t* kFamilies[] = {L"Segoe UI", L"Tahoma", L"DejaVu Sans", L"Liberation Sans", L"Arial"};

template <class T>
T* Made(HRESULT result, T* object) {
    if (FAILED(result)) throw krocore::config::Error("text can't be set: DirectWrite fails");
    return object;
}

const wchar_t* Wide(const std::u16string& text) {
    return reinterpret_cast<const wchar_t*>(text.c_str());
}

bool IsRightToLeft(const DWRITE_CLUSTER_METRICS& cluster) {
    return cluster.isRightToLeft != 0;
}

} // namespace

// Takes the runs of a layout, line by line.
class DirectWriteShaper::Renderer final : public IDWriteTextRenderer {
public:
    Renderer(DirectWriteShaper& shaper, ShapedText& shaped) : fShaper(shaper), fShaped(shaped) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE IsPixelSnappingDisabled(void*, BOOL* isDisabled) override {
        *isDisabled = TRUE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetCurrentTransform(void*, DWRITE_MATRIX* transform) override {
        *transform = {1, 0, 0, 1, 0, 0};
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetPixelsPerDip(void*, FLOAT* pixels) override {
        *pixels = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DrawUnderline(void*, FLOAT, FLOAT, const DWRITE_UNDERLINE*, IUnknown*) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DrawStrikethrough(void*, FLOAT, FLOAT, const DWRITE_STRIKETHROUGH*, IUnknown*) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DrawInlineObject(void*, FLOAT, FLOAT, IDWriteInlineObject*, BOOL, BOOL,
                                               IUnknown*) override {
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE DrawGlyphRun(void*, FLOAT x, FLOAT y, DWRITE_MEASURING_MODE, const DWRITE_GLYPH_RUN* run,
                                           const DWRITE_GLYPH_RUN_DESCRIPTION*, IUnknown*) override {
        BeginLine(y);
        const int begin = static_cast<int>(fShaped.glyphs.size());
        const bool isRightToLeft = run->bidiLevel % 2 != 0;
        for (UINT32 i = 0; i < run->glyphCount; ++i) {
            const float advance = run->glyphAdvances[i];
            const DWRITE_GLYPH_OFFSET offset =
                run->glyphOffsets != nullptr ? run->glyphOffsets[i] : DWRITE_GLYPH_OFFSET{};
            if (isRightToLeft) x -= advance;
            const std::uint32_t glyph = run->glyphIndices[i] != 0 ? run->glyphIndices[i] : kMissingGlyph;
            const float aside = isRightToLeft ? -offset.advanceOffset : offset.advanceOffset;
            fShaped.glyphs.push_back({glyph, x + aside, -offset.ascenderOffset, advance});
            if (!isRightToLeft) x += advance;
        }
        fShaped.runs.push_back(
            {fShaper.TypefaceOf(run->fontFace, run->fontEmSize), begin, static_cast<int>(fShaped.glyphs.size())});
        fShaped.lines.back().endRun = static_cast<int>(fShaped.runs.size());
        return S_OK;
    }

private:
    void BeginLine(float baseline) {
        if (!fShaped.lines.empty() && fShaped.lines.back().baseline == baseline) return;
        const int run = static_cast<int>(fShaped.runs.size());
        fShaped.lines.push_back({0, baseline, run, run});
    }

    DirectWriteShaper& fShaper;
    ShapedText& fShaped;
};

std::unique_ptr<TextShaper> MakeSystemTextShaper(FontRasters& rasters) {
    return std::make_unique<DirectWriteShaper>(rasters);
}

DirectWriteShaper::DirectWriteShaper(FontRasters& rasters) : fRasters(rasters) {
    IUnknown* factory = nullptr;
    const HRESULT result = DWriteCreateFactory(DWRITE_FACTORY_TYPE_SHARED, __uuidof(IDWriteFactory), &factory);
    fFactory.reset(static_cast<IDWriteFactory*>(Made(result, factory)));
    IDWriteTypography* typography = nullptr;
    fTypography.reset(Made(fFactory->CreateTypography(&typography), typography));
    fTypography->AddFontFeature(
        {static_cast<DWRITE_FONT_FEATURE_TAG>(DWRITE_MAKE_OPENTYPE_TAG('t', 'n', 'u', 'm')), 1});
    FindFamily();
}

void DirectWriteShaper::FindFamily() {
    IDWriteFontCollection* fonts = nullptr;
    const Handle<IDWriteFontCollection> held(Made(fFactory->GetSystemFontCollection(&fonts, FALSE), fonts));
    for (const wchar_t* const family : kFamilies) {
        UINT32 index = 0;
        BOOL isThere = FALSE;
        if (SUCCEEDED(fonts->FindFamilyName(family, &index, &isThere)) && isThere != FALSE) {
            fFamily = family;
            return;
        }
    }
    fFamily = kFamilies[0]; // the system takes another
}

const DirectWriteShaper::KnownFont& DirectWriteShaper::Know(const Font& font) {
    const Font usable{font.size >= kSmallestFont ? std::min(font.size, kLargestFont) : kSmallestFont, font.bold};
    const auto known = std::ranges::find(fFonts, usable, &KnownFont::font);
    if (known != fFonts.end()) return *known;
    KnownFont added{usable, nullptr};
    IDWriteTextFormat* format = nullptr;
    const HRESULT result = fFactory->CreateTextFormat(
        fFamily.c_str(), nullptr, usable.bold ? DWRITE_FONT_WEIGHT_BOLD : DWRITE_FONT_WEIGHT_NORMAL,
        DWRITE_FONT_STYLE_NORMAL, DWRITE_FONT_STRETCH_NORMAL, usable.size, L"", &format);
    added.format.reset(Made(result, format));
    // The height of a line of the font's own characters.
    const Handle<IDWriteTextLayout> layout = LayoutOf(u"0", added, kWidestLine, false);
    DWRITE_LINE_METRICS line{};
    UINT32 count = 0;
    layout->GetLineMetrics(&line, 1, &count);
    added.ascent = line.baseline;
    added.descent = line.height - line.baseline;
    if (fFonts.size() >= kMostFonts) fFonts.clear();
    return fFonts.emplace_back(std::move(added));
}

DirectWriteShaper::Handle<IDWriteTextLayout>
DirectWriteShaper::LayoutOf(const std::u16string& text, const KnownFont& font, float width, bool wraps) {
    IDWriteTextLayout* layout = nullptr;
    const auto length = static_cast<UINT32>(text.size());
    Handle<IDWriteTextLayout> held(
        Made(fFactory->CreateTextLayout(Wide(text), length, font.format.get(), width, kWidestLine, &layout), layout));
    layout->SetWordWrapping(wraps ? DWRITE_WORD_WRAPPING_WRAP : DWRITE_WORD_WRAPPING_NO_WRAP);
    layout->SetTypography(fTypography.get(), {0, length});
    return held;
}

std::vector<DWRITE_CLUSTER_METRICS> DirectWriteShaper::ClustersOf(IDWriteTextLayout& layout) {
    UINT32 count = 0;
    layout.GetClusterMetrics(nullptr, 0, &count);
    std::vector<DWRITE_CLUSTER_METRICS> clusters(count);
    if (count > 0) layout.GetClusterMetrics(clusters.data(), count, &count);
    return clusters;
}

// As much of the text's begin, or end, as has room beside three dots; only these where nothing has.
std::u16string DirectWriteShaper::Shortened(const std::u16string& text, const KnownFont& font, const TextStyle& style) {
    const auto widthOf = [&](const std::u16string& part) {
        DWRITE_TEXT_METRICS metrics{};
        LayoutOf(part, font, kWidestLine, false)->GetMetrics(&metrics);
        return metrics.widthIncludingTrailingWhitespace;
    };
    if (widthOf(text) <= style.width) return text;
    const float room = style.width - widthOf(std::u16string(1, kEllipsis));
    std::vector<DWRITE_CLUSTER_METRICS> clusters = ClustersOf(*LayoutOf(text, font, kWidestLine, false));
    const bool isStart = style.form == TextForm::kEllipsisStart;
    if (isStart) std::ranges::reverse(clusters);
    std::size_t units = 0;
    float width = 0;
    for (const DWRITE_CLUSTER_METRICS& cluster : clusters) {
        width += cluster.width;
        if (width > room) break;
        units += cluster.length;
    }
    return isStart ? std::u16string(1, kEllipsis) + text.substr(text.size() - units)
                   : text.substr(0, units) + kEllipsis;
}

ShapedText DirectWriteShaper::Shape(std::u16string_view text, const TextStyle& style) {
    const KnownFont& font = Know(style.font);
    const bool isParagraph = style.form == TextForm::kParagraph;
    std::u16string shown = ShownText(text, isParagraph);
    const bool isShortened = style.form == TextForm::kEllipsisStart || style.form == TextForm::kEllipsisEnd;
    if (isShortened) shown = Shortened(shown, font, style);
    const float width = isParagraph && style.width > 0 ? std::min(style.width, kWidestLine) : kWidestLine;
    const Handle<IDWriteTextLayout> layout = LayoutOf(shown, font, isParagraph ? width : kWidestLine, isParagraph);

    ShapedText shaped;
    shaped.fontSize = font.font.size;
    shaped.extent.ascent = font.ascent;
    Renderer renderer(*this, shaped);
    layout->Draw(nullptr, &renderer, 0, 0);
    PlaceLines(*layout, font, isParagraph, shaped);
    return shaped;
}

void DirectWriteShaper::PlaceLines(IDWriteTextLayout& layout, const KnownFont& font, bool isParagraph,
                                   ShapedText& shaped) {
    UINT32 count = 0;
    layout.GetLineMetrics(nullptr, 0, &count);
    std::vector<DWRITE_LINE_METRICS> metrics(count);
    layout.GetLineMetrics(metrics.data(), count, &count);
    const std::vector<ShapedLine> drawn = std::move(shaped.lines);
    const std::vector<float> widths = WidthsOf(layout, metrics);
    shaped.lines.clear();
    auto next = drawn.begin();
    float layoutTop = 0;
    float top = 0;
    for (UINT32 i = 0; i < count; ++i) {
        const float layoutBaseline = layoutTop + metrics[i].baseline;
        const float descent = metrics[i].height - metrics[i].baseline;
        layoutTop += metrics[i].height;
        ShapedLine line{widths[i], 0, 0, 0};
        // A line without glyphs was not drawn.
        if (next != drawn.end() && std::abs(next->baseline - layoutBaseline) < 0.5F) {
            line.beginRun = next->beginRun;
            line.endRun = next->endRun;
            ++next;
        }
        // A line keeps the font's height unless a paragraph has characters from a taller fallback font in it.
        const float ascent = isParagraph ? std::max(font.ascent, metrics[i].baseline) : font.ascent;
        line.baseline = top + ascent;
        top += ascent + (isParagraph ? std::max(font.descent, descent) : font.descent);
        shaped.extent.width = std::max(shaped.extent.width, line.width);
        shaped.lines.push_back(line);
    }
    shaped.extent.height = top;
}

std::vector<float> DirectWriteShaper::WidthsOf(IDWriteTextLayout& layout,
                                               const std::vector<DWRITE_LINE_METRICS>& lines) {
    const std::vector<DWRITE_CLUSTER_METRICS> clusters = ClustersOf(layout);
    std::vector<float> widths;
    auto cluster = clusters.begin();
    for (const DWRITE_LINE_METRICS& line : lines) {
        float width = 0;
        for (UINT32 units = 0; units < line.length && cluster != clusters.end(); ++cluster) {
            units += cluster->length;
            // What wraps leaves its space at the end of the line.
            const bool isAtEnd = units > line.length - line.trailingWhitespaceLength && lines.size() > 1;
            if (!isAtEnd && cluster->isNewline == 0) width += cluster->width;
        }
        widths.push_back(width);
    }
    return widths;
}

void DirectWriteShaper::CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) {
    const std::u16string shown = ShownText(text, false);
    const Handle<IDWriteTextLayout> layout = LayoutOf(shown, Know(font), kWidestLine, false);
    const std::vector<DWRITE_CLUSTER_METRICS> clusters = ClustersOf(*layout);
    positions.clear();
    if (std::ranges::any_of(clusters, IsRightToLeft)) {
        for (UINT32 i = 0; i <= shown.size(); ++i) {
            float x = 0;
            float y = 0;
            DWRITE_HIT_TEST_METRICS metrics{};
            layout->HitTestTextPosition(i, FALSE, &x, &y, &metrics);
            positions.push_back(x);
        }
        return;
    }
    float x = 0;
    for (const DWRITE_CLUSTER_METRICS& cluster : clusters) {
        const std::size_t first = positions.size();
        // The characters of a ligature share its width; both halves of a pair have one place.
        std::vector<int> before;
        int stops = 0;
        for (std::size_t unit = first; unit < first + cluster.length; ++unit) {
            if (!IsLowSurrogate(shown[unit])) ++stops;
            before.push_back(stops - 1);
        }
        for (const int stop : before)
            positions.push_back(x + cluster.width * static_cast<float>(stop) / static_cast<float>(stops));
        x += cluster.width;
    }
    positions.push_back(x);
}

int DirectWriteShaper::TypefaceOf(IDWriteFontFace* face, float size) {
    const auto known =
        std::ranges::find_if(fFaces, [&](const KnownFace& k) { return k.face.get() == face && k.size == size; });
    if (known != fFaces.end()) return known->typeface;
    face->AddRef();
    const int typeface = fRasters.TypefaceOf(FontOfFace(face, size).get());
    fFaces.push_back({Handle<IDWriteFontFace>(face), size, typeface});
    return typeface;
}

} // namespace kroui::limner
