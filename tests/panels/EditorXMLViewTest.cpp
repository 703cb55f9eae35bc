#include "FakeFilter.h"
#include "TestModule.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_NodeWriter.h"
#include "kroui/utility/ResourceManager.h"
#include "qocui/controls/AudioComponentEditorXMLView.h"

#include <gmock/gmock.h>

using namespace kroui;
using qocui::controls::AudioComponentEditorXMLView;

namespace {

// A view of an archive that a test writes.
class ArchivedView : public AudioComponentEditorXMLView {
public:
    explicit ArchivedView(const std::string& archive) : AudioComponentEditorXMLView("Panel", new test::FakeFilter(1)) {
        fModule.Add("XML", "PANEL", archive);
        fResources.emplace(fModule.Instance());
    }
    using AudioComponentEditorXMLView::GetContentView;

protected:
    utility::ResourceManager* GetResourceManager() const override { return &*fResources; }

private:
    test::TestModule fModule;
    mutable std::optional<utility::OS_ResourceManager> fResources;
};

std::string Archive(std::uint32_t constraints) {
    const boost::intrusive_ptr<ui::UI_SubView> root(new ui::UI_SubView);
    root->UI_SetFrame({0, 0, 300, 200});
    root->SetConstraints(constraints);
    return ui::WriteArchive(*root);
}

TEST(EditorXMLViewTest, TheContentFillsTheViewWhateverItsConstraintsAre) {
    for (std::uint32_t mask = 0; mask < 32; ++mask) {
        const boost::intrusive_ptr<ArchivedView> view(new ArchivedView(Archive(mask)));
        view->Init();
        ASSERT_NE(view->GetContentView(), nullptr);
        for (const Size size : {Size{420, 260}, Size{150, 90}, Size{300, 400}}) {
            view->UI_SetFrame({10, 20, size.width, size.height});
            EXPECT_EQ(view->GetContentView()->UI_GetFrame(), (Rect{0, 0, size.width, size.height})) << mask;
        }
    }
}

} // namespace
