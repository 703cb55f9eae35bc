#pragma once

namespace workbench {

// From now on the calling thread takes what others leave: for long work that nobody waits for, beside sound that plays.
void GiveWayToOtherThreads() noexcept;

} // namespace workbench
