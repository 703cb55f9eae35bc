#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/ResponseCache.h"
#include "qoc/dsp/filters/NotchSection.h"

#include <array>

namespace qoc::components {

// Six notches, each with its frequency, gain and switch, and one width for all; the gains can be linked to one. With a
// gain above 0 dB a section raises its frequency instead. All settings move without clicks. A section that is off, or
// at 0 dB, lets the sound through bit by bit. Sections stand between 20 Hz and 20 Hz below the Nyquist frequency,
// whatever is stored. Input that is no number, or beyond 120 dB over full scale, counts as silence.
//
// Ultra quiet: the filters compute in double precision instead of single; close to the Nyquist frequency they do
// anyway. In single precision six super narrow notches on one frequency leave an error of up to -96 dB of full scale
// under a loud tone there, and up to -133 dB under noise; in double precision it lies below the resolution of a 24-bit
// output. Boosts raise both with the sound.
class Notch : public ComponentBase {
public:
    static constexpr int kSections = 6;

    Notch();

    // Where a section's frequency lies between two places, the nearer one tells the response at that frequency itself,
    // so that a curve through few places still shows how deep the notch is.
    bool GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                              std::vector<float>& decibels) const override;
    // Until the notches have rung down by 60 dB.
    std::size_t Tail() const noexcept override;

protected:
    ~Notch() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    struct State {
        double first = 0;
        double second = 0;
    };
    template <class Real>
    struct Run;

    std::vector<float> ComputeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis) const;
    NotchSection::Setting SettingOf(int section) const noexcept;
    // Whether its parameters make it do anything; the other one: whether no section does anything at present.
    bool IsHeard(int section) const noexcept;
    bool IsNeutral() const noexcept;
    bool NeedsDouble() const noexcept;
    void ForgetSound(int section) noexcept;
    template <class Real>
    void ProcessChunk(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                      std::size_t frames) noexcept;
    template <class Real>
    void ProcessLanes(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t firstChannel, std::size_t begin,
                      std::size_t frames, const Run<Real>* runs, std::size_t runCount) noexcept;

    std::array<NotchSection, kSections> fSections;
    std::array<std::array<State, kSections>, kMaximumChannels> fStates;
    bool fIsDouble = false;          // computes in double precision
    mutable ResponseCache fResponse; // user-interface thread
};

} // namespace qoc::components
