#include "workbench/commands/PresetCommand.h"

#include "host/ByteStream.h"
#include "host/FactoryPresets.h"
#include "host/UserPresets.h"
#include "krocore/FilePath.h"
#include "krocore/config/Error.h"
#include "qolv2/PresetBundle.h"
#include "workbench/commands/Messages.h"
#include "workbench/commands/NearestName.h"
#include "workbench/commands/OutputFile.h"
#include "workbench/session/EffectNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

namespace workbench {

namespace fs = std::filesystem;

using qoc::components::EffectDescription;
using qohost::Preset;

namespace {

constexpr std::size_t kStereo = 2;
constexpr std::size_t kBlock = 512;

qohost::UserPresets SavedPresets() {
    return qohost::UserPresets(qohost::UserPresets::UsualFolder());
}

Preset PresetFromText(const EffectDescription& effect, std::string_view text) {
    const std::vector<Preset> presets = qohost::FactoryPresets(effect);
    const auto found = std::ranges::find_if(
        presets, [&](const Preset& preset) { return krocore::EqualsIgnoringCase(preset.name, text); });
    if (found != presets.end()) return *found;
    const qohost::UserPresets saved = SavedPresets();
    if (saved.Has(effect.shortName, text)) return saved.Read(effect.shortName, text);
    std::error_code error;
    const std::filesystem::path file = krocore::PathFromText(text);
    if (qolv2::IsPresetBundle(file)) return qolv2::ReadPresetBundle(file);
    if (qohost::IsStream(file) || std::filesystem::exists(file, error)) return qohost::ReadPresetFile(file);
    std::vector<std::string> names = saved.Names(effect.shortName);
    for (const Preset& preset : presets)
        names.push_back(preset.name);
    const std::string nearest = NearestName(text, names);
    const std::string advice = nearest.empty() ? "" : fmt::format(R"(did you mean "{}"? )", nearest);
    throw krocore::config::Error(
        fmt::format(R"("{0}" is neither a file nor a preset of {1}; {2}"workbench presets {1}" lists those)", text,
                    effect.shortName, advice));
}

// A name alone goes where hosts look.
fs::path BundleOf(const EffectDescription& effect, const fs::path& output) {
    if (qohost::IsStream(output)) throw krocore::config::Error("a preset for plug-in hosts is a folder, no stream");
    return output.has_parent_path() ? output : qolv2::UsualPresetBundle(effect, krocore::PathText(output.stem()));
}

} // namespace

void ApplyPresetNamed(kroaudiofilterhost::AudioFilter& filter, const EffectDescription& effect, std::string_view text) {
    if (text.empty()) return;
    for (const std::string& note : qohost::ApplyPreset(filter, PresetFromText(effect, text)))
        TellNote(fmt::format("{}: {}", text, note));
}

void MakePreset(const PresetRequest& request) {
    const EffectDescription& effect = EffectFromName(request.effect);
    const fs::path output = request.isForHosts ? BundleOf(effect, request.output) : request.output;
    CheckMayWrite(request.isForHosts ? output / "manifest.ttl" : output, request.overwrite);
    const auto filter = NewFilter(effect);
    filter->Prepare(filter->GetSampleRate(), kBlock, kromediatypes::AudioChannelLayout::ForChannelCount(kStereo));
    ApplyPresetNamed(*filter, effect, request.preset);
    ApplySettings(*filter, request.settings);
    const bool isStream = qohost::IsStream(request.output); // it has no name to give
    const std::string name =
        isStream ? krocore::ToStdString(effect.DisplayName()) : krocore::PathText(request.output.stem());
    const Preset preset = qohost::CapturePresetForAnyRate(*filter, name);
    if (request.isForHosts)
        qolv2::WritePresetBundle(output, effect, preset);
    else
        qohost::WriteBytes(output, qohost::WritePreset(preset));
}

} // namespace workbench
