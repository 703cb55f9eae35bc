#include "qolv2/HostFeatures.h"

#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace qolv2 {

namespace {

constexpr std::size_t kLongestBlock = 1U << 16U; // frames

template <class Data>
void Take(const LV2_Feature& feature, std::string_view uri, const Data*& place) {
    if (feature.URI == uri) place = static_cast<const Data*>(feature.data);
}

std::size_t LongestBlock(const HostFeatures& host, const LV2_Options_Option* options) {
    const LV2_URID key = host.Map(LV2_BUF_SIZE__maxBlockLength);
    const LV2_URID integer = host.Map(LV2_ATOM__Int);
    for (; key != 0 && options != nullptr && options->key != 0; ++options) {
        if (options->key != key || options->type != integer || options->value == nullptr) continue;
        const auto frames = *static_cast<const std::int32_t*>(options->value);
        if (frames > 0) return std::min(static_cast<std::size_t>(frames), kLongestBlock);
    }
    return host.longestBlock;
}

} // namespace

HostFeatures::HostFeatures(const LV2_Feature* const* features) {
    const LV2_Options_Option* options = nullptr;
    for (; features != nullptr && *features != nullptr; ++features) {
        Take(**features, LV2_URID__map, map);
        Take(**features, LV2_LOG__log, log);
        Take(**features, LV2_WORKER__schedule, worker);
        Take(**features, LV2_OPTIONS__options, options);
    }
    longestBlock = LongestBlock(*this, options);
}

LV2_URID HostFeatures::Map(const char* uri) const {
    return map != nullptr ? map->map(map->handle, uri) : 0;
}

void HostFeatures::Warn(const std::string& message) const {
    const LV2_URID kind = Map(LV2_LOG__Warning);
    if (log != nullptr && kind != 0)
        log->printf(log->handle, kind, "%s\n", message.c_str());
    else
        std::fprintf(stderr, "%s\n", message.c_str());
}

} // namespace qolv2
