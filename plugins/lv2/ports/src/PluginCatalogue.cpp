#include "qolv2/PluginCatalogue.h"

#include "krocore/String.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace qolv2 {

namespace {

using kromediatypes::AudioChannelLayout;

constexpr std::size_t kMono = 1;
constexpr std::size_t kStereo = 2;
constexpr std::size_t kSurround = 6;

struct Variant {
    std::size_t channels;
    const char* uriEnd;
    const char* nameEnd;
};
constexpr std::array<Variant, 3> kVariants = {
    {{kStereo, "", ""}, {kMono, ":mono", " (mono)"}, {kSurround, ":surround", " (5.1)"}}};

// They are about two channels.
constexpr std::string_view kStereoOnly[] = {"autophasecorrection", "centerchannelextract", "channelmixer",
                                            "stereoexpander"};

constexpr EffectSummary kSummaries[] = {
    {"adaptivenoisereduction", "SpectralPlugin",
     "Takes away hiss, hum and other steady noise, which it finds and follows by itself."},
    {"amplify", "AmplifierPlugin", "Makes each channel louder or softer."},
    {"autoclickremover", "UtilityPlugin", "Finds clicks and crackle, as of old records, and mends them."},
    {"autophasecorrection", "UtilityPlugin", "Brings channels into phase that are copies of each other."},
    {"centerchannelextract", "SpatialPlugin",
     "Takes what stands in the middle of a stereo mix out of it, or keeps it alone."},
    {"channelmixer", "MixerPlugin", "Mixes every output from all inputs."},
    {"chorus", "ChorusPlugin", "Makes one voice many, each a little late and out of tune."},
    {"delay", "DelayPlugin", "Adds one late copy of each side, or makes it early."},
    {"doppler", "SpatialPlugin", "Moves the sound past the listener, whose pitch and level follow."},
    {"dynamics", "CompressorPlugin", "Compresses, expands, gates and limits along a drawn curve."},
    {"echo", "DelayPlugin", "Adds echoes that come again and again, coloured by eight bands."},
    {"fftfilter", "EQPlugin", "Filters by a drawn curve, with linear phase."},
    {"flanger", "FlangerPlugin", "Sweeps a short delay, whose notches wander through the sound."},
    {"fullreverb", "ReverbPlugin", "Puts the sound in a room, with its walls, its size and its place in it."},
    {"graphiceq10bands", "MultiEQPlugin", "Raises and lowers ten bands of an octave."},
    {"graphiceq20bands", "MultiEQPlugin", "Raises and lowers twenty bands of half an octave."},
    {"graphiceq30bands", "MultiEQPlugin", "Raises and lowers thirty bands of a third of an octave."},
    {"graphicphaseshifter", "AllpassPlugin", "Shifts phases by a drawn curve and leaves levels alone."},
    {"hardlimiter", "LimiterPlugin", "Keeps true peaks under a ceiling, however much is driven into it."},
    {"intraclip", "UtilityPlugin", "Restores peaks that were clipped."},
    {"notch", "FilterPlugin", "Takes single frequencies away, such as hum and its harmonics."},
    {"parametriceq", "ParaEQPlugin", "Nine bands of any frequency, gain and width."},
    {"pitchcorrect", "PitchPlugin", "Pulls a voice to the notes of a scale."},
    {"pitchshift", "PitchPlugin", "Changes the pitch and keeps the length."},
    {"reverb", "ReverbPlugin", "A smooth reverberation of any length."},
    {"scientificfilter", "FilterPlugin",
     "The classical filters of any order: Bessel, Butterworth, Chebyshev, elliptic."},
    {"stereoexpander", "SpatialPlugin", "Makes a stereo sound wider or narrower, and moves its middle."},
    {"studioreverb", "ReverbPlugin", "A fast reverberation with early reflections and damping."},
};

std::vector<PluginDescription> MakeAll() {
    std::vector<PluginDescription> plugins;
    for (const auto& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        const bool isStereoOnly = std::ranges::find(kStereoOnly, effect.shortName) != std::end(kStereoOnly);
        for (const Variant& variant : kVariants) {
            if (isStereoOnly && variant.channels != kStereo) continue;
            plugins.push_back(
                {&effect, variant.channels, "urn:qoaudio:" + std::string(effect.shortName) + variant.uriEnd});
        }
    }
    return plugins;
}

const Variant& VariantOf(std::size_t channels) {
    return *std::ranges::find(kVariants, channels, &Variant::channels);
}

} // namespace

AudioChannelLayout PluginDescription::Layout() const {
    return AudioChannelLayout::ForChannelCount(channels);
}

std::string PluginDescription::Name() const {
    return krocore::ToStdString(effect->DisplayName()) + VariantOf(channels).nameEnd;
}

std::span<const PluginDescription> AllPlugins() {
    static const std::vector<PluginDescription> sPlugins = MakeAll();
    return sPlugins;
}

const PluginDescription* FindPlugin(std::string_view uri) {
    const auto plugins = AllPlugins();
    const auto known = std::ranges::find(plugins, uri, &PluginDescription::uri);
    return known != plugins.end() ? &*known : nullptr;
}

const EffectSummary& SummaryOf(const qoc::components::EffectDescription& effect) {
    const auto known = std::ranges::find(
        kSummaries, effect.shortName, [](const EffectSummary& summary) { return std::string_view(summary.shortName); });
    if (known == std::end(kSummaries))
        throw std::logic_error(std::string(effect.shortName) + " has no row in PluginCatalogue.cpp");
    return *known;
}

} // namespace qolv2
