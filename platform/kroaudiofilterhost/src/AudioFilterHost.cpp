#include "kroaudiofilterhost/AudioFilterHost.h"

namespace kroaudiofilterhost {

AudioFilterHost::~AudioFilterHost() = default;

} // namespace kroaudiofilterhost
