// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/StackTrace.h"

#include <cstdint>
#include <cstdlib>
#include <cxxabi.h>
#include <elfutils/libdwfl.h>
#include <execinfo.h>
#include <memory>
#include <mutex>
#include <string_view>
#include <unistd.h>
#include <unordered_map>

namespace tav::debug {

namespace {

std::string demangled(const char* symbol) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(symbol, nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : symbol;
}

std::string_view leafOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// Names addresses of this process. Reads the modules' tables once and again when an address
/// lies in none, for a library may have been loaded since.
class Symbolizer {
public:
    std::string describe(std::uintptr_t address) {
        const auto known = _known.find(address);
        if (known != _known.end())
            return known->second;
        return _known[address] = lookUp(address);
    }

private:
    std::string lookUp(std::uintptr_t address) {
        Dwfl_Module* module = moduleOf(address);
        if (!module)
            return "?";
        const char* symbol = dwfl_module_addrname(module, address);
        return (symbol ? demangled(symbol) : std::string("?")) + placeOf(module, address);
    }

    Dwfl_Module* moduleOf(std::uintptr_t address) {
        Dwfl_Module* module = _session ? dwfl_addrmodule(_session.get(), address) : nullptr;
        if (module || !readModules())
            return module;
        return dwfl_addrmodule(_session.get(), address);
    }

    bool readModules() {
        // Debug information is taken from where it is installed, never fetched.
        static const Dwfl_Callbacks callbacks = {dwfl_linux_proc_find_elf,
                                                 dwfl_standard_find_debuginfo, nullptr, nullptr};
        _session.reset(dwfl_begin(&callbacks));
        return _session && dwfl_linux_proc_report(_session.get(), getpid()) == 0 &&
               dwfl_report_end(_session.get(), nullptr, nullptr) == 0;
    }

    /// The line table entry of an address. Compilers need not write the table that leads from
    /// addresses to their units, so the units themselves are asked where it is missing.
    static Dwarf_Line* sourceOf(Dwfl_Module* module, std::uintptr_t address) {
        Dwarf_Addr bias = 0;
        if (Dwfl_Line* source = dwfl_module_getsrc(module, address))
            return dwfl_dwarf_line(source, &bias);
        Dwarf_Die* unit = nullptr;
        while ((unit = dwfl_module_nextcu(module, unit, &bias)))
            if (dwarf_haspc(unit, address - bias) == 1)
                return dwarf_getsrc_die(unit, address - bias);
        return nullptr;
    }

    static std::string placeOf(Dwfl_Module* module, std::uintptr_t address) {
        int line = 0;
        Dwarf_Line* source = sourceOf(module, address);
        const char* file = source ? dwarf_linesrc(source, nullptr, nullptr) : nullptr;
        if (file && dwarf_lineno(source, &line) == 0)
            return " at " + std::string(leafOf(file)) + ":" + std::to_string(line);
        const char* name =
            dwfl_module_info(module, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        return name ? " in " + std::string(leafOf(name)) : std::string();
    }

    struct End {
        void operator()(Dwfl* session) const { dwfl_end(session); }
    };
    std::unique_ptr<Dwfl, End> _session;
    std::unordered_map<std::uintptr_t, std::string> _known;
};

}  // namespace

StackTrace StackTrace::capture() {
    StackTrace trace;
    const int count = backtrace(trace._frames.data(), static_cast<int>(kDeepest));
    trace._count = static_cast<std::size_t>(count > 0 ? count : 0);
    return trace;
}

std::string StackTrace::toString() const {
    static std::mutex mutex;
    static Symbolizer* symbolizer = new Symbolizer;  // kept: an assertion may be the last word
    std::lock_guard lock(mutex);

    constexpr std::size_t kOwnFrames = 1;
    std::string text;
    for (std::size_t i = kOwnFrames; i < _count; ++i) {
        // A frame holds the address after the call; the call itself is what has the line.
        const auto address = reinterpret_cast<std::uintptr_t>(_frames[i]) - 1;
        text += "  #" + std::to_string(i - kOwnFrames) + " " + symbolizer->describe(address) + "\n";
    }
    return text;
}

}  // namespace tav::debug
