// SPDX-License-Identifier: MIT
// Reads any bytes as a settings file, both ways that the library has, and expects the same of
// both; what was read, written and read again must be equal.
#include "fuzz/Expect.h"
#include "fuzz/FuzzFolder.h"
#include "ula/SettingsException.h"
#include "ula/SettingsXML.h"
#include "ula/foundation/debug/Log.h"

#include <cstdint>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

using namespace tav;
using ula::FastString;
using ula::SettingsXML;

enum class Outcome { Refused, Thrown, Read };

template <class Read>
Outcome outcomeOf(Read read) {
    try {
        return read() ? Outcome::Read : Outcome::Refused;
    } catch (const ula::SettingsException&) {
        return Outcome::Thrown;
    }
}

void writeBytes(const std::string& path, const std::uint8_t* data, std::size_t size) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    expect(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size));
    close(file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool quiet = (debug::setLogSink([](const debug::LogRecord&) {}), true);
    static_cast<void>(quiet);

    const std::string input = fuzzFolder() + "/input.xml";
    unlink(input.c_str());
    SettingsXML fromFile("App", "Company", FastString(input), false);
    writeBytes(input, data, size);
    SettingsXML fromText("App", "Company", false);
    const FastString text(reinterpret_cast<const char*>(data), size);
    const Outcome outcome = outcomeOf([&] { return fromText.read(text); });
    expect(outcomeOf([&] { return fromFile.read(); }) == outcome);
    expect(fromFile.getAllSettings() == fromText.getAllSettings());

    const std::string output = fuzzFolder() + "/output.xml";
    unlink(output.c_str());
    SettingsXML writer("App", "Company", FastString(output), false);
    if (outcome != Outcome::Read || !writer.read(text))
        return 0;
    expect(writer.write());
    SettingsXML again("App", "Company", FastString(output), false);
    expect(again.getAllSettings() == fromText.getAllSettings());
    return 0;
}
