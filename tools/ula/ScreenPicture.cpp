// SPDX-License-Identifier: MIT
#include "tools/ula/ScreenPicture.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/Translation.h"

#include <algorithm>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <locale>
#include <memory>
#include <sstream>

namespace tav::tool {

namespace {

using Rectangle = math::GenRect<int>;

constexpr double kPictureWidth = 800;
constexpr double kMostHeight = 1200;
constexpr double kMargin = 16;

constexpr const char* kBegin = R"svg(<defs><pattern id="covered" width="8" height="8"
 patternUnits="userSpaceOnUse" patternTransform="rotate(45)"><rect width="8" height="8"
 fill="#b7c3d3"/><rect width="3" height="8" fill="#8ea0b8"/></pattern></defs>
<rect width="100%" height="100%" fill="#ffffff"/>
)svg";

/// From the pixels of the displays to those of the picture.
struct Scale {
    double factor;
    int left;
    int top;

    double x(int value) const { return kMargin + (value - left) * factor; }
    double y(int value) const { return kMargin + (value - top) * factor; }
};

Rectangle boundsOf(const std::vector<ula::Screen>& screens) {
    Rectangle all = screens.front().bounds;
    for (const ula::Screen& screen : screens) {
        all.left = std::min(all.left, screen.bounds.left);
        all.top = std::min(all.top, screen.bounds.top);
        all.right = std::max(all.right, screen.bounds.right);
        all.bottom = std::max(all.bottom, screen.bounds.bottom);
    }
    return all;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : displayText(text)) {
        if (c == '<')
            result += "&lt;";
        else if (c == '&')
            result += "&amp;";
        else
            result += c;
    }
    return result;
}

void drawRectangle(std::ostream& svg, const Rectangle& area, const Scale& scale,
                   const char* style) {
    svg << "<rect x=\"" << scale.x(area.left) << "\" y=\"" << scale.y(area.top) << "\" width=\""
        << area.width() * scale.factor << "\" height=\"" << area.height() * scale.factor << "\" "
        << style << "/>\n";
}

void drawText(std::ostream& svg, double x, double y, double size, const std::string& text) {
    svg << "<text x=\"" << x << "\" y=\"" << y << "\" font-size=\"" << size
        << "\" font-family=\"DejaVu Sans, sans-serif\" text-anchor=\"middle\" fill=\"#1d2b3e\">"
        << escaped(text) << "</text>\n";
}

void drawScreen(std::ostream& svg, const ula::Screen& screen, const Scale& scale) {
    const Rectangle& area = screen.workingArea;
    drawRectangle(svg, screen.bounds, scale, "fill=\"url(#covered)\"");
    drawRectangle(svg, area, scale, screen.isPrimary ? "fill=\"#dcebfa\"" : "fill=\"#eef2f6\"");
    drawRectangle(svg, screen.bounds, scale, "fill=\"none\" stroke=\"#33475f\" stroke-width=\"2\"");
    const double x = (scale.x(area.left) + scale.x(area.right)) / 2;
    const double y = (scale.y(area.top) + scale.y(area.bottom)) / 2;
    // As large as fits: a line takes some twenty letters' width.
    const double size = std::clamp(area.width() * scale.factor / 14, 6.0, 20.0);
    drawText(svg, x, y - size * 0.5, size,
             screen.details().outputName + (screen.isPrimary ? ", " + translated("primary") : ""));
    drawText(svg, x, y + size, size * 0.8,
             std::to_string(screen.bounds.width()) + " x " +
                 std::to_string(screen.bounds.height()));
    drawText(svg, x, y + size * 2.2, size * 0.7,
             translated("from %1, %2", std::to_string(screen.bounds.left),
                        std::to_string(screen.bounds.top)));
}

struct Release {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(GError* error) const { g_error_free(error); }
};
template <class Type>
using Owned = std::unique_ptr<Type, Release>;

[[noreturn]] void fail(const GError* error, const std::string& hint) {
    throw CommandError{
        ExitCannotWrite,
        translated("the picture cannot be drawn: %1",
                   error != nullptr ? error->message : translated("no reason is known")),
        hint};
}

/// A wrong SVG is told of at the latest when the loader is closed, which it must be in any case.
void load(GdkPixbufLoader* loader, const std::string& svg) {
    GError* error = nullptr;
    const auto* bytes = reinterpret_cast<const guchar*>(svg.data());
    const bool isWritten = gdk_pixbuf_loader_write(loader, bytes, svg.size(), &error) == TRUE;
    if (gdk_pixbuf_loader_close(loader, isWritten ? &error : nullptr) == TRUE && isWritten)
        return;
    const Owned<GError> owned(error);
    fail(error, translated("drawing needs the package librsvg2-common"));
}

}  // namespace

std::string drawScreens(const std::vector<ula::Screen>& screens) {
    const Rectangle all = boundsOf(screens);
    const Scale scale{std::min((kPictureWidth - 2 * kMargin) / all.width(),
                               (kMostHeight - 2 * kMargin) / all.height()),
                      all.left, all.top};
    std::ostringstream svg;
    svg.imbue(std::locale::classic());
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << scale.x(all.right) + kMargin
        << "\" height=\"" << scale.y(all.bottom) + kMargin << "\">\n"
        << kBegin;
    for (const ula::Screen& screen : screens)
        drawScreen(svg, screen, scale);
    svg << "</svg>\n";
    return svg.str();
}

std::string pngOf(const std::string& svg) {
    const Owned<GdkPixbufLoader> loader(gdk_pixbuf_loader_new());
    load(loader.get(), svg);
    GdkPixbuf* const picture = gdk_pixbuf_loader_get_pixbuf(loader.get());
    gchar* bytes = nullptr;
    gsize size = 0;
    GError* error = nullptr;
    if (picture == nullptr ||
        gdk_pixbuf_save_to_buffer(picture, &bytes, &size, "png", &error, nullptr) == FALSE) {
        const Owned<GError> owned(error);
        fail(error, "");
    }
    std::string png(bytes, size);
    g_free(bytes);
    return png;
}

}  // namespace tav::tool
