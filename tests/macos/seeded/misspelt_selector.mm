#import <AppKit/AppKit.h>

int main() {
  return [[[NSWorkspace sharedWorkspace] frontmostAplication] processIdentifier];
}
