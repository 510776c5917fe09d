#include "core/presence/linux/screen_saver.h"

#include <utility>

namespace tessum {

std::span<const ScreenSaverKind> screenSaverKinds() {
  static const ScreenSaverKind kKinds[] = {
      {"org.freedesktop.ScreenSaver", {"/org/freedesktop/ScreenSaver", "/ScreenSaver"}},
      {"org.gnome.ScreenSaver", {"/org/gnome/ScreenSaver"}},
      {"org.cinnamon.ScreenSaver", {"/org/cinnamon/ScreenSaver"}},
      {"org.mate.ScreenSaver", {"/org/mate/ScreenSaver", "/"}},
      {"org.xfce.ScreenSaver", {"/org/xfce/ScreenSaver", "/"}},
  };
  return kKinds;
}

ScreenSaver::ScreenSaver(Bus& session, const ScreenSaverKind& kind,
                         std::function<void(bool isActive)> onActive)
    : session_(session),
      kind_(kind),
      onActive_(std::move(onActive)),
      name_(session, kind.name, [this](const std::string& owner) { start(owner); }) {}

// Some send their signals from several paths, so we accept any path.
void ScreenSaver::start(const std::string& owner) {
  owner_ = owner;
  changes_ = nullptr;
  question_ = nullptr;
  if (owner.empty()) return onActive_(false);
  changes_ =
      session_.subscribe({.sender = owner, .interface = kind_.name, .member = "ActiveChanged"},
                         [this](const BusMessage& message) {
                           if (const auto isActive = message.readOne<bool>()) onActive_(*isActive);
                         });
  ask(0);
}

void ScreenSaver::ask(std::size_t path) {
  question_ = session_.call({owner_, kind_.paths[path], kind_.name, "GetActive"},
                            [this, path](const BusMessage& reply) {
                              if (const auto isActive = reply.readOne<bool>()) {
                                onActive_(*isActive);
                              } else if (path + 1 < kind_.paths.size()) {
                                ask(path + 1);
                              }
                            });
}

}  // namespace tessum
