// Stands in for the header of macOS when a test compiles a macOS source for Linux.

#pragma once

typedef int kern_return_t;
typedef unsigned int mach_port_t;
typedef unsigned int natural_t;
