#include "DirectWriteFace.h"

#include <d2d1.h>

namespace kroui::limner {

namespace {

const cairo_user_data_key_t kFaceKey{};

// Draws what DirectWrite tells of an outline. On the stack; nobody counts references to it.
class OutlineSink final : public IDWriteGeometrySink {
public:
    explicit OutlineSink(cairo_t* context) : fContext(context) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    void STDMETHODCALLTYPE SetFillMode(D2D1_FILL_MODE mode) override {
        cairo_set_fill_rule(fContext,
                            mode == D2D1_FILL_MODE_ALTERNATE ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    }
    void STDMETHODCALLTYPE SetSegmentFlags(D2D1_PATH_SEGMENT) override {}
    void STDMETHODCALLTYPE BeginFigure(D2D1_POINT_2F start, D2D1_FIGURE_BEGIN) override {
        cairo_move_to(fContext, start.x, start.y);
    }
    void STDMETHODCALLTYPE AddLines(const D2D1_POINT_2F* points, UINT count) override {
        for (UINT i = 0; i < count; ++i)
            cairo_line_to(fContext, points[i].x, points[i].y);
    }
    void STDMETHODCALLTYPE AddBeziers(const D2D1_BEZIER_SEGMENT* beziers, UINT count) override {
        for (UINT i = 0; i < count; ++i)
            cairo_curve_to(fContext, beziers[i].point1.x, beziers[i].point1.y, beziers[i].point2.x, beziers[i].point2.y,
                           beziers[i].point3.x, beziers[i].point3.y);
    }
    void STDMETHODCALLTYPE EndFigure(D2D1_FIGURE_END) override { cairo_close_path(fContext); }
    HRESULT STDMETHODCALLTYPE Close() override { return S_OK; }

private:
    cairo_t* fContext;
};

// In a space where the em is 1 and y grows downwards, as DirectWrite's outlines do.
cairo_status_t DrawGlyph(cairo_scaled_font_t* font, unsigned long glyph, cairo_t* context,
                         cairo_text_extents_t* /*extents*/) {
    auto* const face =
        static_cast<IDWriteFontFace*>(cairo_font_face_get_user_data(cairo_scaled_font_get_font_face(font), &kFaceKey));
    DWRITE_FONT_METRICS metrics{};
    face->GetMetrics(&metrics);
    const auto em = static_cast<float>(metrics.designUnitsPerEm);
    const auto index = static_cast<UINT16>(glyph);
    cairo_scale(context, 1 / em, 1 / em);
    OutlineSink sink(context);
    if (FAILED(face->GetGlyphRunOutline(em, &index, nullptr, nullptr, 1, FALSE, FALSE, &sink)))
        return CAIRO_STATUS_USER_FONT_ERROR;
    cairo_fill(context);
    return CAIRO_STATUS_SUCCESS;
}

} // namespace

ScaledFontHandle FontOfFace(IDWriteFontFace* face, float size) {
    cairo_font_face_t* const made = cairo_user_font_face_create();
    face->AddRef();
    cairo_font_face_set_user_data(made, &kFaceKey, face,
                                  [](void* held) { static_cast<IDWriteFontFace*>(held)->Release(); });
    cairo_user_font_face_set_render_glyph_func(made, DrawGlyph);
    cairo_matrix_t sized;
    cairo_matrix_init_scale(&sized, size, size);
    cairo_matrix_t identity;
    cairo_matrix_init_identity(&identity);
    const FontOptionsHandle options(cairo_font_options_create());
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    ScaledFontHandle font(cairo_scaled_font_create(made, &sized, &identity, options.get()));
    cairo_font_face_destroy(made);
    return font;
}

} // namespace kroui::limner
