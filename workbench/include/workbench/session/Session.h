#pragma once

#include "host/PlaybackEngine.h"
#include "host/SoundSource.h"
#include "host/UndoHistory.h"
#include "kroaudiofilterhost/AudioFilterHost.h"
#include "qoc/components/EffectCatalogue.h"
#include "workbench/session/CompareSlots.h"
#include "workbench/session/PresetLibrary.h"
#include "workbench/sound/PeaksJob.h"
#include "workbench/sound/RenderJob.h"
#include "workbench/sound/SoundOutput.h"

#include <filesystem>
#include <map>
#include <memory>

namespace workbench {

// What is being worked on: a sound, an effect on it, the playing of both, and for each effect that was used its
// settings, presets and what can be undone. Knows no screen. User-interface thread.
class Session final : private kroaudiofilterhost::AudioFilterHost {
public:
    using FilterPtr = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;

    struct OpenedFile {
        std::filesystem::path name;
        std::shared_ptr<const qohost::SoundSource> sound;
    };
    // What a session begins with besides its effect.
    struct Beginning {
        FilterPtr filter; // runs the effect, for one that the library can't make; null otherwise
        qohost::UserPresets presets = qohost::UserPresets(qohost::UserPresets::UsualFolder()); // the user's own
        PeaksCache peaks = PeaksCache(PeaksCache::UsualFolder());
        OpenedFile file; // without a sound: the built-in one
    };

    // The output and the description live longer. Throws krocore::config::Error when the effect can't work on the
    // sound.
    Session(SoundOutput& output, const qoc::components::EffectDescription& effect)
        : Session(output, effect, Beginning{}) {}
    Session(SoundOutput& output, const qoc::components::EffectDescription& effect, Beginning beginning);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() override;

    // Takes another sound, at its start and stopped. Throws krocore::config::Error when the file can't be read or the
    // effect can't work on it; everything is as before then.
    void OpenFile(const std::filesystem::path& file);
    // The same with what the file was opened as.
    void OpenSound(const std::filesystem::path& file, std::shared_ptr<const qohost::SoundSource> sound);
    const qohost::SoundSource& CurrentSound() const { return *fSound; }
    // Of a long sound they come by and by.
    const std::shared_ptr<const WaveformPeaks>& Peaks() const { return fPeaks->Peaks(); }
    bool ArePeaksComing() const { return !fPeaks->IsOver(); }
    // What the user has to know of the sound: that it can't be read, or not as fast as it is played. Each is told once
    // for each playing; empty when there is nothing new.
    krocore::string16 TakeSoundProblem();
    // Whether it came from a file; otherwise it is the built-in one.
    const krocore::string16& SoundName() const { return fSoundName; }

    // Takes another effect, with the settings that it had last; playing goes on. Throws krocore::config::Error when it
    // can't work on the sound; everything is as before then.
    void ChooseEffect(const qoc::components::EffectDescription& effect);
    const qoc::components::EffectDescription& Effect() const { return *fEffect; }
    const FilterPtr& Filter() const { return fCurrent->filter; }
    // Of the present effect.
    qohost::UndoHistory& History() { return fCurrent->history; }

    // Of the present effect, too.
    PresetLibrary& Presets() { return fCurrent->presets; }
    // Of all effects.
    const qohost::UserPresets& SavedPresets() const { return fUserPresets; }
    CompareSlots::Slot Slot() const { return fCurrent->slots.Current(); }
    // Sets the effect as the preset, or the other slot, has it: one step of undo. Playing goes on, after a short gap if
    // something can't be changed while it plays. Returns notes as ApplyPreset does. The first throws
    // krocore::config::Error, with everything as before.
    std::vector<std::string> LoadPreset(const PresetLibrary::Entry& entry);
    std::vector<std::string> SwitchSlot();

    // What is played and rendered of the sound; an empty range is the whole of it.
    void Select(const qohost::PlaybackRange& range);
    const qohost::PlaybackRange& Selection() const { return fSelection; }
    bool HasSelection() const { return fSelection.end > fSelection.begin; }

    // What renders the selection, with the settings as they are now, into "NAME-EFFECT.wav" beside the sound's file, or
    // in the working folder for the built-in one. The session outlives the job. Throws krocore::config::Error for an
    // effect that the library can't make.
    RenderJob::Task TaskToRender() const;

    // From the start of the selection, if it stands outside.
    void Play();
    void Stop();
    // To the start of the selection, if it is stopped already.
    void StopOrRewind();
    // Seconds from the start of the sound.
    void Seek(double seconds);
    double Position() const;
    qohost::PlaybackEngine& Engine() { return fEngine; }
    const qohost::PlaybackEngine& Engine() const { return fEngine; }
    SoundOutput& Output() { return fOutput; }

    // To be called often.
    void Poll();

private:
    struct LoadedEffect {
        LoadedEffect(const qoc::components::EffectDescription& effect, const FilterPtr& used,
                     const qohost::UserPresets& userPresets)
            : filter(used), history(used), presets(effect, used, userPresets) {}
        FilterPtr filter;
        qohost::UndoHistory history;
        PresetLibrary presets;
        CompareSlots slots;
    };

    kroaudiofilterhost::AudioFilterTimeFormat GetTimeFormat() const override;
    kroaudiofilterhost::AudioFilterTempo GetTempo() const override;
    LoadedEffect& AddLoadedEffect(const qoc::components::EffectDescription& effect, const FilterPtr& filter);
    LoadedEffect& LoadedEffectFor(const qoc::components::EffectDescription& effect);
    std::filesystem::path FileToRender() const;
    std::vector<std::string> Apply(const qohost::Preset& preset);
    void LoadEngine(const std::shared_ptr<const qohost::SoundSource>& sound, const FilterPtr& filter);
    void Take(OpenedFile file);

    SoundOutput& fOutput;
    qohost::UserPresets fUserPresets;
    std::map<const qoc::components::EffectDescription*, LoadedEffect> fLoadedEffects;
    const qoc::components::EffectDescription* fEffect;
    LoadedEffect* fCurrent;
    PeaksCache fPeaksCache;
    std::shared_ptr<const qohost::SoundSource> fSound;
    std::unique_ptr<PeaksJob> fPeaks;
    bool fHasToldPeaks = false;   // what went wrong with them
    bool fHasToldMissing = false; // since playing began
    krocore::string16 fSoundName;
    std::filesystem::path fFile; // empty: the built-in sound
    qohost::PlaybackRange fSelection;
    qohost::PlaybackEngine fEngine; // goes before what it plays
};

} // namespace workbench
