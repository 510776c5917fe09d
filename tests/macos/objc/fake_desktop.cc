#include "tests/macos/objc/fake_desktop.h"

#include <algorithm>
#include <memory>

#include "core/base/check.h"

extern "C" tessum::fake::Class __CFConstantStringClassReference;

TESSUM_FAKE_CLASS(NSString);
TESSUM_FAKE_CLASS(NSDictionary);
TESSUM_FAKE_CLASS(NSNotification);
TESSUM_FAKE_CLASS(NSNotificationCenter);
TESSUM_FAKE_CLASS(NSOperationQueue);
TESSUM_FAKE_CLASS(NSRunningApplication);
TESSUM_FAKE_CLASS(NSWorkspace);

namespace tessum::fake {
namespace {

Class plainMeta{nullptr, "plain", {}};
Class plain{&plainMeta, "plain", {}};
Class elementClass{&plainMeta, "AXUIElement", {}};

// There is one of each, without reference counting.
Object theWorkspace{&NSWorkspace, 1, nullptr};
Object theWorkspaceCenter{&NSNotificationCenter, 1, nullptr};
Object theMainQueue{&NSOperationQueue, 1, nullptr};

ConstantString didActivate{&__CFConstantStringClassReference, 0, "didActivate", 11};
ConstantString applicationKey{&__CFConstantStringClassReference, 0, "application", 11};

struct Text : Object {
  std::u16string units;
  std::string utf8;  // what UTF8String points into
};

struct Application : Object {
  Object* name;
  Object* bundleIdentifier;
  int process;
  ~Application() {
    release(name);
    release(bundleIdentifier);
  }
};

// With the one entry of an activation's user info.
struct Dictionary : Object {
  Object* value;
  ~Dictionary() { release(value); }
};

struct Notification : Object {
  Object* userInfo;
  ~Notification() { release(userInfo); }
};

struct Element : Object {
  int process;
  float patience = 0;
};

bool isConstant(const Object* object) {
  return object->isa == &__CFConstantStringClassReference;
}

// The text of a constant; others are not compared.
std::string constantText(const Object* object) {
  TESSUM_CHECK(isConstant(object), "a name is not a constant");
  const auto* text = reinterpret_cast<const ConstantString*>(object);
  return {text->text, static_cast<std::size_t>(text->length)};
}

bool isHigh(char16_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool isLow(char16_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// Half a surrogate pair becomes `lossByte`; without one the text ends before it.
std::string utf8Of(std::u16string_view units, unsigned char lossByte, std::size_t& converted) {
  std::string bytes;
  const auto put = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
  for (converted = 0; converted < units.size(); ++converted) {
    char32_t code = units[converted];
    if (isHigh(units[converted]) && converted + 1 < units.size() && isLow(units[converted + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (units[++converted] - 0xDC00U);
    } else if (isHigh(units[converted]) || isLow(units[converted])) {
      if (lossByte == 0) return bytes;
      code = lossByte;
    }
    if (code < 0x80) {
      put(code);
      continue;
    }
    if (code < 0x800) {
      put(0xC0 | (code >> 6));
    } else {
      if (code < 0x10000) {
        put(0xE0 | (code >> 12));
      } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
      }
      put(0x80 | ((code >> 6) & 0x3F));
    }
    put(0x80 | (code & 0x3F));
  }
  return bytes;
}

Desktop* theDesktop = nullptr;

}  // namespace

struct Desktop::Observer : Object {
  bool isOnMainQueue;
  std::unique_ptr<Block> block;
};

Object* makeText(std::u16string text) {
  std::size_t converted = 0;
  auto utf8 = utf8Of(text, 0, converted);
  return make<Text>(NSString, std::move(text), std::move(utf8));
}

Object* makeApplication(std::optional<std::u16string> name,
                        std::optional<std::u16string> bundleIdentifier, int process) {
  return make<Application>(NSRunningApplication, name ? makeText(*std::move(name)) : nullptr,
                           bundleIdentifier ? makeText(*std::move(bundleIdentifier)) : nullptr,
                           process);
}

Object* makeWindow() {
  return make<Element>(elementClass, kWindow);
}

Desktop::Desktop() {
  TESSUM_CHECK(theDesktop == nullptr, "there is a desktop already");
  theDesktop = this;
  defineAnswers();
}

Desktop::~Desktop() {
  setFrontmost(nullptr);
  theDesktop = nullptr;
}

Desktop& Desktop::current() {
  TESSUM_CHECK(theDesktop != nullptr, "there is no desktop");
  return *theDesktop;
}

void Desktop::setFrontmost(Object* application) {
  release(frontmost_);
  frontmost_ = application;
}

void Desktop::postActivation(Object* value) {
  Object* info = value != nullptr ? make<Dictionary>(NSDictionary, value) : nullptr;
  Object* notification = make<Notification>(NSNotification, info);
  for (Observer* observer : observers_) {
    retain(observer);
    retain(notification);
    auto deliver = [observer, notification] {
      const Pool pool;
      (*observer->block)(notification);
      release(notification);
      release(observer);
    };
    if (observer->isOnMainQueue) {
      mainQueue_.emplace_back(deliver);
    } else {
      deliver();
    }
  }
  release(notification);
}

void Desktop::runMainQueue() {
  while (!mainQueue_.empty()) {
    const auto task = std::move(mainQueue_.front());
    mainQueue_.pop_front();
    task();
  }
}

void Desktop::defineAnswers() {
  // A text, an application and a constant may all lie in a notification's user info.
  for (Class* isa : {&NSString, &__CFConstantStringClassReference, &NSRunningApplication}) {
    answer(
        *isa,
        "isKindOfClass:", +[](Object* self, Selector, Class* asked) { return self->isa == asked; });
  }
  answer(
      NSString, "UTF8String", +[](Text* self, Selector) { return self->utf8.c_str(); });

  answer(
      NSRunningApplicationMeta, "class", +[](Object* self, Selector) { return self; });
  answer(
      NSRunningApplication, "localizedName",
      +[](Application* self, Selector) { return self->name; });
  answer(
      NSRunningApplication, "bundleIdentifier",
      +[](Application* self, Selector) { return self->bundleIdentifier; });
  answer(
      NSRunningApplication, "processIdentifier",
      +[](Application* self, Selector) { return self->process; });

  answer(
      NSNotification, "userInfo", +[](Notification* self, Selector) { return self->userInfo; });
  answer(
      NSDictionary, "objectForKey:", +[](Dictionary* self, Selector, Object* key) {
        return constantText(key) == applicationKey.text ? self->value : nullptr;
      });

  answer(
      NSOperationQueueMeta, "mainQueue", +[](Object*, Selector) { return &theMainQueue; });
  answer(
      NSWorkspaceMeta, "sharedWorkspace", +[](Object*, Selector) { return &theWorkspace; });
  answer(
      NSWorkspace, "notificationCenter", +[](Object*, Selector) { return &theWorkspaceCenter; });
  answer(
      NSWorkspace, "frontmostApplication", +[](Object*, Selector) { return current().frontmost_; });

  answer(
      NSNotificationCenter, "addObserverForName:object:queue:usingBlock:",
      +[](Object*, Selector, Object* name, Object* object, Object* queue, void* block) {
        TESSUM_CHECK(constantText(name) == didActivate.text, "another notification");
        TESSUM_CHECK(object == nullptr, "activations of one object only");
        auto* observer =
            make<Observer>(plain, queue == &theMainQueue, std::make_unique<Block>(block));
        current().observers_.push_back(observer);
        retain(observer);  // one reference for the centre, one for the caller
        return autorelease(observer);
      });
  answer(
      NSNotificationCenter, "removeObserver:", +[](Object*, Selector, Object* token) {
        auto& all = current().observers_;
        const auto found = std::find(all.begin(), all.end(), token);
        TESSUM_CHECK(found != all.end(), "the observer is not registered");
        all.erase(found);
        release(token);
      });
}

// The constants and C functions that the sources name --------------------------------------------

extern "C" {

extern ConstantString* const NSWorkspaceDidActivateApplicationNotification;
ConstantString* const NSWorkspaceDidActivateApplicationNotification = &didActivate;
extern ConstantString* const NSWorkspaceApplicationKey;
ConstantString* const NSWorkspaceApplicationKey = &applicationKey;

void CFRelease(Object* object) {
  TESSUM_CHECK(object != nullptr, "nothing to release");
  release(object);
}

unsigned long CFStringGetTypeID() {
  return 7;
}

unsigned long CFGetTypeID(const Object* object) {
  return object->isa == &NSString ? CFStringGetTypeID() : 1;
}

long CFStringGetLength(const Text* text) {
  return static_cast<long>(text->units.size());
}

struct Range {
  long location;
  long length;
};

long CFStringGetBytes(const Text* text, Range range, unsigned encoding, unsigned char lossByte,
                      unsigned char isExternal, char* buffer, long room, long* used) {
  constexpr unsigned kUtf8 = 0x08000100;
  TESSUM_CHECK(encoding == kUtf8 && isExternal == 0, "another encoding");
  std::size_t converted = 0;
  const auto bytes = utf8Of(
      std::u16string_view(text->units)
          .substr(static_cast<std::size_t>(range.location), static_cast<std::size_t>(range.length)),
      lossByte, converted);
  const auto size = static_cast<long>(bytes.size());
  TESSUM_CHECK(buffer == nullptr || size <= room, "too little room");
  if (buffer != nullptr) bytes.copy(buffer, bytes.size());
  if (used != nullptr) *used = size;
  return static_cast<long>(converted);
}

Object* AXUIElementCreateApplication(int process) {
  return make<Element>(elementClass, process);
}

int AXUIElementSetMessagingTimeout(Element* element, float seconds) {
  element->patience = seconds;
  return 0;
}

double CGEventSourceSecondsSinceLastEventType(int state, unsigned type) {
  constexpr int kThisSession = 0;
  constexpr unsigned kAnyInput = 0xFFFF'FFFF;
  TESSUM_CHECK(state == kThisSession && type == kAnyInput, "other input");
  return theDesktop->secondsSinceInput;
}

// The documentation does not say what a failing call leaves in the output value; here it is a value
// that must not be used.
int AXUIElementCopyAttributeValue(const Element* element, const Object* name, Object** value) {
  TESSUM_CHECK(element->patience > 0 && element->patience <= 1, "waits too long for an answer");
  static Element window{{&elementClass, 1, nullptr}, kWindow};
  static Text text{{&NSString, 1, nullptr}, u"left behind", "left behind"};
  const auto result = theDesktop->attribute(element->process, constantText(name));
  *value = result.value;
  if (result.error != 0) {
    *value = element->process == kWindow ? static_cast<Object*>(&text) : &window;
  }
  return result.error;
}

}  // extern "C"

}  // namespace tessum::fake
