#include "workbench/session/Session.h"

#include "host/AudioFile.h"
#include "host/OfflineRenderer.h"
#include "host/TestSignal.h"
#include "krocore/Localizer.h"
#include "uit/TimecodeFormat.h"
#include "workbench/session/EffectNames.h"

#include <algorithm>
#include <cmath>

namespace workbench {

using qoc::components::EffectDescription;

Session::Session(SoundOutput& output, const EffectDescription& effect, FilterPtr filter, qohost::UserPresets presets)
    : fOutput(output), fUserPresets(std::move(presets)), fEffect(&effect),
      fCurrent(filter ? &AddLoadedEffect(effect, filter) : &LoadedEffectFor(effect)),
      fSound(std::make_shared<const qohost::Sound>(qohost::MakeTestSignal())),
      fSoundName(krocore::Localize("$$$/Workbench/TestSound=Test sound")) {
    LoadEngine(fSound, fCurrent->filter);
    fOutput.Start(fEngine, fSound->sampleRate);
}

Session::~Session() {
    fOutput.Stop();
    fEngine.Close();
    for (auto& [effect, loaded] : fLoadedEffects)
        loaded.filter->SetAudioFilterHost(nullptr);
}

Session::LoadedEffect& Session::LoadedEffectFor(const EffectDescription& effect) {
    const auto known = fLoadedEffects.find(&effect);
    if (known != fLoadedEffects.end()) return known->second;
    return AddLoadedEffect(effect, NewFilter(effect));
}

Session::LoadedEffect& Session::AddLoadedEffect(const EffectDescription& effect, const FilterPtr& filter) {
    filter->SetAudioFilterHost(this);
    return fLoadedEffects.try_emplace(&effect, effect, filter, fUserPresets).first->second;
}

// Minutes, seconds and thousandths, as the transport shows time.
kroaudiofilterhost::AudioFilterTimeFormat Session::GetTimeFormat() const {
    constexpr double kFramesPerSecond = 30;
    return {uit::TimecodeSettings::kDecimal, kFramesPerSecond, kFramesPerSecond};
}

// A sound has no tempo of its own: the usual one, from the start.
kroaudiofilterhost::AudioFilterTempo Session::GetTempo() const {
    constexpr std::int32_t kTicksPerQuarter = 480;
    constexpr double kBeatsPerMinute = 120;
    constexpr std::int32_t kFour = 4; // quarters in a bar of four
    return {kTicksPerQuarter, kBeatsPerMinute, kFour, kFour, 0};
}

// Leaves the engine with what it had when that fails.
void Session::LoadEngine(const std::shared_ptr<const qohost::Sound>& sound, const FilterPtr& filter) {
    try {
        filter->SetDuration(static_cast<double>(sound->Frames()));
        fEngine.Open(sound, filter, SoundOutput::kChannels);
    } catch (...) {
        fEngine.Open(fSound, fCurrent->filter, SoundOutput::kChannels);
        throw;
    }
}

void Session::OpenFile(const std::filesystem::path& file) {
    OpenSound(file, qohost::ReadAudioFile(file));
}

void Session::OpenSound(const std::filesystem::path& file, qohost::AudioFile read) {
    const auto sound = std::make_shared<const qohost::Sound>(std::move(read.sound));
    fOutput.Stop();
    try {
        LoadEngine(sound, fCurrent->filter);
    } catch (...) {
        fOutput.Start(fEngine, fSound->sampleRate);
        throw;
    }
    fSound = sound;
    fFile = file;
    fEncoding = read.encoding;
    Select({});
    fSoundName = krocore::ToUTF16(file.filename().u8string().empty() ? file.string() : file.filename().string());
    fOutput.Start(fEngine, fSound->sampleRate);
}

void Session::ChooseEffect(const EffectDescription& effect) {
    if (&effect == fEffect) return;
    LoadedEffect& loaded = LoadedEffectFor(effect);
    const std::size_t position = fEngine.Position();
    const bool wasPlaying = fEngine.IsPlaying();
    LoadEngine(fSound, loaded.filter);
    fCurrent = &loaded;
    fEffect = &effect;
    fEngine.Seek(position);
    if (wasPlaying) Play();
}

std::vector<std::string> Session::LoadPreset(const PresetLibrary::Entry& entry) {
    auto notes = Apply(Presets().Read(entry));
    Presets().MarkLoaded(entry);
    return notes;
}

std::vector<std::string> Session::SwitchSlot() {
    const auto settings = fCurrent->slots.Switch(*Filter());
    return settings ? Apply(*settings) : std::vector<std::string>();
}

std::vector<std::string> Session::Apply(const qohost::Preset& preset) {
    const bool hasToStop = qohost::NeedsStoppedEngine(*Filter(), preset) && fEngine.IsPlaying();
    if (hasToStop) fEngine.StopAtOnce();
    auto notes = qohost::ApplyPreset(*Filter(), preset);
    if (hasToStop) fEngine.Play();
    return notes;
}

void Session::Select(const qohost::PlaybackRange& range) {
    fSelection = range;
    fEngine.SetRange(range);
}

RenderJob::Task Session::TaskToRender() const {
    const FilterPtr filter = NewFilter(*fEffect);
    filter->SetAudioFilterHost(const_cast<Session*>(this));
    filter->SetDuration(static_cast<double>(fSound->Frames()));
    filter->Prepare(fSound->sampleRate, qohost::RenderOptions().blockFrames, fSound->layout);
    qohost::ApplyPreset(*filter, qohost::CapturePreset(*Filter(), {}));
    return {fSound, fSelection, filter, fEncoding, FileToRender()};
}

std::filesystem::path Session::FileToRender() const {
    namespace fs = std::filesystem;
    const fs::path source = fFile.empty() ? fs::path(krocore::ToStdString(fSoundName)) : fFile;
    fs::path name = fFile.empty() ? source : source.stem();
    name += "-" + std::string(fEffect->shortName) + ".wav";
    return fs::absolute(source).parent_path() / name;
}

void Session::Play() {
    const std::size_t position = fEngine.Position();
    if (HasSelection() && !fEngine.IsPlaying() && (position < fSelection.begin || position >= fSelection.end))
        fEngine.Seek(fSelection.begin);
    fEngine.Play();
    fOutput.Poll();
}

void Session::Stop() {
    fEngine.Stop();
    fOutput.Poll();
}

void Session::StopOrRewind() {
    if (fEngine.IsPlaying()) return Stop();
    fEngine.Seek(HasSelection() ? fSelection.begin : 0);
}

void Session::Seek(double seconds) {
    fEngine.Seek(static_cast<std::size_t>(std::llround(std::max(0.0, seconds) * fSound->sampleRate)));
}

double Session::Position() const {
    return static_cast<double>(fEngine.Position()) / fSound->sampleRate;
}

void Session::Poll() {
    fOutput.Poll();
    fEngine.Poll();
}

} // namespace workbench
