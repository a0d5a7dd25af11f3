// SPDX-License-Identifier: MIT
#include "ula/Screen.h"

namespace tav::ula {

namespace {

void ignoreHandle(void*) {
}

}  // namespace

Screen::Screen() : _retain(ignoreHandle), _release(ignoreHandle) {
}

Screen::Screen(math::GenRect<int> bounds_, math::GenRect<int> workingArea_, int bitsPerPixel_,
               bool isPrimary_, void* handle_, int id_, ScreenRetainer* retainer)
    : bounds(bounds_),
      workingArea(workingArea_),
      isPrimary(isPrimary_),
      isValid(true),
      bitsPerPixel(bitsPerPixel_),
      handle(handle_),
      id(id_),
      _retain(retainer != nullptr ? retainer->retain : ignoreHandle),
      _release(retainer != nullptr ? retainer->release : ignoreHandle) {
    _retain(handle);
}

Screen::Screen(const Screen& other)
    : bounds(other.bounds),
      workingArea(other.workingArea),
      isPrimary(other.isPrimary),
      isValid(other.isValid),
      bitsPerPixel(other.bitsPerPixel),
      handle(other.handle),
      id(other.id),
      _retain(other._retain),
      _release(other._release) {
    _retain(handle);
}

Screen& Screen::operator=(const Screen& other) {
    // In this order, so that an assignment to itself keeps the handle.
    other._retain(other.handle);
    _release(handle);
    bounds = other.bounds;
    workingArea = other.workingArea;
    isPrimary = other.isPrimary;
    isValid = other.isValid;
    bitsPerPixel = other.bitsPerPixel;
    handle = other.handle;
    id = other.id;
    _retain = other._retain;
    _release = other._release;
    return *this;
}

Screen::~Screen() {
    _release(handle);
}

Screen Screen::invalidScreen() {
    return {};
}

}  // namespace tav::ula
