// SPDX-License-Identifier: GPL-3.0-or-later
// Opens the editor of a plug-in in a plain X11 window and keeps it for a while: editor_probe LIBRARY SECONDS.
// Prints the size that the plug-in wants, the windows that it has made, and how many colours are seen. Ends
// with 1 when the plug-in can't be loaded or has refused, with 77 when there is no display or no editor.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <thread>

#include "platform/paths.h"
#include "vst/vst_host.h"

namespace plumetta {
namespace {

constexpr int kNotTried = 77;

struct Size {
  int width = 0, height = 0;
};

Size wantedSize(VstHost& host, int slot) {
  ERect* rectangle = nullptr;
  host.editorRectangle(slot, rectangle);
  if (rectangle == nullptr) return {};
  return {rectangle->right - rectangle->left, rectangle->bottom - rectangle->top};
}

int ignoreError(Display*, XErrorEvent*) { return 0; }

class PlainWindow {
 public:
  explicit PlainWindow(Display* display) : display_(display) {
    // What plug-ins do to windows that have just gone is no reason to end.
    XSetErrorHandler(ignoreError);
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 400, 300, 0, 0, 0);
    XMapWindow(display_, window_);
    XSync(display_, False);
  }
  ~PlainWindow() {
    XDestroyWindow(display_, window_);
    XSync(display_, False);
  }
  PlainWindow(const PlainWindow&) = delete;
  PlainWindow& operator=(const PlainWindow&) = delete;

  void* handle() const { return reinterpret_cast<void*>(window_); }
  void take(Size size) {
    if (size.width <= 0 || size.height <= 0) return;
    XResizeWindow(display_, window_, static_cast<unsigned>(size.width), static_cast<unsigned>(size.height));
    XSync(display_, False);
  }
  void drain() {
    XEvent event;
    while (XPending(display_) > 0) XNextEvent(display_, &event);
  }
  unsigned children() {
    Window root, parent, *children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display_, window_, &root, &parent, &children, &count) == 0) return 0;
    if (children != nullptr) XFree(children);
    return count;
  }
  // Of the screen where the window lies: what children have drawn is no part of the window itself.
  size_t colours() {
    XWindowAttributes here;
    if (XGetWindowAttributes(display_, window_, &here) == 0) return 0;
    const Window root = DefaultRootWindow(display_);
    const unsigned width = static_cast<unsigned>(std::min(here.width, DisplayWidth(display_, 0)));
    const unsigned height = static_cast<unsigned>(std::min(here.height, DisplayHeight(display_, 0)));
    XImage* image = XGetImage(display_, root, 0, 0, width, height, AllPlanes, ZPixmap);
    if (image == nullptr) return 0;
    std::set<unsigned long> seen;
    for (int y = 0; y < image->height; ++y) {
      for (int x = 0; x < image->width; ++x) seen.insert(XGetPixel(image, x, y));
    }
    XDestroyImage(image);
    return seen.size();
  }

 private:
  Display* display_;
  Window window_;
};

int probe(Display* display, VstHost& host, int slot, double seconds) {
  PlainWindow window(display);
  window.take(wantedSize(host, slot));
  if (host.openEditor(slot, window.handle()) < 1) {
    std::puts("refused");
    return EXIT_FAILURE;
  }
  const Size size = wantedSize(host, slot);
  window.take(size);
  using Clock = std::chrono::steady_clock;
  for (const auto end = Clock::now() + std::chrono::duration<double>(seconds); Clock::now() < end;) {
    host.idle();
    window.drain();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  std::printf("%d x %d, %u windows, %zu colours\n", size.width, size.height, window.children(),
              window.colours());
  host.closeEditor(slot);
  window.drain();
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace plumetta

int main(int count, char** words) {
  using namespace plumetta;
  if (count != 3) return 2;
  XInitThreads();  // several plug-ins draw from threads of their own
  Display* display = XOpenDisplay(nullptr);
  if (display == nullptr) return kNotTried;
  VstHost host;
  host.setBlockSize(4096);
  host.setHostStrings("Plumetta", "Plumetta Team");
  const int slot = host.open(absolutePath(words[1]));
  if (slot < 0) return EXIT_FAILURE;
  int status = kNotTried;
  // A second time too, as it is for whoever closes the window and opens it again.
  if (host.plugin(slot)->hasEditor()) status = probe(display, host, slot, std::atof(words[2]));
  if (status == EXIT_SUCCESS) status = probe(display, host, slot, 0.1);
  host.closeAll();
  XCloseDisplay(display);
  return status;
}
