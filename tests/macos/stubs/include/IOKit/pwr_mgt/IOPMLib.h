// What the project uses of this framework, declared from its public documentation. Not Apple's
// header: it is no part of any build for a Mac.

#ifndef TESSUM_STUB_IOPMLIB_H
#define TESSUM_STUB_IOPMLIB_H

#include <IOKit/IOKitLib.h>
#include <stdint.h>

CF_EXPORT io_connect_t IORegisterForSystemPower(void* refcon, IONotificationPortRef* thePortRef,
                                                IOServiceInterestCallback callback,
                                                io_object_t* notifier);
CF_EXPORT IOReturn IODeregisterForSystemPower(io_object_t* notifier);
CF_EXPORT IOReturn IOAllowPowerChange(io_connect_t kernelPort, intptr_t notificationID);

#endif
