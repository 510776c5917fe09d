// Stands in for the header of macOS when a test compiles a macOS source for Linux.

#pragma once

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef unsigned int UInt32;
typedef int SInt32;
typedef SInt32 OSStatus;
