#include "qolv2panel/PluginPanel.h"

#include "kroui/ui/UI_NodeManager.h"
#include "qocui/module/ComponentUIFactory.h"

#include <lv2/atom/util.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace qolv2 {

namespace {

constexpr float kUsualRate = 48000; // hertz, when the host does not say
constexpr std::size_t kBlock = 1024;
constexpr std::size_t kNowhere = SIZE_MAX;

const void* DataOf(const LV2_Feature* const* features, std::string_view uri) {
    for (; features != nullptr && *features != nullptr; ++features)
        if ((*features)->URI == uri) return (*features)->data;
    return nullptr;
}

// A number among the host's options; `other` when it is not there.
float Option(const HostFeatures& host, const LV2_Feature* const* features, const char* uri, float other) {
    const auto* option = static_cast<const LV2_Options_Option*>(DataOf(features, LV2_OPTIONS__options));
    const LV2_URID key = host.Map(uri);
    for (; key != 0 && option != nullptr && option->key != 0; ++option) {
        const bool isFloat = option->type == host.Map(LV2_ATOM__Float) && option->size == sizeof(float);
        if (option->key == key && isFloat && option->value != nullptr) return *static_cast<const float*>(option->value);
    }
    return other;
}

} // namespace

PluginPanel::PluginPanel(const PluginDescription& description, const Host& host)
    : fHost(host), fFeatures(host.features),
      fTouch(static_cast<const LV2UI_Touch*>(DataOf(host.features, LV2_UI__touch))),
      fResize(static_cast<const LV2UI_Resize*>(DataOf(host.features, LV2_UI__resize))),
      fEventTransfer(fFeatures.Map(LV2_ATOM__eventTransfer)), fFilter([&] {
          auto filter = description.effect->create();
          filter->Prepare(Option(fFeatures, host.features, LV2_PARAMETERS__sampleRate, kUsualRate), kBlock,
                          description.Layout());
          return filter;
      }()),
      fPorts(*fFilter), fCurveEvents(fFeatures, *fFilter) {
    if (fFeatures.map != nullptr) lv2_atom_forge_init(&fForge, const_cast<LV2_URID_Map*>(fFeatures.map));
    fView = qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(fFilter);
    if (!fView) throw std::runtime_error(description.uri + " has no panel");
    const auto parent = reinterpret_cast<std::uintptr_t>(DataOf(host.features, LV2_UI__parent));
    MakeWindow(parent, Option(fFeatures, host.features, LV2_UI__scaleFactor, 1));
    fFilter->AddListener(*this);
    AskForCurves();
}

PluginPanel::~PluginPanel() {
    fFilter->RemoveListener(*this);
    fWindow->Window().SetContent(nullptr);
}

void PluginPanel::MakeWindow(unsigned long parent, float scale) {
    const auto* supplier = dynamic_cast<const kroui::limner::CairoSupplier*>(&fSession.Supplier());
    if (supplier == nullptr) {
        fOwnSupplier = std::make_unique<kroui::limner::CairoSupplier>();
        supplier = fOwnSupplier.get();
    }
    PanelLook& look = PanelLook::Get();
    look.Read();
    fPlace = new PanelPlace(fView, look);
    fWindow = std::make_unique<krox11::X11Window>(
        *supplier, krox11::X11Window::Settings{
                       .parent = parent, .size = fPlace->PanelSize(), .scale = scale, .zoom = look.Zoom()});
    fWindow->Window().SetTheme(look.Theme());
    fWindow->Window().SetContent(fPlace);
    fWindow->Window().SetUnhandledKeyHandler([this](const auto& key) { return fPlace->DoShortcut(key); });
    fView->GetContentSizeChangedSignal().connect([this] {
        fPlace->PanelResized();
        AskForRoom();
    });
    look.GetChangedSignal().connect(boost::bind(&PluginPanel::TakeLook, this));
    fWindow->Show();
    AskForRoom();
}

void PluginPanel::TakeLook() {
    const PanelLook& look = PanelLook::Get();
    fWindow->Window().SetTheme(look.Theme());
    fWindow->Window().SetZoom(look.Zoom());
    AskForRoom();
}

// As much as shows all of the panel. What the host gives is followed, and not asked about again.
void PluginPanel::AskForRoom() {
    fWindow->Resize(fPlace->PanelSize());
    if (fResize != nullptr) fResize->ui_resize(fResize->handle, fWindow->AskedWidth(), fWindow->AskedHeight());
}

std::size_t PluginPanel::PortOf(int parameter) const {
    const auto port = std::ranges::find(fPorts.Parameters(), parameter, &ParameterPort::parameter);
    if (port == fPorts.Parameters().end()) return kNowhere;
    return fPorts.FirstParameterPort() + static_cast<std::size_t>(port - fPorts.Parameters().begin());
}

void PluginPanel::ParameterChanged(kroaudiofilterhost::AudioFilter& /*filter*/,
                                   const kroaudiofilterhost::AudioFilterParameterChange& change) {
    if (fIsFromHost) return;
    const std::size_t port = PortOf(change.index);
    if (port == kNowhere) {
        fAreCurvesChanged = true;
        return;
    }
    const float value = fPorts.Parameters()[port - fPorts.FirstParameterPort()].FromStored(change.newValue);
    fHost.write(fHost.controller, static_cast<std::uint32_t>(port), sizeof value, 0, &value);
}

void PluginPanel::Touch(int parameter, bool isTouched) {
    const std::size_t port = PortOf(parameter);
    if (fTouch != nullptr && port != kNowhere)
        fTouch->touch(fTouch->handle, static_cast<std::uint32_t>(port), isTouched);
}

void PluginPanel::PortChanged(std::size_t port, std::uint32_t size, std::uint32_t format, const void* data) {
    if (format == 0 && size == sizeof(float) && port >= fPorts.FirstParameterPort() && port < fPorts.Count())
        return TakeControl(fPorts.Parameters()[port - fPorts.FirstParameterPort()], *static_cast<const float*>(data));
    if (format != 0 && format == fEventTransfer && size >= sizeof(LV2_Atom))
        TakeEvent(*static_cast<const LV2_Atom*>(data));
}

// What says the same as what is stored may be less exact.
void PluginPanel::TakeControl(const ParameterPort& port, float value) {
    if (port.FromStored(fFilter->GetParameterValue(port.parameter)) == value) return;
    fIsFromHost = true;
    if (port.info->IsReadOnly())
        fFilter->MirrorParameter(port.parameter, port.ToStored(value));
    else
        fFilter->SetParameterValueQuietly(port.parameter, port.ToStored(value));
    fIsFromHost = false;
}

void PluginPanel::TakeEvent(const LV2_Atom& atom) {
    if (!fCurveEvents.IsObject(atom)) return;
    const auto setting = fCurveEvents.ReadSet(reinterpret_cast<const LV2_Atom_Object&>(atom));
    if (!setting || fAreCurvesChanged) return;
    std::vector<kroaudiofilterhost::AudioFilterCurvePoint> points;
    for (std::size_t i = 0; i + 1 < setting->values.size(); i += 2)
        points.push_back({setting->values[i], setting->values[i + 1]});
    fIsFromHost = true;
    fFilter->SetCurve(setting->curve, points);
    fIsFromHost = false;
}

void PluginPanel::SendCurves() {
    if (fFeatures.map == nullptr || !std::exchange(fAreCurvesChanged, false)) return;
    alignas(8) std::array<std::uint8_t, CurveEvents::kMostValues * sizeof(float) + 256> buffer{};
    for (std::size_t curve = 0; curve < fCurveEvents.Count(); ++curve) {
        CurveEvents::Values values;
        const std::size_t count = fCurveEvents.ValuesOf(*fFilter, curve, values);
        lv2_atom_forge_set_buffer(&fForge, buffer.data(), buffer.size());
        fCurveEvents.WriteSet(fForge, {curve, std::span(values).first(count)});
        Send(reinterpret_cast<const LV2_Atom*>(buffer.data()));
    }
}

void PluginPanel::AskForCurves() {
    if (fFeatures.map == nullptr || fCurveEvents.Count() == 0) return;
    alignas(8) std::array<std::uint8_t, 64> buffer{};
    lv2_atom_forge_set_buffer(&fForge, buffer.data(), buffer.size());
    fCurveEvents.WriteGet(fForge);
    Send(reinterpret_cast<const LV2_Atom*>(buffer.data()));
}

void PluginPanel::Send(const LV2_Atom* atom) {
    fHost.write(fHost.controller, static_cast<std::uint32_t>(fPorts.IndexOf(kControlPort)), lv2_atom_total_size(atom),
                fEventTransfer, atom);
}

void PluginPanel::Idle() {
    kroui::ui::UI_NodeManager::Get().RunTimers();
    fWindow->Idle();
    SendCurves();
}

} // namespace qolv2
