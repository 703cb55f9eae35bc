#pragma once

#include "krocore/ModuleResources.h"
#include "orrin/dictionary.h"
#include "orrin/sheet.h"
#include "orrin/virtual_machine.h"
#include "qocui/controls/AudioComponentEditorViewBase.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace krotarnlio {
class UI_KROLioRoot;
}

namespace qocui::controls {

// The editor view of every effect whose panel is a pair of scripts: a sheet, the model, whose input cells "in0",
// "in1", ... take the filter's normalised parameters and whose output cells "out0", "out1", ... are written back to
// them; and a layout, the widgets, bound to the sheet's cells. Both are resources of the same name, of the types TRN
// and LIO. Owned by reference count; user-interface thread.
class QOCUI_API TarnLioAudioComponentEditorView : public AudioComponentEditorViewBase {
public:
    // Makes the view and lays it out. `supplier` measures and draws, and outlives the view; `module` holds the scripts.
    // Without them (no module, no such resources) the panel is empty. Throws orrin::error_t for a script that can't be
    // read.
    static boost::intrusive_ptr<TarnLioAudioComponentEditorView>
    Create(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
           const kroui::limner::SupplierInterface* supplier, const krocore::string16& resourceName, HINSTANCE module);
    ~TarnLioAudioComponentEditorView() override;

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override { return fSupplier; }
    // The user has let go of a control: ends the gesture that a press on the panel's ground began.
    void ControlReleased();

    // What goes wrong in the sheet at present: expressions that fail with the values that there are now, outputs that
    // are no numbers. Their cells and parameters keep the last good values, and the panel is framed. Script, line and
    // column are those of the sheet's file; the message names the cell. Changes with the polls.
    const std::vector<orrin::error_t>& GetProblems() const { return fProblems; }

    void UI_DrawOver(kroui::limner::Limner* limner) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

    // For tools that check scripts: the functions that scripts can call, and a machine that can call and name what they
    // can, as long as the view lives. `sheet`: whose cells are names too; null for the machine of a layout.
    std::vector<orrin::name_t> GetFunctionNames() const;
    void SetupVirtualMachine(orrin::virtual_machine_t& machine, orrin::sheet_t* sheet);

protected:
    TarnLioAudioComponentEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
                                    const kroui::limner::SupplierInterface* supplier,
                                    const krocore::string16& resourceName, HINSTANCE module);

    // Puts the widgets into the view and takes their size. Once, after construction.
    void CreateLayout();
    // Takes the size of the widgets if it is another now, and tells the host.
    void RecalcLayout();
    // Null only while the view is being made.
    krotarnlio::UI_KROLioRoot* GetLioRoot() const { return fLayoutRoot.get(); }

    // A press on the view's own ground begins a gesture for all parameters. Never consumes the event.
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    // Shows the filter's parameters, and what else the sheet wants to know, if anything has changed.
    void SyncParameters() override;

private:
    struct Scripts {
        std::string sheet;
        std::string layout;
    };
    struct ReleaseRoot {
        void operator()(const krotarnlio::UI_KROLioRoot* root) const;
    };
    using ScriptFunction = boost::function<orrin::any_regular_t(const orrin::any_regular_t&)>;

    // --- construction, in its order ---
    static Scripts LoadScripts(const krocore::string16& resourceName, HINSTANCE module);
    void ParseSheet(const std::string& script);
    void ClearInputs();
    void SubscribeOutputs();
    void ParseLayout(const std::string& script, HINSTANCE module);
    void TakeDefaults();
    void SetSampleRateCell();
    void AskHostForTime();

    // --- what the scripts can call and name ---
    void InitStandardFunctionPack();
    void InitStandardReflectedVariableSet();
    void SetupVirtualMachine(orrin::sheet_t& sheet);
    void SetupVirtualMachine(orrin::virtual_machine_t& machine);
    orrin::any_regular_t CallFunction(orrin::name_t name, const orrin::any_regular_t& arguments) const;
    // A reflected name stands for itself; any other one for the cell of the sheet, if one is given.
    orrin::any_regular_t StandardReflectedVariableSet(orrin::name_t name, orrin::sheet_t* sheet);
    // The name of a channel of the first input or output bus; empty for an index that is none.
    orrin::any_regular_t GetChannelName(const orrin::any_regular_t& index, bool abbreviated, bool input) const;
    // A dictionary { name, value } a channel.
    orrin::vector<orrin::any_regular_t> GetChannelNameArray(bool abbreviated, bool input);
    // Of { index, size }: the filter's response curve, sampled.
    orrin::vector<orrin::any_regular_t> GetCurveData(const orrin::any_regular_t& arguments);
    orrin::any_regular_t Trace(const orrin::any_regular_t& value);

    // --- sheet to filter, filter to sheet ---
    void NameParameters();
    void OnParameterChanged(const orrin::any_regular_t& value, int index);
    bool PushParameters();
    bool PushTimeFormat();
    void PushEnvironment();
    void OnSuspendedStateChanged(const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>& filter);
    void GiveParameter(std::size_t index, float value);
    void GiveInput(orrin::name_t input, const orrin::any_regular_t& value);
    void SetCell(orrin::name_t cell, const orrin::any_regular_t& value);
    void RecalculateSheet();
    void FollowProblems();
    std::vector<orrin::error_t> FindProblems() const;

    std::int32_t fLastDirtyCount = -1;
    std::unique_ptr<krotarnlio::UI_KROLioRoot, ReleaseRoot> fLayoutRoot;
    std::shared_ptr<orrin::sheet_t> fSheet;
    bool fSyncing = false; // the view itself writes into the sheet
    std::map<orrin::name_t, ScriptFunction> fFunctionPack;
    orrin::vector<orrin::name_t> fReflectedNames; // sorted
    orrin::dictionary_t fTimeFormat;
    bool fTimeFormatPending = false; // to be written to the sheet
    bool fLastSuspended;
    const kroui::limner::SupplierInterface* fSupplier;
    orrin::vector<orrin::name_t> fInputNames;  // "in0", "in1", ...
    orrin::vector<orrin::name_t> fOutputNames; // "out0", "out1", ...
    std::vector<orrin::given_input_t> fGiven;  // inputs that have changed since the last push
    std::string fSheetFile;                    // as messages call it
    std::vector<orrin::error_t> fProblems;
    std::uint64_t fSeenEvaluations = 0; // when problems were looked for
};

} // namespace qocui::controls
