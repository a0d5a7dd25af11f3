// SPDX-License-Identifier: MIT
#include "ula/SystemInformation.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/debug/Log.h"
#include "ula/foundation/text/NumberConversion.h"
#include "ula/src/Mac/HardwareReport.h"

namespace tav::ula {

namespace {

constexpr const char* kSource = "src/Mac/SystemInformationMac";

#if defined(__x86_64__)
constexpr const char* kArchitecture = "x86_64";
#elif defined(__i386__)
constexpr const char* kArchitecture = "i386";
#elif defined(__aarch64__)
constexpr const char* kArchitecture = "arm64";
#else
constexpr const char* kArchitecture = "unknown";
#endif

/// Empty for what is no text.
FastString textOf(id value) {
    return [value isKindOfClass:[NSString class]] ? [value toUTF8String] : FastString();
}

/// 0 for what is no number.
std::int64_t integerOf(id value) {
    return [value respondsToSelector:@selector(intValue)] ? [value intValue] : 0;
}

/// Cut to an integer. Fails: 0 where it has no room.
std::uint64_t truncated(double value) {
    return value >= 0 && value < 0x1p64 ? static_cast<std::uint64_t>(value) : 0;
}

bool contains(const FastString& text, const char* part) {
    return text.find(part) != FastString::npos;
}

/// The whole text when the end does not occur in it.
FastString textBefore(const FastString& text, const char* end) {
    return text.substr(0, text.find(end));
}

double numberBefore(const FastString& text, const char* unit) {
    return text::strtod(textBefore(text, unit), text::LocaleIndependent);
}

std::uint64_t speedOf(const FastString& text) {
    if (contains(text, "MHz"))
        return truncated(numberBefore(text, " MHz"));
    if (contains(text, "GHz"))
        return truncated(numberBefore(text, " GHz") * 1000);
    debug::assertionFailed(kSource, 87, "false");
    debug::logf(kSource, 89, debug::LogLevelUnrecognised, "Unknown processor speed: %*").add(text);
    return 0;
}

std::uint64_t memoryOf(const FastString& text) {
    if (contains(text, " MB"))
        return text::strtoui64(textBefore(text, " MB"), 10) << 20;
    if (contains(text, " GB"))
        return text::strtoui64(textBefore(text, " GB"), 10) << 30;
    // Not understood, but known: the memory is part of the main memory.
    if (text != "spdisplays_integrated_vram") {
        debug::assertionFailed(kSource, 141, "false");
        debug::logf(kSource, 142, debug::LogLevelUnrecognised, "Unknown video ram amount: %*")
            .add(text);
    }
    return 0;
}

}  // namespace

std::vector<CPUInfo> SystemInformation::getCPUInfo() {
    const ScopedARPool pool;
    std::vector<CPUInfo> infos(1);
    CPUInfo& info = infos.front();
    NSDictionary* const report = hardwareReport(@"SPHardwareDataType");
    if (report == nil)
        return infos;
    if (id const type = [report objectForKey:@"cpu_type"]; [type isKindOfClass:[NSString class]])
        info.type = textOf(type);
    if (const FastString speed = textOf([report objectForKey:@"current_processor_speed"]);
        !speed.empty())
        info.speedMHz = speedOf(speed);
    info.count = integerOf([report objectForKey:@"number_processors"]);
    info.architecture = FastString::literal("unknown");
    info.architecture = kArchitecture;
    return infos;
}

std::vector<VideoControllerInfo> SystemInformation::getVideoControllerInfo() {
    std::vector<VideoControllerInfo> infos(1);
    const ScopedARPool pool;
    VideoControllerInfo& info = infos.front();
    NSDictionary* const report = hardwareReport(@"SPDisplaysDataType");
    if (report == nil)
        return infos;
    info.model = textOf([report objectForKey:@"sppci_model"]);
    if (const FastString memory = textOf([report objectForKey:@"spdisplays_vram"]); !memory.empty())
        info.videoMemory = memoryOf(memory);
    return infos;
}

}  // namespace tav::ula
