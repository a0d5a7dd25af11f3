// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/math/GenRect.h"

#include <boost/signals2/last_value.hpp>
#include <boost/signals2/signal.hpp>
#include <string>
#include <vector>

namespace tav::ula {

/// Units: pixels. x grows to the right and y downwards. The lower left corner of the primary
/// display is 0, 0, so that what the primary display shows has negative y.
struct Point {
    int x = 0;
    int y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

/// How the platform's screen objects are kept.
struct ScreenRetainer {
    void (*retain)(void* handle);
    void (*release)(void* handle);
};

struct ScreenDetails {
    /// What the display is connected to: "HDMI-1".
    std::string outputName;
    /// How much larger than usual texts and windows are to be drawn.
    double scaleFactor = 1;
    /// Units: Hz; 0 where it is not known.
    double refreshRate = 0;
};

/// One attached display as it was when it was looked up.
/// Thread: a value; any, one at a time. The static functions and `displayID`: any. They look at
/// the displays of this moment; where there is no display server there are none.
class ULA_API Screen {
public:
    /// The invalid screen.
    Screen();
    /// With a retainer the handle is retained at once, and released at the end; with null it is
    /// only stored.
    Screen(math::GenRect<int> bounds, math::GenRect<int> workingArea, int bitsPerPixel,
           bool isPrimary, void* handle, int id, ScreenRetainer* retainer);
    Screen(const Screen& other);
    Screen& operator=(const Screen& other);
    ~Screen();

    static Screen invalidScreen();

    /// The first display that has the point; points on its edges count, on all four sides.
    /// Fails: the invalid screen, as the three below; not logged.
    static Screen getScreenFromPoint(const Point& point);
    /// The display that has most of the rectangle, the first one of several.
    static Screen getScreenFromRect(const math::GenRect<int>& rectangle);
    /// The display of a platform's screen object (`NSScreen`).
    static Screen getScreenFromHandle(void* handle);
    static Screen getPrimaryScreen();
    /// The primary one first.
    static std::vector<Screen> getAllScreens();
    /// Fails: the rectangle 0, 0, 0, 0 where no display has the point.
    static math::GenRect<int> getScreenWorkingArea(const Point& point);
    static math::GenRect<int> getScreenBounds(const Point& point);

    /// The display's number, which stays the same when others come and go: that of the display with
    /// index `id` now. Fails: 0, and an assertion is logged, when there is none.
    int displayID() const;
    /// What else is known of it. Fails: of the invalid screen nothing; not logged.
    ScreenDetails details() const;

    /// The whole display.
    math::GenRect<int> bounds;
    /// What menu bar, dock and panels leave free.
    math::GenRect<int> workingArea;
    bool isPrimary = false;
    bool isValid = false;
    int bitsPerPixel = 0;
    /// The platform's screen object (`NSScreen`). Owner: this.
    void* handle = nullptr;
    /// The index among all displays; -1 for the invalid screen.
    int id = -1;

private:
    void (*_retain)(void* handle);
    void (*_release)(void* handle);
};

/// Tells that displays have come, gone, moved or changed their modes.
/// Thread: made and deleted on the main thread, also within a slot. The signals come there, while
/// its run loop runs.
class ULA_API DisplayChangeSignal {
public:
    using Signal = boost::signals2::signal<void(), boost::signals2::last_value<void>>;

    /// Watches from here on. Owner: the caller.
    static DisplayChangeSignal* create();
    DisplayChangeSignal(const DisplayChangeSignal&) = delete;
    DisplayChangeSignal& operator=(const DisplayChangeSignal&) = delete;
    virtual ~DisplayChangeSignal();

    /// At every notification of the platform's: one change can bring many of them.
    Signal displaysChanged;
    /// Once when a burst of changes is over, a tenth of a second after the last notification (and
    /// once a second while they do not end), and only when the displays then differ from what they
    /// were the last time.
    Signal displaysSettled;

protected:
    DisplayChangeSignal();
};

}  // namespace tav::ula
