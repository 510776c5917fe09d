// A program that moves KWin's pointer, for tests of what happens when somebody comes back.

#include <fake-input.h>
#include <wayland-client.h>

#include <cstdint>
#include <cstring>

namespace {

void onGlobal(void* found, wl_registry* registry, std::uint32_t name, const char* interface,
              std::uint32_t) {
  if (std::strcmp(interface, org_kde_kwin_fake_input_interface.name) != 0) return;
  *static_cast<void**>(found) =
      wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, 1);
}

void onGlobalRemoved(void*, wl_registry*, std::uint32_t) {}

constexpr wl_registry_listener kListener{.global = onGlobal, .global_remove = onGlobalRemoved};

}  // namespace

int main() {
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) return 1;
  void* found = nullptr;
  wl_registry_add_listener(wl_display_get_registry(display), &kListener, &found);
  wl_display_roundtrip(display);
  if (found == nullptr) return 2;
  auto* input = static_cast<org_kde_kwin_fake_input*>(found);
  org_kde_kwin_fake_input_authenticate(input, "test", "to come back");
  org_kde_kwin_fake_input_pointer_motion(input, wl_fixed_from_int(5), wl_fixed_from_int(5));
  return wl_display_roundtrip(display) < 0 ? 3 : 0;
}
