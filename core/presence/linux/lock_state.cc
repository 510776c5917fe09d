#include "core/presence/linux/lock_state.h"

#include <utility>

namespace tessum {

LockState::LockState(MainLoop& loop, std::function<void(bool isLocked)> onChange)
    : loop_(loop), onChange_(std::move(onChange)) {}

LockState::~LockState() {
  endRequest();
}

void LockState::set(const std::string& source, bool isLocked) {
  if (isLocked) {
    lockedBy_.insert(source);
  } else if (lockedBy_.erase(source) > 0) {
    endRequest();
  }
  tell();
}

void LockState::requestLock() {
  endRequest();
  request_ = loop_.runAfter(kRequestSeconds, [this] {
    request_.reset();
    tell();
  });
  tell();
}

void LockState::requestUnlock() {
  endRequest();
  tell();
}

void LockState::endRequest() {
  if (request_) loop_.invalidateTimer(*std::exchange(request_, std::nullopt));
}

void LockState::tell() {
  const bool isLocked = request_.has_value() || !lockedBy_.empty();
  if (std::exchange(toldLocked_, isLocked) != isLocked) onChange_(isLocked);
}

}  // namespace tessum
