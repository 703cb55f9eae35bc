#include "kroaudiofilterhost/AudioFilterListener.h"

namespace kroaudiofilterhost {

AudioFilterListener::~AudioFilterListener() = default;

} // namespace kroaudiofilterhost
