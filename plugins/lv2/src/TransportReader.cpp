#include "qolv2/TransportReader.h"

#include <lv2/atom/util.h>
#include <lv2/time/time.h>

#include <cmath>

namespace qolv2 {

namespace {

template <class Atom>
double BodyOf(const LV2_Atom* atom) noexcept {
    return static_cast<double>(reinterpret_cast<const Atom*>(atom)->body);
}

} // namespace

TransportReader::TransportReader(const HostFeatures& host)
    : fPosition(host.Map(LV2_TIME__Position)), fFrame(host.Map(LV2_TIME__frame)), fSpeed(host.Map(LV2_TIME__speed)),
      fTempo(host.Map(LV2_TIME__beatsPerMinute)), fBeatUnit(host.Map(LV2_TIME__beatUnit)),
      fBeatsPerBar(host.Map(LV2_TIME__beatsPerBar)), fInt(host.Map(LV2_ATOM__Int)), fLong(host.Map(LV2_ATOM__Long)),
      fFloat(host.Map(LV2_ATOM__Float)), fDouble(host.Map(LV2_ATOM__Double)) {
}

bool TransportReader::Read(const LV2_Atom_Object& object,
                           kroaudiofilterhost::AudioFilterTransport& transport) const noexcept {
    if (fPosition == 0 || object.body.otype != fPosition) return false;
    constexpr double kMostBeats = 1000;
    const LV2_Atom* frame = nullptr;
    const LV2_Atom* speed = nullptr;
    const LV2_Atom* tempo = nullptr;
    const LV2_Atom* unit = nullptr;
    const LV2_Atom* beats = nullptr;
    lv2_atom_object_get(&object, fFrame, &frame, fSpeed, &speed, fTempo, &tempo, fBeatUnit, &unit, fBeatsPerBar, &beats,
                        0);
    transport.position = Number(frame, transport.position);
    transport.isPlaying = Number(speed, transport.isPlaying ? 1 : 0) > 0;
    const auto positive = [&](const LV2_Atom* atom, double other) {
        const double number = Number(atom, other);
        return number > 0 && number <= kMostBeats ? number : other;
    };
    transport.tempo.beatsPerMinute = positive(tempo, transport.tempo.beatsPerMinute);
    transport.tempo.noteLength = static_cast<std::int32_t>(std::lround(positive(unit, transport.tempo.noteLength)));
    transport.tempo.beatsPerBar = static_cast<std::int32_t>(std::lround(positive(beats, transport.tempo.beatsPerBar)));
    return true;
}

double TransportReader::Number(const LV2_Atom* atom, double other) const noexcept {
    double number = other;
    if (atom == nullptr) return other;
    if (atom->type == fInt) number = BodyOf<LV2_Atom_Int>(atom);
    if (atom->type == fLong) number = BodyOf<LV2_Atom_Long>(atom);
    if (atom->type == fFloat) number = BodyOf<LV2_Atom_Float>(atom);
    if (atom->type == fDouble) number = BodyOf<LV2_Atom_Double>(atom);
    return std::isfinite(number) ? number : other;
}

} // namespace qolv2
