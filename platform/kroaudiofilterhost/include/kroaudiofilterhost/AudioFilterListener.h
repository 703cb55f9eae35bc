#pragma once

namespace kroaudiofilterhost {

class AudioFilter;

// One change of a parameter's stored value.
struct AudioFilterParameterChange {
    int index = 0;
    float oldValue = 0; // normalised
    float newValue = 0; // normalised, never equal to the old one
    bool quiet = false; // not to be undone: a view's zoom, a corrected display value
};

// Told of what happens to a filter's parameters through its setters and gesture brackets: the base of undo and
// automation. Not owned by the filter; taken off with AudioFilter::RemoveListener before it dies. It is called on the
// user-interface thread, after the fact, and may call the filter and add or remove listeners.
class AudioFilterListener {
public:
    virtual ~AudioFilterListener();

    virtual void ParameterChanged(AudioFilter& filter, const AudioFilterParameterChange& change) = 0;
    // `index` is -1 when the bracket is about all parameters.
    virtual void ParameterEditBegun(AudioFilter& filter, int index) = 0;
    virtual void ParameterEditEnded(AudioFilter& filter, int index) = 0;
    // AudioFilter::NeedsPrepare() has become true, or is so again for another setting: the host prepares the filter
    // when it can.
    virtual void PrepareNeeded(AudioFilter& /*filter*/) {}

protected:
    AudioFilterListener() = default;
    AudioFilterListener(const AudioFilterListener&) = default;
    AudioFilterListener& operator=(const AudioFilterListener&) = default;
};

} // namespace kroaudiofilterhost
