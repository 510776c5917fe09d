// What the project uses of this framework, declared from its public documentation. Not Apple's
// header: it is no part of any build for a Mac.

#ifndef TESSUM_STUB_IOKITLIB_H
#define TESSUM_STUB_IOKITLIB_H

#include <CoreFoundation/CoreFoundation.h>
#include <mach/mach_types.h>

typedef kern_return_t IOReturn;
typedef mach_port_t io_object_t;
typedef io_object_t io_connect_t;
typedef io_object_t io_service_t;

typedef struct IONotificationPort* IONotificationPortRef;

typedef void (*IOServiceInterestCallback)(void* refcon, io_service_t service, natural_t messageType,
                                          void* messageArgument);

CF_EXPORT kern_return_t IOServiceClose(io_connect_t connect);
CF_EXPORT CFRunLoopSourceRef IONotificationPortGetRunLoopSource(IONotificationPortRef notify);
CF_EXPORT void IONotificationPortDestroy(IONotificationPortRef notify);

#endif
