// Stands in for the header of macOS when a test compiles a macOS source for Linux.

#pragma once
