#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qohost {

// The settings of one effect under a name. A value. As a file it is a JSON object:
//
//   {"version": 1, "effect": "qoc.Amplify", "name": "Quieter",
//    "natural": {"gain1": -6, "link": false}, "values": {"gain2": 0.625}}
//
// The parameters are named by their ids. "values" has normalised numbers as they are stored; "natural" has numbers in
// the parameter's unit, true or false for a switch, the item's number from 0 for a choice. "curves" has curves by their
// ids, each a list of pairs of natural numbers; what it says of a curve goes before what is said of its parameters. Any
// of them may be missing, and members with other names don't count. The version is that of the format; it may be
// missing, too.
struct Preset {
    struct Value {
        float number = 0; // finite
        bool isNatural = false;
    };

    std::string name;   // UTF-8, for people
    std::string effect; // the component identifier
    std::map<std::string, Value, std::less<>> values;
    std::map<std::string, kroaudiofilterhost::AudioFilterCurvePoints, std::less<>> curves = {};
};

// Texts and files, on any thread.

// Throws krocore::config::Error for a text that is no preset, that is nested deeply or names a member twice, and for a
// number that no float holds, and for a later version of the format. What messages repeat of a text is shortened.
Preset ParsePreset(std::string_view json);
// What ParsePreset gives the same preset for, bit by bit.
std::string WritePreset(const Preset& preset);

// The same for files and streams (see ByteStream.h), which are at most 16 MB long. They throw krocore::config::Error
// that names the file; one that can't be written completely stays as it was.
Preset ReadPresetFile(const std::filesystem::path& file);
void WritePresetFile(const std::filesystem::path& file, const Preset& preset);

// The presets of a JSON object {"effect": ID, "presets": [{"name": ..., "natural": ...}, ...]}, in its order. Throws
// krocore::config::Error.
std::vector<Preset> ParsePresetCollection(std::string_view json);

// What follows is about a filter that stays the caller's: user-interface thread, while it plays, too. A filter should
// have been prepared, since how many parameters it has may follow the channels and what a frequency means the sample
// rate.

// All that can be set of the filter, as it is now.
Preset CapturePreset(const kroaudiofilterhost::AudioFilter& filter, std::string name);
// The same for keeping: with frequencies in hertz, since what a stored value of them means may follow the sample rate,
// and with curves as one value each, of the points in use.
Preset CapturePresetForAnyRate(const kroaudiofilterhost::AudioFilter& filter, std::string name);

// Gives the filter the preset's values and every other parameter its default, as one change.
// Linked parameters that it doesn't name follow those that it gives one value.
// Returns what could not be taken as it is, a sentence each: names, of which the first 20 are told, that the filter
// doesn't have or that can't be set, natural numbers beyond the range (its end is taken), and while the engine runs
// parameters that can't be changed then. Throws krocore::config::Error, with nothing changed, for a preset of another
// effect, for a number that is not finite, for a natural value that a switch or choice doesn't have and for a curve of
// too many points.
std::vector<std::string> ApplyPreset(kroaudiofilterhost::AudioFilter& filter, const Preset& preset);

// Whether ApplyPreset would change parameters that can't be changed while the engine runs. Throws as it does.
bool NeedsStoppedEngine(const kroaudiofilterhost::AudioFilter& filter, const Preset& preset);

// Whether the filter's settings are those of the preset, but for what rounding may do. What the preset doesn't have
// doesn't count: how many parameters there are may follow the channels.
bool HasSettingsOf(const kroaudiofilterhost::AudioFilter& filter, const Preset& preset);

// All of an effect's state as a text, the same at any sample rate, for sessions and plug-in hosts: a preset without a
// name. Reading it is taking the preset: what an older text doesn't have gets its default, what a newer one has besides
// is told.
std::string SaveState(const kroaudiofilterhost::AudioFilter& filter);
std::vector<std::string> LoadState(kroaudiofilterhost::AudioFilter& filter, std::string_view state);

} // namespace qohost
