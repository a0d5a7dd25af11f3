// SPDX-License-Identifier: MIT
#include "SystemProfiler/ArmCores.h"

#include "SystemProfiler/KernelFile.h"

namespace systemprofiler {

namespace {

struct Name {
    uint64_t code;
    const char* name;
};

constexpr Name kMakers[] = {
    {0x41, "ARM"},       {0x42, "Broadcom"}, {0x43, "Cavium"}, {0x46, "Fujitsu"},
    {0x48, "HiSilicon"}, {0x4E, "NVIDIA"},   {0x50, "APM"},    {0x51, "Qualcomm"},
    {0x53, "Samsung"},   {0x56, "Marvell"},  {0x61, "Apple"},  {0x69, "Intel"},
    {0x6D, "Microsoft"}, {0x70, "Phytium"},  {0xC0, "Ampere"},
};

// Of the first maker, whose designs most of the others use.
constexpr Name kDesigns[] = {
    {0xC05, "Cortex-A5"},   {0xC07, "Cortex-A7"},   {0xC08, "Cortex-A8"},
    {0xC09, "Cortex-A9"},   {0xC0D, "Cortex-A17"},  {0xC0E, "Cortex-A17"},
    {0xC0F, "Cortex-A15"},  {0xD01, "Cortex-A32"},  {0xD02, "Cortex-A34"},
    {0xD03, "Cortex-A53"},  {0xD04, "Cortex-A35"},  {0xD05, "Cortex-A55"},
    {0xD06, "Cortex-A65"},  {0xD07, "Cortex-A57"},  {0xD08, "Cortex-A72"},
    {0xD09, "Cortex-A73"},  {0xD0A, "Cortex-A75"},  {0xD0B, "Cortex-A76"},
    {0xD0C, "Neoverse-N1"}, {0xD0D, "Cortex-A77"},  {0xD0E, "Cortex-A76AE"},
    {0xD40, "Neoverse-V1"}, {0xD41, "Cortex-A78"},  {0xD42, "Cortex-A78AE"},
    {0xD44, "Cortex-X1"},   {0xD46, "Cortex-A510"}, {0xD47, "Cortex-A710"},
    {0xD48, "Cortex-X2"},   {0xD49, "Neoverse-N2"}, {0xD4A, "Neoverse-E1"},
    {0xD4B, "Cortex-A78C"}, {0xD4D, "Cortex-A715"}, {0xD4E, "Cortex-X3"},
    {0xD4F, "Neoverse-V2"}, {0xD80, "Cortex-A520"}, {0xD81, "Cortex-A720"},
    {0xD82, "Cortex-X4"},
};

template <size_t Length>
const char* find(const Name (&names)[Length], uint64_t code) {
    for (const Name& name : names)
        if (name.code == code)
            return name.name;
    return nullptr;
}

}  // namespace

std::string armCoreName(const std::string& implementer, const std::string& part) {
    const uint64_t makerCode = numberOf(implementer).value_or(0);
    const char* const maker = find(kMakers, makerCode);
    if (maker == nullptr)
        return {};
    const char* const design =
        makerCode == 0x41 ? find(kDesigns, numberOf(part).value_or(0)) : nullptr;
    return std::string(maker) + ' ' + (design != nullptr ? design : part);
}

}  // namespace systemprofiler
