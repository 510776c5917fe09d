#include "tests/macos/objc/fake_runtime.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

using tessum::fake::Class;
using tessum::fake::Method;
using tessum::fake::Object;
using tessum::fake::Pool;

// The isa of the texts in the source, which are never destroyed.
extern "C" Class __CFConstantStringClassReference;
Class __CFConstantStringClassReference{nullptr, "NSString", {}};

namespace tessum::fake {
namespace {

long liveCount = 0;
std::vector<Object*> pooled;

[[noreturn]] void stop(const char* what, const char* name, const char* detail) {
  std::fprintf(stderr, "fake Objective-C: %s: %s %s\n", what, name, detail);
  std::abort();
}

bool isCounted(const Object* object) {
  return object != nullptr && object->isa != &__CFConstantStringClassReference &&
         object->isa->isa != nullptr && object->destroy != nullptr;
}

// How the compiler lays out blocks.
struct BlockDescriptor {
  unsigned long reserved;
  unsigned long size;
  void (*copy)(void* to, const void* from);
  void (*dispose)(const void* block);
};

struct BlockLayout {
  void* isa;
  int flags;
  int references;
  void (*invoke)(BlockLayout* block, Object* argument);
  BlockDescriptor* descriptor;
};

enum BlockFlag : int { kOnHeap = 1 << 24, kCopiesAndDisposes = 1 << 25, kIsGlobal = 1 << 28 };

BlockLayout* copyBlock(BlockLayout* block) {
  if (block == nullptr || (block->flags & kIsGlobal) != 0) return block;
  if ((block->flags & kOnHeap) != 0) {
    ++block->references;
    return block;
  }
  auto* copy = static_cast<BlockLayout*>(std::malloc(block->descriptor->size));
  std::memcpy(static_cast<void*>(copy), block, block->descriptor->size);
  copy->flags |= kOnHeap;
  copy->references = 1;
  if ((block->flags & kCopiesAndDisposes) != 0) block->descriptor->copy(copy, block);
  countBirth();
  return copy;
}

void releaseBlock(BlockLayout* block) {
  if (block == nullptr || (block->flags & kOnHeap) == 0) return;
  if (--block->references > 0) return;
  if ((block->flags & kCopiesAndDisposes) != 0) block->descriptor->dispose(block);
  std::free(block);
  --liveCount;
}

}  // namespace

void countBirth() {
  ++liveCount;
}

long liveObjects() {
  return liveCount;
}

void retain(Object* object) {
  if (isCounted(object)) ++object->references;
}

void release(Object* object) {
  if (!isCounted(object)) return;
  if (object->references <= 0) stop("released too often", object->isa->name, "");
  if (--object->references > 0) return;
  --liveCount;
  object->destroy(object);
}

Object* autorelease(Object* object) {
  pooled.push_back(object);
  return object;
}

Pool::Pool() : start_(pooled.size()) {}

Pool::~Pool() {
  while (pooled.size() > start_) {
    Object* object = pooled.back();
    pooled.pop_back();
    release(object);
  }
}

Block::Block(void* block) : block_(copyBlock(static_cast<BlockLayout*>(block))) {}

Block::~Block() {
  releaseBlock(static_cast<BlockLayout*>(block_));
}

void Block::operator()(Object* argument) const {
  auto* layout = static_cast<BlockLayout*>(block_);
  layout->invoke(layout, argument);
}

// What the compiler calls -----------------------------------------------------------------------

extern "C" {

// Selectors are compared by their texts, so nothing needs registering.
Method tessum_fake_lookUp(Object* receiver, const char* selector) {
  const auto found = receiver->isa->methods.find(std::string_view(selector));
  if (found == receiver->isa->methods.end()) stop("no answer", receiver->isa->name, selector);
  return found->second;
}

Object* objc_retain(Object* object) {
  retain(object);
  return object;
}

void objc_release(Object* object) {
  release(object);
}

Object* objc_retainAutorelease(Object* object) {
  return autorelease(objc_retain(object));
}

Object* objc_retainAutoreleasedReturnValue(Object* object) {
  return objc_retain(object);
}

void objc_storeStrong(Object** place, Object* object) {
  Object* old = *place;
  *place = objc_retain(object);
  release(old);
}

void* objc_autoreleasePoolPush() {
  return new Pool;
}

void objc_autoreleasePoolPop(void* pool) {
  delete static_cast<Pool*>(pool);
}

void* _NSConcreteStackBlock[32];

}  // extern "C"

}  // namespace tessum::fake

// objc_msgSend: look the function up, with every argument register as it was, and jump there. A
// message to nil gives zero.
#if defined(__x86_64__)
asm(R"(
    .text
    .globl objc_msgSend
    .type objc_msgSend, @function
objc_msgSend:
    testq %rdi, %rdi
    jz 1f
    pushq %rbp
    movq %rsp, %rbp
    subq $192, %rsp
    movq %rdi, 0(%rsp)
    movq %rsi, 8(%rsp)
    movq %rdx, 16(%rsp)
    movq %rcx, 24(%rsp)
    movq %r8, 32(%rsp)
    movq %r9, 40(%rsp)
    movq %rax, 48(%rsp)
    movups %xmm0, 64(%rsp)
    movups %xmm1, 80(%rsp)
    movups %xmm2, 96(%rsp)
    movups %xmm3, 112(%rsp)
    movups %xmm4, 128(%rsp)
    movups %xmm5, 144(%rsp)
    movups %xmm6, 160(%rsp)
    movups %xmm7, 176(%rsp)
    call tessum_fake_lookUp@PLT
    movq %rax, %r11
    movq 0(%rsp), %rdi
    movq 8(%rsp), %rsi
    movq 16(%rsp), %rdx
    movq 24(%rsp), %rcx
    movq 32(%rsp), %r8
    movq 40(%rsp), %r9
    movq 48(%rsp), %rax
    movups 64(%rsp), %xmm0
    movups 80(%rsp), %xmm1
    movups 96(%rsp), %xmm2
    movups 112(%rsp), %xmm3
    movups 128(%rsp), %xmm4
    movups 144(%rsp), %xmm5
    movups 160(%rsp), %xmm6
    movups 176(%rsp), %xmm7
    leave
    jmp *%r11
1:  xorl %eax, %eax
    xorl %edx, %edx
    pxor %xmm0, %xmm0
    pxor %xmm1, %xmm1
    ret
    .size objc_msgSend, . - objc_msgSend
)");
#elif defined(__aarch64__)
asm(R"(
    .text
    .globl objc_msgSend
    .type objc_msgSend, @function
objc_msgSend:
    cbz x0, 1f
    stp x29, x30, [sp, #-224]!
    mov x29, sp
    stp x0, x1, [sp, #16]
    stp x2, x3, [sp, #32]
    stp x4, x5, [sp, #48]
    stp x6, x7, [sp, #64]
    str x8, [sp, #80]
    stp q0, q1, [sp, #96]
    stp q2, q3, [sp, #128]
    stp q4, q5, [sp, #160]
    stp q6, q7, [sp, #192]
    bl tessum_fake_lookUp
    mov x16, x0
    ldp q0, q1, [sp, #96]
    ldp q2, q3, [sp, #128]
    ldp q4, q5, [sp, #160]
    ldp q6, q7, [sp, #192]
    ldr x8, [sp, #80]
    ldp x6, x7, [sp, #64]
    ldp x4, x5, [sp, #48]
    ldp x2, x3, [sp, #32]
    ldp x0, x1, [sp, #16]
    ldp x29, x30, [sp], #224
    br x16
1:  mov x1, xzr
    movi d0, #0
    movi d1, #0
    ret
    .size objc_msgSend, . - objc_msgSend
)");
#else
#error "objc_msgSend is written for x86-64 and 64-bit ARM only"
#endif
