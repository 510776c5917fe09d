// The report of a search, for people.

#pragma once

#include <cstddef>
#include <string>

#include "desktop/text/text_layout.h"
#include "desktop/usage/finds.h"

namespace tessum {

// A heading and a line for each of the newest `most` finds, or a sentence where there are none.
[[nodiscard]] std::string findsReport(const Finds& finds, std::size_t most, const Paper& paper);

}  // namespace tessum
