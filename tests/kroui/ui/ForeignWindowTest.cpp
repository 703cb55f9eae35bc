// A window over a system of its own: text, pictures, surface and back-end know nothing of the ones that the project
// draws with.

#include "kroui/controls/UI_Checkbox.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/UI_Window.h"

#include <gmock/gmock.h>

using namespace kroui;
using namespace kroui::ui;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr float kLetter = 8;
constexpr float kLine = 16;

// Letters of one width, no pictures.
class Typewriter : public limner::SupplierInterface {
public:
    limner::TextExtent MeasureText(std::u16string_view text, const limner::Font& /*font*/) const override {
        return {kLetter * static_cast<float>(text.size()), kLine, kLine};
    }
    limner::TextExtent MeasureParagraph(std::u16string_view text, const limner::Font& font,
                                        float width) const override {
        const limner::TextExtent line = MeasureText(text, font);
        return {std::min(line.width, width), kLine, kLine};
    }
    void CaretPositions(std::u16string_view text, const limner::Font& /*font*/,
                        std::vector<float>& positions) const override {
        positions.clear();
        for (std::size_t i = 0; i <= text.size(); ++i)
            positions.push_back(kLetter * static_cast<float>(i));
    }
    limner::ImagePtr DecodePNG(std::span<const std::byte> /*bytes*/, float /*scale*/) const override { return nullptr; }
    limner::ImagePtr DrawImage(Size /*size*/, float /*scale*/,
                               const boost::function<void(limner::Limner&)>& /*draw*/) const override {
        return nullptr;
    }
};

// Keeps the operations of the last paint.
class OperationList : public limner::Surface {
public:
    void SetSize(Size size, float scale) override {
        fSize = size;
        fScale = scale;
    }
    int PixelWidth() const override { return static_cast<int>(fSize.width * fScale); }
    int PixelHeight() const override { return static_cast<int>(fSize.height * fScale); }
    float Scale() const override { return fScale; }
    void Draw(const Rect& part, const boost::function<void(limner::Limner&)>& draw) override {
        limner::RecordingLimner limner(part, fScale);
        draw(limner);
        operations = limner.Operations();
    }

    std::vector<std::string> operations;

private:
    Size fSize;
    float fScale = 1;
};

class ForeignBackend : public WindowBackend {
public:
    void RequestPaint() override { ++requests; }
    limner::Surface& GetSurface() override { return surface; }
    void Present(std::span<const Rect> pixelRects) override { presented.assign(pixelRects.begin(), pixelRects.end()); }
    void SetCursor(Cursor /*cursor*/) override {}
    void SetTextInput(bool /*on*/, const Rect& /*caretRect*/) override {}
    std::u16string ClipboardText() override { return {}; }
    void SetClipboardText(std::u16string_view /*text*/) override {}

    OperationList surface;
    std::vector<Rect> presented;
    int requests = 0;
};

TEST(ForeignWindow, DrawsAndIsUsedThroughTheSeamsAlone) {
    const Typewriter supplier;
    ForeignBackend backend;
    UI_Window window(supplier, backend);
    window.SetHostScale(2);
    window.SetSize({100, 50});
    const boost::intrusive_ptr<controls::UI_Checkbox> checkbox(new controls::UI_Checkbox);
    checkbox->SetText(u"Loop");
    checkbox->UI_SetFrame({10, 10, 60, 20});
    window.SetContent(checkbox);
    EXPECT_EQ(backend.requests, 1);

    window.Paint();
    EXPECT_THAT(backend.surface.operations, Contains(HasSubstr("Text \"Loop\"")));
    EXPECT_EQ(backend.presented, (std::vector<Rect>{{0, 0, 200, 100}}));

    backend.presented.clear();
    window.MousePressed({20, 20}, 1, 1, kNoModifier);
    window.MouseReleased({20, 20}, 1, kNoModifier);
    EXPECT_EQ(checkbox->GetValue(), 1);
    window.Paint();
    ASSERT_THAT(backend.presented, Not(IsEmpty()));
    EXPECT_LT(backend.presented.front().width, 200);
}

} // namespace
