#include "workbench/commands/SnapshotCommand.h"

#include "host/ByteStream.h"
#include "krocore/FilePath.h"
#include "krocore/config/Error.h"
#include "kroui/ui/HeadlessWindow.h"
#include "workbench/session/EffectNames.h"
#include "workbench/session/PanelSource.h"
#include "workbench/views/PanelCard.h"

#include <fmt/format.h>

#include <system_error>

namespace workbench {

using krocore::config::Error;
using kroui::ui::Theme;
using qoc::components::EffectDescription;

namespace {

constexpr float kSampleRate = 48000;
constexpr std::size_t kBlock = 512;
// Of a sound that is not there, for panels that show what happens in its time.
constexpr double kSoundSeconds = 10;
// Long enough for a panel to look at its filter once.
constexpr double kSettleSeconds = 0.05;

using FilterPtr = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;

kroui::limner::ImagePtr Draw(const PanelsLibrary& library, const PanelPtr& panel, const Theme& theme, float scale) {
    const boost::intrusive_ptr<PanelCard> card(new PanelCard);
    card->SetPanel(panel);
    kroui::ui::HeadlessWindow window(library.Supplier(), card->UI_GetNaturalSize(), scale);
    window.Window().SetTheme(theme);
    window.Window().SetContent(card);
    window.Advance(kSettleSeconds);
    // Some panels find their size only in a window.
    const kroui::Size size = card->UI_GetNaturalSize();
    if (size.width < 1 || size.height < 1) throw Error("the panel is empty: its layout is missing or has no size");
    card->UI_SetFrame({0, 0, size.width, size.height});
    window.Window().SetSize(size);
    kroui::limner::ImagePtr picture = window.Snapshot();
    card->SetPanel(nullptr);
    return picture;
}

FilterPtr Prepared(FilterPtr filter, std::size_t channels) {
    filter->Prepare(kSampleRate, kBlock, kromediatypes::AudioChannelLayout::ForChannelCount(channels));
    filter->SetDuration(kSoundSeconds * kSampleRate);
    return filter;
}

} // namespace

void Snapshot(const SnapshotRequest& request) {
    const PanelsLibrary library;
    PanelSource panels(library);
    if (!request.watch.empty()) panels.Watch(request.watch);
    const FilterPtr filter =
        Prepared(request.scripts.empty() ? NewFilter(EffectFromName(request.effect)) : NewScriptFilter(request.scripts),
                 request.channels);
    ApplySettings(*filter, request.settings);
    const auto [panel, problem] = panels.Make(filter);
    if (!panel && !problem.empty()) throw Error(krocore::ToStdString(problem));
    if (!panel) throw Error(fmt::format(R"(the effect "{}" has no panel in this version)", request.effect));
    const Theme& theme = request.theme == Theme::Light().Name() ? Theme::Light() : Theme::Dark();
    qohost::WriteBytes(request.output, kroui::limner::EncodePNG(*Draw(library, panel, theme, request.scale)));
}

int Gallery(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw Error(fmt::format("{}: can't make the folder: {}", krocore::PathText(folder), error.message()));

    const PanelsLibrary library;
    int files = 0;
    for (const EffectDescription& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        const PanelPtr panel = NewPanel(Prepared(NewFilter(effect), 2));
        if (!panel) continue;
        for (const Theme* const theme : {&Theme::Dark(), &Theme::Light()})
            for (const int scale : {1, 2}) {
                const std::string suffix = scale == 1 ? "" : fmt::format("@{}x", scale);
                const auto name = fmt::format("{}-{}{}.png", effect.shortName, theme->Name(), suffix);
                kroui::limner::WritePNG(*Draw(library, panel, *theme, static_cast<float>(scale)), folder / name);
                ++files;
            }
    }
    return files;
}

} // namespace workbench
