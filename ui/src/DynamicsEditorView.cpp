#include "qocui/ui/DynamicsEditorView.h"

#include "krotarnlio/UI_KROLioRoot.h"
#include "kroui/controls/Messages.h"
#include "kroui/controls/UI_Button.h"
#include "qocui/module/Module.h"
#include "uit/controls/UI_CurveEditor.h"

#include <boost/bind/bind.hpp>

namespace qocui::ui {

using boost::placeholders::_1;
using kroui::controls::UI_Button;
using kroui::controls::UI_ControlChangedMessage;
using uit::controls::UI_CurveEditor;

namespace {

template <class Control>
boost::intrusive_ptr<Control> FindControl(const krotarnlio::UI_LioViewHolder& holder, std::string_view identifier) {
    return boost::intrusive_ptr<Control>(dynamic_cast<Control*>(holder.GetControl(identifier)));
}

void NotifyIfChanged(UI_CurveEditor* editor, bool (UI_CurveEditor::*command)()) {
    if (editor && (editor->*command)()) editor->NotifyChanged();
}

} // namespace

DynamicsEditorView::DynamicsEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : TarnLioAudioComponentEditorView(std::move(filter), module::GetDrawSupplier(), u"DynamicsUI",
                                      module::GetModuleInstance()) {
    CreateLayout();
    const krotarnlio::UI_LioViewHolder& holder = GetLioRoot()->GetViewHolder();
    fCurveEditor = FindControl<UI_CurveEditor>(holder, "CurveEditor");
    fAddPointButton = FindControl<UI_Button>(holder, "AddPointButton");
    fDeletePointButton = FindControl<UI_Button>(holder, "DeletePointButton");
    fInvertButton = FindControl<UI_Button>(holder, "InvertButton");
    if (fAddPointButton)
        fAddPointButton->NotifyWhenChanged(boost::bind(&DynamicsEditorView::OnAddPointButtonChanged, this, _1));
    if (fDeletePointButton)
        fDeletePointButton->NotifyWhenChanged(boost::bind(&DynamicsEditorView::OnDeletePointButtonChanged, this, _1));
    if (fInvertButton)
        fInvertButton->NotifyWhenChanged(boost::bind(&DynamicsEditorView::OnInvertButtonChanged, this, _1));
}

DynamicsEditorView::~DynamicsEditorView() = default;

void DynamicsEditorView::OnAddPointButtonChanged(UI_ControlChangedMessage* /*message*/) {
    NotifyIfChanged(fCurveEditor.get(), &UI_CurveEditor::AddNewPoint);
}

void DynamicsEditorView::OnDeletePointButtonChanged(UI_ControlChangedMessage* /*message*/) {
    NotifyIfChanged(fCurveEditor.get(), &UI_CurveEditor::DeleteSelectedPoints);
}

void DynamicsEditorView::OnInvertButtonChanged(UI_ControlChangedMessage* /*message*/) {
    NotifyIfChanged(fCurveEditor.get(), &UI_CurveEditor::Invert);
}

} // namespace qocui::ui
