// SPDX-License-Identifier: MIT
#include "AppKit/ToldVolumes.h"

#include <gtest/gtest.h>

namespace {

using appkit::ToldVolumes;
using appkit::Volume;

Volume volume(const std::string& name, uint64_t id = 40, uint64_t serial = 0) {
    coreservices::Mount mount;
    mount.id = id;
    mount.root = "/";
    mount.point = "/Volumes/" + name;
    mount.type = "ext4";
    mount.source = "/dev/sdb1";
    mount.device = "8:17";
    return {mount.point, mount, serial};
}

// All that is told, each change with what is listed then: "+B of A B".
std::vector<std::string> changes(ToldVolumes& told, const std::vector<Volume>& now) {
    std::vector<std::string> texts;
    while (auto change = told.next(now)) {
        std::string text = change->kind == appkit::VolumeChange::Kind::Mounted ? "+" : "-";
        text += change->path.substr(9) + " of";
        for (const std::string& path : change->told)
            text += " " + path.substr(9);
        texts.push_back(text);
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(ToldVolumes, NothingIsToldOfWhatIsKnown) {
    ToldVolumes told;
    EXPECT_EQ(changes(told, {}), Texts());
    told.begin({volume("A"), volume("B")});
    EXPECT_EQ(changes(told, {volume("B"), volume("A")}), Texts());
}

TEST(ToldVolumes, EachChangeIsToldOnceWithTheListAsItLeavesIt) {
    ToldVolumes told;
    told.begin({volume("A"), volume("B"), volume("C")});
    const std::vector<Volume> now = {volume("D"), volume("B"), volume("E")};
    EXPECT_EQ(changes(told, now), (Texts{"-A of B", "-C of B", "+D of D B", "+E of D B E"}));
    EXPECT_EQ(changes(told, now), Texts());
}

TEST(ToldVolumes, VolumeInThePlaceOfAnotherIsToldAsBoth) {
    ToldVolumes told;
    told.begin({volume("A", 40)});
    EXPECT_EQ(changes(told, {volume("A", 41)}), (Texts{"-A of", "+A of A"}));
    Volume other = volume("A", 41);
    other.mount.device = "8:33";
    EXPECT_EQ(changes(told, {other}), (Texts{"-A of", "+A of A"}));
}

TEST(ToldVolumes, SerialNumbersTellApartWhatLooksTheSame) {
    ToldVolumes told;
    told.begin({volume("A", 40, 7)});
    EXPECT_EQ(changes(told, {volume("A", 40, 7)}), Texts());
    EXPECT_EQ(changes(told, {volume("A", 40, 8)}), (Texts{"-A of", "+A of A"}));
    // Where one was not to be had, the rest has to do.
    EXPECT_EQ(changes(told, {volume("A", 40, 0)}), Texts());
}

TEST(ToldVolumes, WhatMayChangeWhileItIsMountedIsNoChange) {
    ToldVolumes told;
    told.begin({volume("A")});
    Volume protectedNow = volume("A");
    protectedNow.mount.isReadOnly = true;
    EXPECT_EQ(changes(told, {protectedNow}), Texts());
}

TEST(ToldVolumes, NewNameIsToldAsBoth) {
    ToldVolumes told;
    told.begin({volume("A")});
    Volume renamed = volume("A");
    renamed.path = "/Volumes/Z";
    EXPECT_EQ(changes(told, {renamed}), (Texts{"-A of", "+Z of Z"}));
}

// Whoever asks again after each change may find more of them.
TEST(ToldVolumes, VolumeThatGoesBeforeTheRestIsToldIsToldFirst) {
    ToldVolumes told;
    const std::vector<Volume> now = {volume("A"), volume("B")};
    EXPECT_EQ(told.next(now)->path, "/Volumes/A");
    EXPECT_EQ(changes(told, {volume("B")}), (Texts{"-A of", "+B of B"}));
}

}  // namespace
