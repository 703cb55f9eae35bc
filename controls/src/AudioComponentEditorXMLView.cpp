#include "qocui/controls/AudioComponentEditorXMLView.h"

#include "kroui/controls/ValueControl.h"
#include "kroui/utility/ResourceManager.h"
#include "qoc/components/GenericParameterInfo.h"
#include "qocui/module/Module.h"

namespace qocui::controls {

AudioComponentEditorXMLView::AudioComponentEditorXMLView(const std::string& resourceName,
                                                         boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorViewBase(std::move(filter)), fResourceName(resourceName) {
    // The content fills the view, whatever its archive says of its edges.
    SetLayoutChildren(false);
}

AudioComponentEditorXMLView::~AudioComponentEditorXMLView() = default;

void AudioComponentEditorXMLView::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_SubView::UI_SizeChanged(rect);
    UpdateSize(rect);
}

bool AudioComponentEditorXMLView::CanScrollContent() const {
    return true;
}

void AudioComponentEditorXMLView::Init() {
    const auto factory = [this](const krocore::string16& className) { return CreateCustomNode(className); };
    const krocore::string16 name = krocore::ToUTF16(fResourceName);
    const kroui::utility::ResourceManager* const resources = GetResourceManager();
    if (!resources) return;
    const auto root =
        kroui::ui::UI_NodeBuilder::LoadViewFromXML(*resources, module::GetDrawSupplier(), name, fNamedNodes, factory);
    fContentView = boost::dynamic_pointer_cast<kroui::ui::UI_SubView>(root);
    if (!fContentView) return fNamedNodes.clear();
    UI_SetLocalRect(fContentView->UI_GetLocalRect());
    ChildPushBack(fContentView);
    ConnectControls();
    fContentView->UI_Show(true);
}

kroui::utility::ResourceManager* AudioComponentEditorXMLView::GetResourceManager() const {
    return module::GetResourceManager();
}

boost::intrusive_ptr<kroui::ui::UI_Node>
AudioComponentEditorXMLView::CreateCustomNode(const krocore::string16& /*className*/) const {
    return nullptr;
}

void AudioComponentEditorXMLView::ConnectControls() {
}

void AudioComponentEditorXMLView::UpdateSize(const kroui::RectT<float>& rect) {
    if (fContentView) fContentView->UI_SetLocalRect(rect);
}

kroui::ui::UI_Node* AudioComponentEditorXMLView::FindNamedNode(std::string_view id) const {
    const auto node = fNamedNodes.find(krocore::string8(id));
    return node != fNamedNodes.end() ? node->second : nullptr;
}

std::optional<float> AudioComponentEditorXMLView::GetNatural(int parameterIndex) const {
    const auto filter = GetAudioFilter();
    const auto* const info = filter->GetParameterInfo(parameterIndex);
    if (!info) return {};
    return info->ToNatural(filter->GetParameterValue(parameterIndex));
}

float AudioComponentEditorXMLView::GetNaturalOrStored(int parameterIndex) const {
    return GetNatural(parameterIndex).value_or(GetAudioFilter()->GetParameterValue(parameterIndex));
}

std::optional<float> AudioComponentEditorXMLView::ToNormalised(int parameterIndex, double natural) const {
    const auto* const info = GetAudioFilter()->GetParameterInfo(parameterIndex);
    if (!info) return {};
    return info->ToNormalised(static_cast<float>(natural));
}

const qoc::components::GenericParameterInfo* AudioComponentEditorXMLView::GetGenericInfo(int parameterIndex) const {
    return dynamic_cast<const qoc::components::GenericParameterInfo*>(
        GetAudioFilter()->GetParameterInfo(parameterIndex));
}

void AudioComponentEditorXMLView::ResetToDefaultOf(int parameterIndex, kroui::controls::ValueControl& control) const {
    if (const auto* const info = GetAudioFilter()->GetParameterInfo(parameterIndex))
        control.SetDefaultValue(info->ToNatural(info->GetDefault()));
}

bool AudioComponentEditorXMLView::IsOn(int parameterIndex) const {
    return IsSwitchOn(GetAudioFilter()->GetParameterValue(parameterIndex));
}

} // namespace qocui::controls
