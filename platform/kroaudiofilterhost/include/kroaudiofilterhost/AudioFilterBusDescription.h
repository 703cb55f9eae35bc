#pragma once

#include "kromediatypes/AudioChannelLayout.h"

#include <utility>

namespace kroaudiofilterhost {

// One bus of a filter: the channels that go in or come out together. A value.
class AudioFilterBusDescription {
public:
    AudioFilterBusDescription() = default;
    explicit AudioFilterBusDescription(kromediatypes::AudioChannelLayout layout) : fLayout(std::move(layout)) {}

    const kromediatypes::AudioChannelLayout& GetLayout() const noexcept { return fLayout; }

private:
    kromediatypes::AudioChannelLayout fLayout;
};

} // namespace kroaudiofilterhost
