// What the project uses of this framework, declared from its public documentation. Not Apple's
// header: it is no part of any build for a Mac.

#ifndef TESSUM_STUB_IOMESSAGE_H
#define TESSUM_STUB_IOMESSAGE_H

#include <MacTypes.h>

#define kIOMessageCanSystemSleep ((UInt32)0xe0000270)
#define kIOMessageSystemWillSleep ((UInt32)0xe0000280)
#define kIOMessageSystemHasPoweredOn ((UInt32)0xe0000300)

#endif
