#include "workbench/session/Session.h"

#include "host/OfflineRenderer.h"
#include "host/TestSignal.h"
#include "krocore/FilePath.h"
#include "krocore/Localizer.h"
#include "uit/TimecodeFormat.h"
#include "workbench/session/EffectNames.h"

#include <algorithm>
#include <cmath>

namespace workbench {

using qoc::components::EffectDescription;

namespace {

Session::OpenedFile OrTestSound(Session::OpenedFile file) {
    if (!file.sound)
        file.sound = qohost::SourceInMemory(std::make_shared<const qohost::Sound>(qohost::MakeTestSignal()));
    return file;
}

krocore::string16 ShownName(const std::filesystem::path& file) {
    if (file.empty()) return krocore::Localize("$$$/Workbench/TestSound=Test sound");
    return krocore::ToUTF16(file.filename().u8string().empty() ? krocore::PathText(file)
                                                               : krocore::PathText(file.filename()));
}

} // namespace

Session::Session(SoundOutput& output, const EffectDescription& effect, Beginning beginning)
    : fOutput(output), fUserPresets(std::move(beginning.presets)), fEffect(&effect),
      fCurrent(beginning.filter ? &AddLoadedEffect(effect, beginning.filter) : &LoadedEffectFor(effect)),
      fPeaksCache(std::move(beginning.peaks)) {
    OpenedFile file = OrTestSound(std::move(beginning.file));
    LoadEngine(file.sound, fCurrent->filter);
    Take(std::move(file));
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
void Session::LoadEngine(const std::shared_ptr<const qohost::SoundSource>& sound, const FilterPtr& filter) {
    try {
        filter->SetDuration(static_cast<double>(sound->Frames()));
        fEngine.Open(sound, filter, SoundOutput::kChannels);
    } catch (...) {
        fEngine.Open(fSound, fCurrent->filter, SoundOutput::kChannels);
        throw;
    }
}

void Session::OpenFile(const std::filesystem::path& file) {
    OpenSound(file, qohost::OpenSoundSource(file));
}

void Session::OpenSound(const std::filesystem::path& file, std::shared_ptr<const qohost::SoundSource> sound) {
    fOutput.Stop();
    try {
        LoadEngine(sound, fCurrent->filter);
    } catch (...) {
        fOutput.Start(fEngine, fSound->SampleRate());
        throw;
    }
    Select({});
    Take({file, std::move(sound)});
}

// What the engine has loaded.
void Session::Take(OpenedFile file) {
    fSound = std::move(file.sound);
    fFile = std::move(file.name);
    fSoundName = ShownName(fFile);
    fPeaks = std::make_unique<PeaksJob>(fSound, fPeaksCache);
    fHasToldPeaks = false;
    fOutput.Start(fEngine, fSound->SampleRate());
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

krocore::string16 Session::TakeSoundProblem() {
    std::string problem = fEngine.TakeProblem();
    if (problem.empty() && !fHasToldPeaks && fPeaks->IsOver()) {
        problem = fPeaks->Problem();
        fHasToldPeaks = true;
    }
    const bool isMissing = fEngine.TakeMissing() > 0;
    if (problem.empty() && (!isMissing || fHasToldMissing)) return {};
    fHasToldMissing = isMissing; // what can't be read need not be told to be late, too
    if (!problem.empty()) return krocore::ToUTF16(problem);
    return krocore::Localize(
        "$$$/Workbench/TooSlow=The sound can't be read as fast as it is played: parts of it were silent.");
}

void Session::Select(const qohost::PlaybackRange& range) {
    fSelection = range;
    fEngine.SetRange(range);
}

RenderJob::Task Session::TaskToRender() const {
    const FilterPtr filter = NewFilter(*fEffect);
    filter->SetAudioFilterHost(const_cast<Session*>(this));
    filter->SetDuration(static_cast<double>(fSound->Frames()));
    filter->Prepare(fSound->SampleRate(), qohost::RenderOptions().blockFrames, fSound->Layout());
    qohost::ApplyPreset(*filter, qohost::CapturePreset(*Filter(), {}));
    return {fSound, fSelection, filter, fSound->Encoding(), FileToRender()};
}

std::filesystem::path Session::FileToRender() const {
    namespace fs = std::filesystem;
    const fs::path source = fFile.empty() ? krocore::PathFromText(krocore::ToStdString(fSoundName)) : fFile;
    fs::path name = fFile.empty() ? source : source.stem();
    name += "-" + std::string(fEffect->shortName) + ".wav";
    return fs::absolute(source).parent_path() / name;
}

void Session::Play() {
    const std::size_t position = fEngine.Position();
    if (HasSelection() && !fEngine.IsPlaying() && (position < fSelection.begin || position >= fSelection.end))
        fEngine.Seek(fSelection.begin);
    if (!fEngine.IsPlaying()) {
        fEngine.TakeMissing();
        fHasToldMissing = false;
    }
    fOutput.Poll(); // what has passed until now is nothing of the sound
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
    fEngine.Seek(static_cast<std::size_t>(std::llround(std::max(0.0, seconds) * fSound->SampleRate())));
}

double Session::Position() const {
    return static_cast<double>(fEngine.Position()) / fSound->SampleRate();
}

void Session::Poll() {
    fOutput.Poll();
    fEngine.Poll();
}

} // namespace workbench
