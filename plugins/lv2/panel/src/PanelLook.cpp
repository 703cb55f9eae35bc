#include "qolv2panel/PanelLook.h"

#include "krocore/ReplacementFile.h"
#include "krocore/UserFolders.h"
#include "krocore/config/Error.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>

namespace qolv2 {

using kroui::ui::Theme;

namespace {

constexpr const char* kThemeKey = "theme";
constexpr const char* kZoomKey = "zoom";

float HeldZoom(float zoom, float other) {
    return std::isfinite(zoom) ? std::clamp(zoom, PanelLook::kSmallestZoom, PanelLook::kLargestZoom) : other;
}

} // namespace

PanelLook::PanelLook(std::filesystem::path file) : fFile(std::move(file)) {
    Read();
}

PanelLook& PanelLook::Get() {
    static PanelLook look(krocore::UserFolder(krocore::UserFiles::kConfig) / "qoaudio" / "panels.json");
    return look;
}

void PanelLook::Read() {
    std::ifstream stream(fFile);
    const nlohmann::json look = nlohmann::json::parse(stream, nullptr, false);
    if (!look.is_object()) return;
    const auto theme = look.find(kThemeKey);
    if (theme != look.end() && theme->is_string()) fTheme = *theme == "light" ? &Theme::Light() : &Theme::Dark();
    const auto zoom = look.find(kZoomKey);
    if (zoom != look.end() && zoom->is_number()) fZoom = HeldZoom(zoom->get<float>(), fZoom);
}

void PanelLook::ToggleTheme() {
    fTheme = IsDark() ? &Theme::Light() : &Theme::Dark();
    Write();
    fChanged();
}

void PanelLook::SetZoom(float zoom) {
    const float held = HeldZoom(zoom, fZoom);
    if (held == fZoom) return;
    fZoom = held;
    Write();
    fChanged();
}

void PanelLook::Write() {
    const nlohmann::json look = {{kThemeKey, fTheme->Name()}, {kZoomKey, std::round(fZoom * 100) / 100}};
    std::error_code failed;
    std::filesystem::create_directories(fFile.parent_path(), failed);
    try {
        krocore::ReplaceFile(fFile, look.dump(2) + "\n");
    } catch (const krocore::config::Error&) { // it holds for this process, then
    }
}

} // namespace qolv2
