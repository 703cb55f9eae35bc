#pragma once

#include "kroaudiofilterhost/AudioFilterTransport.h"
#include "qolv2/HostFeatures.h"

#include <lv2/atom/atom.h>

namespace qolv2 {

// What a host tells on the control port: where it is, and its tempo (LV2's time:Position).
class TransportReader {
public:
    explicit TransportReader(const HostFeatures& host);

    // Takes what the object says of the transport; the rest stays. False when it is about something else. Sound thread.
    bool Read(const LV2_Atom_Object& object, kroaudiofilterhost::AudioFilterTransport& transport) const noexcept;

private:
    // The number, of whatever kind of atom; `other` when it is none.
    double Number(const LV2_Atom* atom, double other) const noexcept;

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
