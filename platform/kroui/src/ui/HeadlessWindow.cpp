#include "kroui/ui/HeadlessWindow.h"

#include "kroui/ui/UI_NodeManager.h"

namespace kroui::ui {

class HeadlessWindow::OutsideSurface final : public OverlaySurface {
public:
    OutsideSurface(HeadlessWindow& window, const Rect& place, bool takesEvents)
        : fWindow(window), fPlace(place), fTakesEvents(takesEvents),
          fSurface(static_cast<const limner::CairoSupplier&>(window.fWindow.Supplier())) {
        fWindow.fOutside.push_back(this);
    }
    ~OutsideSurface() override { std::erase(fWindow.fOutside, this); }

    limner::Surface& GetSurface() override { return fSurface; }
    void Present(std::span<const Rect> /*pixelRects*/) override { fPicture = fSurface.Snapshot(); }
    Outside Shown() const { return {fPlace, fTakesEvents, fPicture}; }

private:
    HeadlessWindow& fWindow;
    Rect fPlace;
    bool fTakesEvents;
    limner::PixelSurface fSurface;
    limner::ImagePtr fPicture;
};

HeadlessWindow::HeadlessWindow(const limner::CairoSupplier& supplier, Size size, float scale)
    : fSurface(supplier), fWindow(supplier, *this) {
    UI_NodeManager::Get().SetClock([this] { return fTime; });
    fWindow.SetHostScale(scale);
    fWindow.SetSize(size);
}

HeadlessWindow::~HeadlessWindow() {
    fWindow.SetContent(nullptr);
    UI_NodeManager::Get().SetClock({});
}

void HeadlessWindow::Advance(double seconds) {
    UI_NodeManager& manager = UI_NodeManager::Get();
    const double end = fTime + seconds;
    for (double next = manager.SecondsToNextTimer(); next >= 0 && fTime + next <= end;
         next = manager.SecondsToNextTimer()) {
        fTime += next;
        manager.RunTimers();
    }
    fTime = end;
    manager.RunTimers();
    Paint();
}

long HeadlessWindow::Paint() {
    fLastDamage.clear();
    return fWindow.Paint();
}

void HeadlessWindow::Present(std::span<const Rect> pixelRects) {
    fLastDamage.assign(pixelRects.begin(), pixelRects.end());
}

Rect HeadlessWindow::OverlayRoom(Size window) {
    return fScreen.IsEmpty() ? WindowBackend::OverlayRoom(window) : fScreen;
}

std::unique_ptr<OverlaySurface> HeadlessWindow::MakeOverlaySurface(const Rect& place, bool takesEvents) {
    if (fScreen.IsEmpty()) return nullptr;
    return std::make_unique<OutsideSurface>(*this, place, takesEvents);
}

std::vector<HeadlessWindow::Outside> HeadlessWindow::ShownOutside() const {
    std::vector<Outside> shown;
    for (const OutsideSurface* const surface : fOutside)
        shown.push_back(surface->Shown());
    return shown;
}

void HeadlessWindow::Press(Point position, std::uint8_t modifiers, int button) {
    MoveTo(position, modifiers);
    fWindow.MousePressed(position, button, 1, modifiers);
}

void HeadlessWindow::MoveTo(Point position, std::uint8_t modifiers) {
    fPointer = position;
    fWindow.MouseMoved(position, modifiers);
}

void HeadlessWindow::Release(std::uint8_t modifiers, int button) {
    fWindow.MouseReleased(fPointer, button, modifiers);
}

void HeadlessWindow::Click(Point position, std::uint8_t modifiers, int button) {
    Press(position, modifiers, button);
    Release(modifiers, button);
}

void HeadlessWindow::DoubleClick(Point position, std::uint8_t modifiers) {
    Click(position, modifiers);
    fWindow.MousePressed(position, 1, 2, modifiers);
    Release(modifiers);
}

void HeadlessWindow::Drag(Point from, Point to, int steps, std::uint8_t modifiers) {
    Press(from, modifiers);
    for (int i = 1; i <= steps; ++i) {
        const float part = static_cast<float>(i) / static_cast<float>(steps);
        MoveTo({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part}, modifiers);
    }
    Release(modifiers);
}

void HeadlessWindow::Wheel(Point position, float notches, std::uint8_t modifiers) {
    MoveTo(position, modifiers);
    fWindow.MouseWheel(position, 0, notches, modifiers);
}

bool HeadlessWindow::PressKey(Key key, std::uint8_t modifiers, char16_t character) {
    return fWindow.KeyPressed({key, character, modifiers, false});
}

bool HeadlessWindow::Type(std::u16string_view text) {
    bool isHandled = true;
    for (const char16_t character : text)
        isHandled = fWindow.TextTyped({&character, 1}) && isHandled;
    return isHandled;
}

Point HeadlessWindow::CentreOf(const UI_Node& node) {
    return node.UI_LocalToWindow(node.UI_GetLocalRect().Centre());
}

limner::ImagePtr HeadlessWindow::Snapshot() {
    Paint();
    return fSurface.Snapshot();
}

} // namespace kroui::ui
