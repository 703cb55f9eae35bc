// What the scripts of a panel can call and name.

#include "krocore/String.h"
#include "krotarnlio/Functions.h"
#include "orrin/error.h"
#include "orrin/functions.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <stdexcept>

namespace qocui::controls {

using boost::placeholders::_1;
using orrin::any_regular_t;
using orrin::array_t;
using orrin::name_t;

namespace {

constexpr const char* kReflectedNames[] = {
    "align_left",         "align_right", "align_top", "align_bottom", "align_center",
    "align_proportional", "align_fill",  "place_row", "place_column", "place_overlay",
};

// The first argument of a call, or the value itself for a function that takes one.
any_regular_t FirstArgument(const any_regular_t& arguments) {
    const array_t* const list = arguments.get_if<array_t>();
    if (!list) return arguments;
    return list->empty() ? any_regular_t() : list->front();
}

int IntegerOf(const orrin::dictionary_t& arguments, const char* key) {
    constexpr double kMost = 1e6;
    const any_regular_t* const value = arguments.find(name_t(key));
    const double number = value ? value->get<double>() : 0;
    return std::abs(number) <= kMost ? static_cast<int>(number) : 0;
}

} // namespace

void TarnLioAudioComponentEditorView::InitStandardFunctionPack() {
    using View = TarnLioAudioComponentEditorView;
    const auto add = [this](const char* name, ScriptFunction function) {
        fFunctionPack.insert_or_assign(name_t(name), std::move(function));
    };
    const auto channelName = [this](bool abbreviated, bool input) {
        return [this, abbreviated, input](const any_regular_t& arguments) {
            return GetChannelName(FirstArgument(arguments), abbreviated, input);
        };
    };
    const auto channelNames = [this](bool abbreviated) {
        return [this, abbreviated](const any_regular_t&) {
            return any_regular_t(GetChannelNameArray(abbreviated, false));
        };
    };
    add("default_maximum", &krotarnlio::default_maximum);
    add("default_minimum", &krotarnlio::default_minimum);
    add("evaluate_serialization", &krotarnlio::evaluate_serialization);
    add("evaluate_token_stream", &krotarnlio::evaluate_token_stream);
    add("has_key", &krotarnlio::has_key);
    add("name_to_string", &krotarnlio::name_to_string);
    add("serialize_regular", &krotarnlio::serialize_regular);
    add("serialize_token_stream", &krotarnlio::serialize_token_stream);
    add("string_to_name", &krotarnlio::string_to_name);
    add("tokenize_regular", &krotarnlio::tokenize_regular);
    add("dictionary_union", &krotarnlio::merge_dictionary_set);
    add("tokenize_serialization", &krotarnlio::tokenize_serialization);
    add("get_curve_data", boost::bind(&View::GetCurveData, this, _1));
    add("trace", [this](const any_regular_t& arguments) { return Trace(FirstArgument(arguments)); });
    add("get_input_channel_name", channelName(false, true));
    add("get_output_channel_name", channelName(false, false));
    add("get_input_channel_abbrev", channelName(true, true));
    add("get_output_channel_abbrev", channelName(true, false));
    add("get_output_channel_abbrev_array", channelNames(true));
    add("get_output_channel_name_array", channelNames(false));
}

void TarnLioAudioComponentEditorView::InitStandardReflectedVariableSet() {
    for (const char* const name : kReflectedNames)
        fReflectedNames.emplace_back(name);
    std::ranges::sort(fReflectedNames);
}

void TarnLioAudioComponentEditorView::SetupVirtualMachine(orrin::sheet_t& sheet) {
    SetupVirtualMachine(sheet.machine(), &sheet);
}

void TarnLioAudioComponentEditorView::SetupVirtualMachine(orrin::virtual_machine_t& machine) {
    SetupVirtualMachine(machine, nullptr);
}

void TarnLioAudioComponentEditorView::SetupVirtualMachine(orrin::virtual_machine_t& machine, orrin::sheet_t* sheet) {
    machine.set_function_lookup(
        [this](name_t name, const any_regular_t& arguments) { return CallFunction(name, arguments); });
    machine.set_variable_lookup([this, sheet](name_t name) { return StandardReflectedVariableSet(name, sheet); });
}

std::vector<name_t> TarnLioAudioComponentEditorView::GetFunctionNames() const {
    std::vector<name_t> names;
    for (const auto& [name, function] : fFunctionPack)
        names.push_back(name);
    return names;
}

any_regular_t TarnLioAudioComponentEditorView::CallFunction(name_t name, const any_regular_t& arguments) const {
    const auto function = fFunctionPack.find(name);
    if (function == fFunctionPack.end())
        throw std::invalid_argument("there is no function " + orrin::in_quotes(name.text()));
    return function->second(arguments);
}

any_regular_t TarnLioAudioComponentEditorView::StandardReflectedVariableSet(name_t name, orrin::sheet_t* sheet) {
    if (std::ranges::binary_search(fReflectedNames, name)) return name;
    if (sheet) return sheet->get(name);
    throw std::runtime_error("Variable lookup failed");
}

any_regular_t TarnLioAudioComponentEditorView::GetChannelName(const any_regular_t& index, bool abbreviated,
                                                              bool input) const {
    const auto filter = GetAudioFilter();
    const auto& layout = (input ? filter->GetInputBuses() : filter->GetOutputBuses()).front().GetLayout();
    const double* const number = index.get_if<double>();
    // Truncated towards zero, so that -0.5 is the first channel.
    if (!number || !(*number > -1 && *number < static_cast<double>(layout.size()))) return std::string();
    return krocore::ToStdString(layout.ChannelName(static_cast<std::size_t>(*number), abbreviated));
}

orrin::vector<any_regular_t> TarnLioAudioComponentEditorView::GetChannelNameArray(bool abbreviated, bool input) {
    const auto filter = GetAudioFilter();
    const std::size_t count = (input ? filter->GetInputBuses() : filter->GetOutputBuses()).front().GetLayout().size();
    orrin::vector<any_regular_t> names;
    for (std::size_t channel = 0; channel < count; ++channel)
        names.emplace_back(orrin::dictionary_t{{name_t("name"), GetChannelName(channel, abbreviated, input)},
                                               {name_t("value"), channel}});
    return names;
}

orrin::vector<any_regular_t> TarnLioAudioComponentEditorView::GetCurveData(const any_regular_t& arguments) {
    const orrin::dictionary_t& request = orrin::named_arguments(arguments);
    const int size = IntegerOf(request, "size");
    std::vector<float> samples;
    if (size > 0)
        GetAudioFilter()->GetResponseCurve(IntegerOf(request, "index"), static_cast<std::size_t>(size), samples);
    return {samples.begin(), samples.end()};
}

any_regular_t TarnLioAudioComponentEditorView::Trace(const any_regular_t& value) {
    return value;
}

} // namespace qocui::controls
