#pragma once

#include "kroaudiofilterhost/AudioFilterListener.h"
#include "krox11/X11Window.h"
#include "qocui/controls/AudioComponentEditorViewBase.h"
#include "qocui/module/Session.h"
#include "qolv2/CurveEvents.h"
#include "qolv2/PluginCatalogue.h"
#include "qolv2/PluginPorts.h"
#include "qolv2panel/PanelPlace.h"

#include <lv2/ui/ui.h>

#include <memory>
#include <vector>

namespace qolv2 {

// A plug-in's panel in its host. It edits an effect of its own that makes no sound: what the user changes goes to the
// host's ports, and what ports say comes back, from wherever. Curves go by events. The plug-in itself is never touched.
// User-interface thread.
class PluginPanel : private kroaudiofilterhost::AudioFilterListener, public boost::signals2::trackable {
public:
    struct Host {
        LV2UI_Write_Function write;
        LV2UI_Controller controller;
        const LV2_Feature* const* features;
    };

    // Throws std::exception when there is no window to be had.
    PluginPanel(const PluginDescription& description, const Host& host);
    ~PluginPanel() override;
    PluginPanel(const PluginPanel&) = delete;
    PluginPanel& operator=(const PluginPanel&) = delete;

    unsigned long Widget() const { return fWindow->Handle(); }
    void PortChanged(std::size_t port, std::uint32_t size, std::uint32_t format, const void* data);
    void Idle();

private:
    void ParameterChanged(kroaudiofilterhost::AudioFilter& filter,
                          const kroaudiofilterhost::AudioFilterParameterChange& change) override;
    void ParameterEditBegun(kroaudiofilterhost::AudioFilter& /*filter*/, int index) override { Touch(index, true); }
    void ParameterEditEnded(kroaudiofilterhost::AudioFilter& /*filter*/, int index) override { Touch(index, false); }

    void MakeWindow(unsigned long parent, float scale);
    void TakeLook();
    void AskForRoom();
    void Touch(int parameter, bool isTouched);
    void TakeControl(const ParameterPort& port, float value);
    void TakeEvent(const LV2_Atom& atom);
    void SendCurves();
    void Send(const LV2_Atom* atom);
    void AskForCurves();
    // Its port; npos for a parameter without one.
    std::size_t PortOf(int parameter) const;

    Host fHost;
    HostFeatures fFeatures;
    const LV2UI_Touch* fTouch = nullptr;
    const LV2UI_Resize* fResize = nullptr;
    LV2_URID fEventTransfer;
    qocui::module::Session fSession;
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    PluginPorts fPorts;
    CurveEvents fCurveEvents;
    LV2_Atom_Forge fForge{};
    std::unique_ptr<kroui::limner::CairoSupplier> fOwnSupplier; // where the session's is of another kind
    std::unique_ptr<krox11::X11Window> fWindow;
    boost::intrusive_ptr<qocui::controls::AudioComponentEditorViewBase> fView;
    boost::intrusive_ptr<PanelPlace> fPlace; // around it
    bool fIsFromHost = false;                // what changes now
    bool fAreCurvesChanged = false;          // by the user, since they were sent
};

} // namespace qolv2
