#pragma once

#include "kroui/ui/UI_NodeBuilder.h"
#include "qocui/controls/AudioComponentEditorViewBase.h"
#include "qocui/controls/StoredSwitch.h"

#include <optional>
#include <string>

namespace kroui::controls {
class ValueControl;
}
namespace kroui::utility {
class ResourceManager;
}

namespace qoc::components {
class GenericParameterInfo;
}

namespace qocui::controls {

// An editor view whose controls come from a layout archive in the library's resources. Subclasses supply custom nodes
// (graphs, meters) for the archive's placeholders and connect the controls to the filter's parameters.
class QOCUI_API AudioComponentEditorXMLView : public AudioComponentEditorViewBase {
public:
    // `resourceName`: the archive's name, case ignored ("Amplify"). Loads nothing yet.
    AudioComponentEditorXMLView(const std::string& resourceName,
                                boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    bool CanScrollContent() const override;
    // Loads the archive, takes its size, adds it as the only child and connects the controls. An archive that gives no
    // sub-view leaves the view empty.
    void Init() override;

protected:
    ~AudioComponentEditorXMLView() override;

    virtual kroui::utility::ResourceManager* GetResourceManager() const;
    // The node for a placeholder with this class name; null leaves its place empty.
    virtual boost::intrusive_ptr<kroui::ui::UI_Node> CreateCustomNode(const krocore::string16& className) const;
    // The archive is loaded: find the controls, set them up, bind handlers and parameter observers.
    virtual void ConnectControls();
    // The view has another size: the content takes it over.
    virtual void UpdateSize(const kroui::RectT<float>& rect);

    boost::intrusive_ptr<kroui::ui::UI_SubView> GetContentView() { return fContentView; }

    // The archive's node with the id, if there is one and it is of that class; null otherwise.
    template <class Node>
    Node* FindNamed(std::string_view id) const {
        return dynamic_cast<Node*>(FindNamedNode(id));
    }
    kroui::ui::UI_Node* FindNamedNode(std::string_view id) const;

    // A parameter's value in its unit, and a value in the unit as it is stored; nothing if the filter does not describe
    // the parameter.
    std::optional<float> GetNatural(int parameterIndex) const;
    std::optional<float> ToNormalised(int parameterIndex, double natural) const;
    // The same from a filter that describes itself; one that does not keeps natural values.
    float GetNaturalOrStored(int parameterIndex) const;
    // The description with the bounds; null for filters that describe themselves otherwise.
    const qoc::components::GenericParameterInfo* GetGenericInfo(int parameterIndex) const;
    // Lets a reset of the control that shows the parameter go to the parameter's default.
    void ResetToDefaultOf(int parameterIndex, kroui::controls::ValueControl& control) const;
    bool IsOn(int parameterIndex) const;

private:
    std::string fResourceName;
    kroui::ui::NamedNodes fNamedNodes;
    boost::intrusive_ptr<kroui::ui::UI_SubView> fContentView;
};

} // namespace qocui::controls
