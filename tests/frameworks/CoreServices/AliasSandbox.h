// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/AliasResolver.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <map>

#include <gtest/gtest.h>

namespace aliastest {

using Requests = std::vector<std::string>;

// Notes what it is asked to mount, and lets the test do it.
class FakeMounter : public coreservices::Mounter {
public:
    std::string pathOf(const std::string& url) override { return paths[url]; }
    bool mountPlace(const std::string& url) override { return request("place " + url); }
    bool mountPoint(const std::string& point) override { return request("point " + point); }
    std::string mountLabel(const std::string& label) override {
        return request("label " + label) ? labelPath : std::string();
    }

    std::map<std::string, std::string> paths;
    std::string labelPath;
    Requests requests;
    std::function<void()> onMount;  // without it mounting fails

private:
    bool request(std::string what) {
        requests.push_back(std::move(what));
        if (onMount)
            onMount();
        return static_cast<bool>(onMount);
    }
};

// A folder with volumes, media and a table of mounts of its own.
class AliasSandbox : public testing::Test {
protected:
    AliasSandbox() {
        places = coreservices::AliasPlaces::ofProcess();
        places.volumesFolder = root() + "/Volumes";
        places.mediaFolders = {root() + "/media"};
        places.mountTable = root() + "/fstab";
        places.mounter = mounter;
        places.patience = std::chrono::seconds(60);
    }

    std::string root() const { return _folder.path().string(); }

    std::string makeFolder(const std::string& name) {
        std::filesystem::create_directories(_folder / name);
        return _folder / name;
    }

    std::string makeFile(const std::string& name, const std::string& bytes) {
        tav::test::writeFile(_folder / name, bytes);
        return _folder / name;
    }

    std::string makeLink(const std::string& name, const std::string& url,
                         const std::string& lines = {}) {
        return makeFile(name + ".desktop",
                        "[Desktop Entry]\nType=Link\nURL=" + url + "\n" + lines + "\n");
    }

    coreservices::ResolvedAlias
    resolve(const std::string& path, coreservices::Chains chains = coreservices::Chains::Follow,
            coreservices::Mounting mounting = coreservices::Mounting::Never) {
        return coreservices::resolveAlias(path, chains, mounting, places);
    }

    std::shared_ptr<FakeMounter> mounter = std::make_shared<FakeMounter>();
    coreservices::AliasPlaces places;

private:
    tav::test::TemporaryFolder _folder;
};

}  // namespace aliastest
