#pragma once

#include "host/PlaybackEngine.h"
#include "host/UndoHistory.h"
#include "kroaudiofilterhost/AudioFilterHost.h"
#include "qoc/components/EffectCatalogue.h"
#include "workbench/SoundOutput.h"

#include <filesystem>
#include <map>
#include <memory>

namespace workbench {

// What is being worked on: a sound, an effect on it, the playing of both, and for each effect that was used its
// settings and what can be undone. Knows no screen. User-interface thread.
class Session final : private kroaudiofilterhost::AudioFilterHost {
public:
    using FilterPtr = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;

    // With the built-in sound and the effect. The output and the description live longer. `filter`: runs the effect,
    // for one that the library can't make; null otherwise.
    Session(SoundOutput& output, const qoc::components::EffectDescription& effect, FilterPtr filter = {});
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() override;

    // Takes another sound, at its start and stopped. Throws krocore::config::Error when the file can't be read or the
    // effect can't work on it; everything is as before then.
    void OpenFile(const std::filesystem::path& file);
    const qohost::Sound& CurrentSound() const { return *fSound; }
    // Whether it came from a file; otherwise it is the built-in one.
    const krocore::string16& SoundName() const { return fSoundName; }

    // Takes another effect, with the settings that it had last; playing goes on. Throws krocore::config::Error when it
    // can't work on the sound; everything is as before then.
    void ChooseEffect(const qoc::components::EffectDescription& effect);
    const qoc::components::EffectDescription& Effect() const { return *fEffect; }
    const FilterPtr& Filter() const { return fCurrent->filter; }
    // Of the present effect.
    qohost::UndoHistory& History() { return fCurrent->history; }

    void Play();
    void Stop();
    // To the start, if it is stopped already.
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
    struct Use {
        explicit Use(FilterPtr used) : filter(used), history(std::move(used)) {}
        FilterPtr filter;
        qohost::UndoHistory history;
    };

    kroaudiofilterhost::AudioFilterTimeFormat GetTimeFormat() const override;
    kroaudiofilterhost::AudioFilterTempo GetTempo() const override;
    Use& AddUse(const qoc::components::EffectDescription& effect, const FilterPtr& filter);
    Use& UseOf(const qoc::components::EffectDescription& effect);
    void LoadEngine(const std::shared_ptr<const qohost::Sound>& sound, const FilterPtr& filter);

    SoundOutput& fOutput;
    std::map<const qoc::components::EffectDescription*, Use> fUses;
    const qoc::components::EffectDescription* fEffect;
    Use* fCurrent;
    std::shared_ptr<const qohost::Sound> fSound;
    krocore::string16 fSoundName;
    qohost::PlaybackEngine fEngine; // goes before what it plays
};

} // namespace workbench
