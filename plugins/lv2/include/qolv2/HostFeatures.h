#pragma once

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <cstddef>
#include <string>

namespace qolv2 {

// What the host lends a plug-in. All of it may be missing.
struct HostFeatures {
    explicit HostFeatures(const LV2_Feature* const* features);

    // 0 without a map.
    LV2_URID Map(const char* uri) const;
    // A line in the host's log, or on the error output. Not on the sound thread.
    void Warn(const std::string& message) const;

    const LV2_URID_Map* map = nullptr;
    const LV2_Log_Log* log = nullptr;
    const LV2_Worker_Schedule* worker = nullptr;
    std::size_t longestBlock = 4096; // frames; longer ones are cut into pieces
};

} // namespace qolv2
