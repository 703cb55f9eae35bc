#pragma once

namespace krocore {

// The law of a level fader: its travel goes with the cube root of the amplitude, so that most of it lies where the ear
// wants it. The top of the travel is +12 dB, 0 dB stands at 10^(-0.2) = 0.631, the bottom is silence. NaN gives NaN.
template <class T>
class FaderTranslator {
public:
    static constexpr T kTopDecibels = T(12);

    // Decibels at a place of the travel, 0...1; minus infinity at 0. Places outside count as the nearer end.
    T GetDecibelValue(T normalized) const;
    // The place on the travel, 0...1, of a level in decibels; levels above the top count as the top.
    T GetNormalizedValue(T decibels) const;
};

extern template class FaderTranslator<float>;
extern template class FaderTranslator<double>;

} // namespace krocore
