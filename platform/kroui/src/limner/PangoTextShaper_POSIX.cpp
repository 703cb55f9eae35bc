#include "PangoTextShaper.h"

#include "CairoHandle.h"
#include "ShownText.h"

#include <dlfcn.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace kroui::limner {

namespace {

constexpr std::size_t kMostFonts = 64;
constexpr float kSmallestFont = 1;
constexpr float kLargestFont = 1000;
constexpr float kWidestLine = 1e6F;

float InUnits(int pangoUnits) {
    return static_cast<float>(pangoUnits) / PANGO_SCALE;
}

int InPangoUnits(float units) {
    const float usable = units > 0 ? std::min(units, kWidestLine) : 0;
    return static_cast<int>(usable * PANGO_SCALE);
}

void AppendUTF8(char32_t c, std::string& utf8) {
    const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80) {
        utf8 += static_cast<char>(c);
    } else if (c < 0x800) {
        utf8 += {static_cast<char>(0xC0 | c >> 6), tail(0)};
    } else if (c < 0x10000) {
        utf8 += {static_cast<char>(0xE0 | c >> 12), tail(6), tail(0)};
    } else {
        utf8 += {static_cast<char>(0xF0 | c >> 18), tail(12), tail(6), tail(0)};
    }
}

// The text for Pango; `offsets` receives the byte position of each UTF-16 unit (both halves of a pair have the same)
// and the length.
std::string ForPango(std::u16string_view text, bool keepLineEnds, std::vector<int>* offsets) {
    const std::u16string shown = ShownText(text, keepLineEnds);
    std::string utf8;
    utf8.reserve(text.size() + text.size() / 2);
    const auto note = [&] {
        if (offsets != nullptr) offsets->push_back(static_cast<int>(utf8.size()));
    };
    for (std::size_t i = 0; i < shown.size(); ++i) {
        note();
        if (IsHighSurrogate(shown[i])) {
            note();
            AppendUTF8(0x10000 + ((shown[i] & 0x3FFU) << 10) + (shown[i + 1] & 0x3FFU), utf8);
            ++i;
        } else {
            AppendUTF8(shown[i], utf8);
        }
    }
    note();
    return utf8;
}

void SetFontOptions(PangoContext* context) {
    const FontOptionsHandle options(cairo_font_options_create());
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context, options.get());
    pango_context_set_round_glyph_positions(context, FALSE);
}

// Figures of equal width, so that numbers in a column stand under each other. Words that are broken get no hyphens:
// most are names.
void SetAttributes(PangoLayout* layout) {
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_font_features_new("tnum=1"));
    pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
}

// Pango gives its types to GObject, which stays in the process and forgets none. Unloaded with this library and loaded
// again, Pango would wait for ever for types that it can't register.
void KeepPangoLoaded() {
    Dl_info pango;
    if (dladdr(reinterpret_cast<const void*>(&pango_cairo_font_map_new), &pango) != 0)
        dlopen(pango.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

// What stands at a byte of a line's text.
struct Caret {
    bool isStop = false; // a caret can stand before the character that begins here
    float x = 0;
};

std::vector<Caret> CaretStops(PangoLayout* layout) {
    const char* const text = pango_layout_get_text(layout);
    int count = 0;
    const PangoLogAttr* const attributes = pango_layout_get_log_attrs_readonly(layout, &count);
    const char* at = text;
    std::vector<Caret> carets(std::string_view(text).size() + 1);
    for (int character = 0; character < count; ++character) {
        carets[at - text].isStop = attributes[character].is_cursor_position;
        if (*at != 0) at = g_utf8_next_char(at);
    }
    return carets;
}

int WidthOf(const PangoGlyphItemIter& cluster) {
    const int step = cluster.start_glyph < cluster.end_glyph ? 1 : -1;
    int width = 0;
    for (int glyph = cluster.start_glyph; glyph != cluster.end_glyph; glyph += step)
        width += cluster.glyph_item->glyphs->glyphs[glyph].geometry.width;
    return width;
}

// From the edge `x` of a run on, to the right or (sign -1) to the left. The stops within one cluster, a ligature, share
// its width.
void PlaceCarets(PangoGlyphItem& run, const char* text, int x, int sign, std::vector<Caret>& carets) {
    PangoGlyphItemIter cluster;
    for (gboolean more = pango_glyph_item_iter_init_start(&cluster, &run, text); more != FALSE;
         more = pango_glyph_item_iter_next_cluster(&cluster)) {
        const auto first = carets.begin() + cluster.start_index;
        const auto last = carets.begin() + cluster.end_index;
        const int width = sign * WidthOf(cluster);
        const auto stops = static_cast<int>(std::count_if(first, last, [](const Caret& c) { return c.isStop; }));
        int before = 0;
        for (auto caret = first; caret != last; ++caret)
            if (caret->isStop) caret->x = InUnits(x + width * before++ / stops);
        x += width;
    }
}

// In time that is proportional to the text's length, which asking Pango for one place after the other is not.
std::vector<Caret> CaretsOf(PangoLayout* layout) {
    std::vector<Caret> carets = CaretStops(layout);
    int left = 0;
    for (GSList* item = pango_layout_get_line_readonly(layout, 0)->runs; item != nullptr; item = item->next) {
        auto& run = *static_cast<PangoGlyphItem*>(item->data);
        const int width = pango_glyph_string_get_width(run.glyphs);
        const bool isRightToLeft = run.item->analysis.level % 2 != 0;
        PlaceCarets(run, pango_layout_get_text(layout), isRightToLeft ? left + width : left, isRightToLeft ? -1 : 1,
                    carets);
        left += width;
    }
    carets.back() = {true, InUnits(left)};
    return carets;
}

} // namespace

std::unique_ptr<TextShaper> MakeSystemTextShaper(FontRasters& rasters) {
    KeepPangoLoaded();
    return std::make_unique<PangoTextShaper>(rasters);
}

PangoTextShaper::PangoTextShaper(FontRasters& rasters)
    : fRasters(rasters), fFontMap(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT)) {
    if (!fFontMap) fFontMap.reset(pango_cairo_font_map_new());
    fContext.reset(pango_font_map_create_context(fFontMap.get()));
    SetFontOptions(fContext.get());
    fLayout.reset(pango_layout_new(fContext.get()));
    SetAttributes(fLayout.get());
}

ShapedText PangoTextShaper::Shape(std::u16string_view text, const TextStyle& style) {
    const KnownFont& font = Know(style.font);
    SetLayout(text, style, font, nullptr);
    ShapedText shaped;
    shaped.fontSize = font.font.size;
    shaped.extent.ascent = font.ascent;
    float top = 0;
    for (GSList* item = pango_layout_get_lines_readonly(fLayout.get()); item != nullptr; item = item->next) {
        auto* line = static_cast<PangoLayoutLine*>(item->data);
        AppendLine(line, shaped);
        PangoRectangle logical;
        pango_layout_line_get_extents(line, nullptr, &logical);
        // A line keeps the font's height unless a paragraph has characters from a taller fallback font in it.
        const bool isParagraph = style.form == TextForm::kParagraph;
        const float ascent = isParagraph ? std::max(font.ascent, InUnits(PANGO_ASCENT(logical))) : font.ascent;
        const float descent = isParagraph ? std::max(font.descent, InUnits(PANGO_DESCENT(logical))) : font.descent;
        shaped.lines.back().baseline = top + ascent;
        top += ascent + descent;
        shaped.extent.width = std::max(shaped.extent.width, shaped.lines.back().width);
    }
    shaped.extent.height = top;
    return shaped;
}

void PangoTextShaper::CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) {
    std::vector<int> offsets;
    SetLayout(text, {font}, Know(font), &offsets);
    const std::vector<Caret> carets = CaretsOf(fLayout.get());
    positions.clear();
    float x = 0;
    for (const int offset : offsets) {
        if (carets[offset].isStop) x = carets[offset].x;
        positions.push_back(x);
    }
}

const PangoTextShaper::KnownFont& PangoTextShaper::Know(const Font& font) {
    const Font usable{font.size >= kSmallestFont ? std::min(font.size, kLargestFont) : kSmallestFont, font.bold};
    const auto known = std::find_if(fFonts.begin(), fFonts.end(), [&](const KnownFont& f) { return f.font == usable; });
    if (known != fFonts.end()) return *known;

    KnownFont added{usable, DescriptionHandle(pango_font_description_new())};
    pango_font_description_set_family_static(added.description.get(), "Sans");
    pango_font_description_set_weight(added.description.get(), usable.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(added.description.get(), usable.size * PANGO_SCALE);
    PangoFontMetrics* metrics = pango_context_get_metrics(fContext.get(), added.description.get(), nullptr);
    added.ascent = InUnits(pango_font_metrics_get_ascent(metrics));
    added.descent = InUnits(pango_font_metrics_get_descent(metrics));
    pango_font_metrics_unref(metrics);
    if (fFonts.size() >= kMostFonts) fFonts.clear();
    return fFonts.emplace_back(std::move(added));
}

void PangoTextShaper::SetLayout(std::u16string_view text, const TextStyle& style, const KnownFont& font,
                                std::vector<int>* utf8Offsets) {
    PangoLayout* layout = fLayout.get();
    const std::string utf8 = ForPango(text, style.form == TextForm::kParagraph, utf8Offsets);
    const bool isLimited = style.form != TextForm::kLine;
    pango_layout_set_font_description(layout, font.description.get());
    pango_layout_set_width(layout, isLimited ? std::max(1, InPangoUnits(style.width)) : -1);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_ellipsize(layout, style.form == TextForm::kEllipsisStart ? PANGO_ELLIPSIZE_START
                                       : style.form == TextForm::kEllipsisEnd ? PANGO_ELLIPSIZE_END
                                                                              : PANGO_ELLIPSIZE_NONE);
    pango_layout_set_text(layout, utf8.data(), static_cast<int>(utf8.size()));
}

void PangoTextShaper::AppendLine(PangoLayoutLine* line, ShapedText& shaped) {
    const int beginRun = static_cast<int>(shaped.runs.size());
    float x = 0;
    for (GSList* run = line->runs; run != nullptr; run = run->next) {
        AppendRun(*static_cast<PangoGlyphItem*>(run->data), x, shaped);
    }
    shaped.lines.push_back({x, 0, beginRun, static_cast<int>(shaped.runs.size())});
}

void PangoTextShaper::AppendRun(const PangoGlyphItem& item, float& x, ShapedText& shaped) {
    const int begin = static_cast<int>(shaped.glyphs.size());
    for (int i = 0; i < item.glyphs->num_glyphs; ++i) {
        const PangoGlyphInfo& glyph = item.glyphs->glyphs[i];
        const bool isMissing = (glyph.glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0;
        if (glyph.glyph != PANGO_GLYPH_EMPTY) {
            shaped.glyphs.push_back({isMissing ? kMissingGlyph : glyph.glyph, x + InUnits(glyph.geometry.x_offset),
                                     InUnits(glyph.geometry.y_offset), InUnits(glyph.geometry.width)});
        }
        x += InUnits(glyph.geometry.width);
    }
    cairo_scaled_font_t* font = pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(item.item->analysis.font));
    shaped.runs.push_back({fRasters.TypefaceOf(font), begin, static_cast<int>(shaped.glyphs.size())});
}

} // namespace kroui::limner
