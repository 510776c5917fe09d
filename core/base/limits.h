// The fixed numbers that more than one file must agree on.

#pragma once

#include <cstddef>
#include <cstdint>

namespace tessum::limits {

// TCP port of the HTTP transport; on the stdio path it is only stored.
inline constexpr std::uint16_t kDefaultPort = 7384;

// The most rows of one answer; the first two where the caller sets no limit.
inline constexpr std::int64_t kActivitiesPerCall = 100;
inline constexpr std::int64_t kSearchResultsPerCall = 50;
inline constexpr std::int64_t kActivitiesPerResource = 200;
inline constexpr std::int64_t kAnnotationsPerReport = 100;

// How deep arrays and objects of a JSON text may be nested.
inline constexpr int kJsonNesting = 512;

}  // namespace tessum::limits
