// The parts of the page that are files of their own. The build makes them constants, each with its
// hash as a content security policy names it.

#pragma once

#include <string_view>

namespace tessum {

struct PagePart {
  std::string_view text;
  std::string_view hash;  // such as sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU=
};

extern const PagePart kPageStyle;
extern const PagePart kPageScript;
extern const PagePart kPageControls;  // markup that the script brings to life

}  // namespace tessum
