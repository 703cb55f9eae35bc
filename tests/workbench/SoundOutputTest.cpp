#include "WorkbenchFixture.h"
#include "workbench/sound/SdlSoundOutput.h"

#include <cstdlib>

namespace workbench {
namespace {

TEST(SoundOutput, ADeviceIsLookedForOnceTheWindowIsThereAndMissedThen) {
    setenv("SDL_AUDIODRIVER", "no_such_driver", 1);
    const TemporaryFolder folder;
    const PanelsLibrary library;
    kroui::ui::HeadlessWindow window(library.Supplier(), WorkbenchView::kDefaultSize);
    SdlSoundOutput output;
    Session session(
        output, EffectFromName("amplify"),
        {.filter = {}, .presets = qohost::UserPresets(folder.Path()), .peaks = PeaksCache(folder.Path()), .file = {}});
    const boost::intrusive_ptr<WorkbenchView> view(new WorkbenchView(session, AvailableEffects()));
    window.Window().SetContent(view);
    const auto message = [&] {
        return krocore::ToStdString(view->UI_FindNode("message")->UI_GetAccessibleInfo().name);
    };
    EXPECT_EQ(message().find("Nothing is heard"), std::string::npos) << message();
    window.Advance(0.2);
    EXPECT_NE(message().find("Nothing is heard: no sound device could be opened"), std::string::npos) << message();
    window.Window().SetContent(nullptr);
    unsetenv("SDL_AUDIODRIVER");
}

} // namespace
} // namespace workbench
