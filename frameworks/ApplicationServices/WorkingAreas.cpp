// SPDX-License-Identifier: MIT
#include "WorkingAreas.h"

#include <algorithm>

namespace displays {

namespace {

std::int64_t sizeOf(const Area& area) {
    return std::int64_t{area.width} * area.height;
}

Area intersection(const Area& first, const Area& second) {
    const int left = std::max(first.x, second.x);
    const int top = std::max(first.y, second.y);
    const int right = std::min(first.x + first.width, second.x + second.width);
    const int bottom = std::min(first.y + first.height, second.y + second.height);
    return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

// The one that covers most of the frame, cut to it; empty when none does.
Area bestOf(const std::vector<Area>& areas, const Area& frame) {
    Area best;
    for (const Area& area : areas) {
        const Area part = intersection(area, frame);
        if (sizeOf(part) > sizeOf(best))
            best = part;
    }
    return best;
}

// Where the strut lies on the desktop.
Area placeOf(const Strut& strut, std::size_t edge, const Desktop& desktop) {
    const int along = strut.end - strut.begin + 1;
    switch (edge) {
    case 0:
        return {0, strut.begin, strut.depth, along};
    case 1:
        return {desktop.width - strut.depth, strut.begin, strut.depth, along};
    case 2:
        return {strut.begin, 0, along, strut.depth};
    default:
        return {strut.begin, desktop.height - strut.depth, along, strut.depth};
    }
}

// What is left of an area beside a panel at its edge.
Area without(const Area& area, const Area& panel, std::size_t edge) {
    Area left = area;
    if (edge == 0 || edge == 1)
        left.width -= panel.width;
    else
        left.height -= panel.height;
    if (edge == 0)
        left.x += panel.width;
    if (edge == 2)
        left.y += panel.height;
    return left;
}

// A strut is measured from the edge of the desktop. One of a panel that stands at an inner edge
// covers whole displays on its way there: those are not what it is for.
Area besidePanels(const Area& frame, const Desktop& desktop) {
    Area left = frame;
    for (const Struts& panel : desktop.panels) {
        for (std::size_t edge = 0; edge < panel.size(); ++edge) {
            const Area place = intersection(placeOf(panel[edge], edge, desktop), left);
            if (place.isEmpty())
                continue;
            const Area rest = without(left, place, edge);
            if (!rest.isEmpty())
                left = rest;
        }
    }
    return left;
}

}  // namespace

std::vector<Area> workingAreas(const std::vector<Area>& frames, const Desktop& desktop) {
    std::vector<Area> result;
    for (const Area& frame : frames) {
        Area area = bestOf(desktop.areas, frame);
        // The one area of all displays is cut back by a panel on any of them.
        if (area.isEmpty() && frames.size() == 1)
            area = intersection(desktop.area, frame);
        if (area.isEmpty())
            area = besidePanels(frame, desktop);
        result.push_back(area);
    }
    return result;
}

}  // namespace displays
