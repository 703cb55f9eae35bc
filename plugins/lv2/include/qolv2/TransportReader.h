#pragma once

#include "kroaudiofilterhost/AudioFilterTransport.h"
#include "qolv2/HostFeatures.h"

#include <lv2/atom/atom.h>

namespace qolv2 {

// What a host tells on the control port: where it is, and its tempo (LV2's time:Position).
class TransportReader {
public:
    explicit TransportReader(const HostFeatures& host);

    // Takes the events of the next block; what they don't say stays. True when one was about the transport. Sound
    // thread.
    bool Read(const LV2_Atom_Sequence& events, kroaudiofilterhost::AudioFilterTransport& transport) const noexcept;

private:
    void Take(const LV2_Atom_Object& position, kroaudiofilterhost::AudioFilterTransport& transport) const noexcept;
    // The number, of whatever kind of atom; `other` when it is none.
    double Number(const LV2_Atom* atom, double other) const noexcept;

    LV2_URID fObject;
    LV2_URID fBlank;
    LV2_URID fPosition;
    LV2_URID fFrame;
    LV2_URID fSpeed;
    LV2_URID fTempo;
    LV2_URID fBeatUnit;
    LV2_URID fBeatsPerBar;
    LV2_URID fInt;
    LV2_URID fLong;
    LV2_URID fFloat;
    LV2_URID fDouble;
};

} // namespace qolv2
