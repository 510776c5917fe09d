// What the project uses of this header, declared from its public documentation. Not Apple's
// header: it is no part of any build for a Mac.

#ifndef TESSUM_STUB_SYS_XATTR_H
#define TESSUM_STUB_SYS_XATTR_H

#include <stddef.h>
#include <stdint.h>

#define XATTR_NOFOLLOW 0x0001

extern "C" int setxattr(const char* path, const char* name, const void* value, size_t size,
                        uint32_t position, int options);

#endif
