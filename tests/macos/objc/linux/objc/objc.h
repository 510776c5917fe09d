// Stands in for the header of macOS when a test compiles a macOS source for Linux.

#pragma once

#if defined(__OBJC__)
typedef bool BOOL;
typedef struct objc_selector* SEL;
typedef struct objc_class* Class;
typedef struct objc_object {
  Class isa;
} * id;
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
#endif
