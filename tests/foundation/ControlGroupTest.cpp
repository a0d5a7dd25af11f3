// SPDX-License-Identifier: MIT
// The limits of control groups: read from the files of a made-up system, and from groups that the
// kernel really keeps, for which root's rights are needed.
#include "ula/foundation/memory/ControlGroup.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/foundation/memory/SystemMem.h"
#include "ula/foundation/thread/ProcessorCount.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace tav::memory {
namespace {

namespace fs = std::filesystem;
constexpr std::uint64_t kMegabyte = 1 << 20;

class ControlGroups : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) {
        const fs::path path = _folder.path() / name;
        fs::create_directories(path.parent_path());
        test::writeFile(path.string(), text);
    }
    /// A system with one hierarchy; `mountRoot` is the group that is seen at its mount point.
    void unified(const std::string& group, const std::string& mountRoot = "/") {
        write("proc/self/cgroup", "0::" + group + "\n");
        write("proc/self/mountinfo", "22 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                                     "31 23 0:28 " +
                                         mountRoot +
                                         " /sys/fs/cgroup rw,relatime - cgroup2 cgroup2 rw\n");
    }
    void separate(const std::string& group, const std::string& mountRoot = "/") {
        write("proc/self/cgroup",
              "5:memory:" + group + "\n3:cpu,cpuacct:" + group + "\n1:name=systemd:/\n0::/\n");
        write("proc/self/mountinfo",
              "32 31 0:29 " + mountRoot + " /cg/cpu,cpuacct rw - cgroup cgroup rw,cpu,cpuacct\n" +
                  "35 31 0:32 " + mountRoot + " /cg/memory rw - cgroup cgroup rw,memory\n" +
                  "37 31 0:34 / /cg/systemd rw - cgroup cgroup rw,name=systemd\n");
    }
    ControlGroupLimits read() const { return readControlGroupLimits(_folder.path().string()); }

private:
    test::TemporaryFolder _folder;
};

TEST_F(ControlGroups, WithoutAnyThereAreNoLimits) {
    EXPECT_EQ(read(), ControlGroupLimits());
    unified("/");
    EXPECT_EQ(read(), ControlGroupLimits());
}

TEST_F(ControlGroups, OfTheUnifiedHierarchyLimitMemoryAndProcessors) {
    unified("/app.slice");
    write("sys/fs/cgroup/app.slice/memory.max", "104857600\n");
    write("sys/fs/cgroup/app.slice/memory.high", "max\n");
    write("sys/fs/cgroup/app.slice/memory.current", "62914560\n");
    write("sys/fs/cgroup/app.slice/memory.stat", "anon 5\ninactive_file 20971520\n");
    write("sys/fs/cgroup/app.slice/cpu.max", "150000 100000\n");
    EXPECT_EQ(read(), (ControlGroupLimits{100 * kMegabyte, 60 * kMegabyte, 1.5}));
}

TEST_F(ControlGroups, WithoutALimitSayMax) {
    unified("/a");
    write("sys/fs/cgroup/a/memory.max", "max\n");
    write("sys/fs/cgroup/a/cpu.max", "max 100000\n");
    EXPECT_EQ(read(), ControlGroupLimits());
}

TEST_F(ControlGroups, AreAsTightAsTheTightestTheyLieIn) {
    unified("/a/b/c");
    write("sys/fs/cgroup/a/memory.max", "52428800");
    write("sys/fs/cgroup/a/b/memory.max", "104857600");
    write("sys/fs/cgroup/a/b/c/memory.high", "209715200");
    write("sys/fs/cgroup/a/b/cpu.max", "50000 100000");
    write("sys/fs/cgroup/a/b/c/cpu.max", "200000 100000");
    EXPECT_EQ(read(), (ControlGroupLimits{50 * kMegabyte, 50 * kMegabyte, 0.5}));
}

TEST_F(ControlGroups, ThatAreThrottledBeforeTheirLimitEndThere) {
    unified("/a");
    write("sys/fs/cgroup/a/memory.max", "104857600");
    write("sys/fs/cgroup/a/memory.high", "52428800");
    EXPECT_EQ(read().memory, 50 * kMegabyte);
}

TEST_F(ControlGroups, ThatAreFullLeaveNothing) {
    unified("/a");
    write("sys/fs/cgroup/a/memory.max", "1048576");
    write("sys/fs/cgroup/a/memory.current", "2097152");
    EXPECT_EQ(read().memoryLeft, 0u);
}

TEST_F(ControlGroups, OfSeparateHierarchiesLimitMemoryAndProcessors) {
    separate("/docker/x");
    write("cg/memory/docker/x/memory.limit_in_bytes", "104857600\n");
    write("cg/memory/docker/x/memory.usage_in_bytes", "94371840\n");
    write("cg/memory/docker/x/memory.stat", "inactive_file 1\ntotal_inactive_file 41943040\n");
    write("cg/cpu,cpuacct/docker/x/cpu.cfs_quota_us", "250000\n");
    write("cg/cpu,cpuacct/docker/x/cpu.cfs_period_us", "100000\n");
    EXPECT_EQ(read(), (ControlGroupLimits{100 * kMegabyte, 50 * kMegabyte, 2.5}));
}

TEST_F(ControlGroups, OfSeparateHierarchiesWithoutALimitSayAHugeNumber) {
    separate("/");
    write("cg/memory/memory.limit_in_bytes", "9223372036854771712\n");
    write("cg/cpu,cpuacct/cpu.cfs_quota_us", "-1\n");
    write("cg/cpu,cpuacct/cpu.cfs_period_us", "100000\n");
    EXPECT_EQ(read(), ControlGroupLimits());
}

TEST_F(ControlGroups, InAContainerLieAtTheMountPoint) {
    separate("/docker/x/inner", "/docker/x");
    write("cg/memory/memory.limit_in_bytes", "104857600\n");
    write("cg/memory/inner/memory.limit_in_bytes", "52428800\n");
    EXPECT_EQ(read().memory, 50 * kMegabyte);
}

TEST_F(ControlGroups, OfTheHostThatAreNotSeenAreThoseOfTheMountPoint) {
    unified("/../../host.slice", "/");
    write("sys/fs/cgroup/memory.max", "104857600\n");
    EXPECT_EQ(read().memory, 100 * kMegabyte);
    separate("/docker/xy", "/docker/x");
    write("cg/memory/memory.limit_in_bytes", "52428800\n");
    EXPECT_EQ(read().memory, 50 * kMegabyte);
}

TEST_F(ControlGroups, WithNonsenseAreNoLimits) {
    unified("/a");
    write("sys/fs/cgroup/a/memory.max", "lots");
    write("sys/fs/cgroup/a/cpu.max", "5 0");
    EXPECT_EQ(read(), ControlGroupLimits());
    write("sys/fs/cgroup/a/cpu.max", "5");
    EXPECT_EQ(read(), ControlGroupLimits());
    write("proc/self/cgroup", "0\n::\n:\n0::nowhere\n");
    write("proc/self/mountinfo", "x - cgroup2\n - cgroup\n");
    EXPECT_EQ(read(), ControlGroupLimits());
}

/// A group of the kernel's own, of the version that the system gives the controller to, mounted
/// where nobody else sees it. Gone with the process that made it.
class RealGroup {
public:
    explicit RealGroup(const std::string& controller) : _mountPoint(_folder / controller) {
        fs::create_directory(_mountPoint);
        const bool isApart = unshare(CLONE_NEWNS) == 0 &&
                             mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        if (!isApart || !(mountSeparate(controller) || mountUnified(controller)))
            return;
        _group = _mountPoint + "/ula-test-" + std::to_string(getpid());
        _isMade = fs::create_directory(_group);
    }
    ~RealGroup() {
        std::ofstream(_mountPoint + "/cgroup.procs") << getpid();
        std::error_code ignored;
        fs::remove(_group, ignored);
        umount2(_mountPoint.c_str(), MNT_DETACH);
    }
    bool isMade() const { return _isMade; }
    bool isUnified() const { return _isUnified; }
    bool set(const std::string& name, const std::string& value) {
        return write(_group + '/' + name, value);
    }
    bool enter() { return set("cgroup.procs", std::to_string(getpid())); }

private:
    static bool write(const std::string& path, const std::string& value) {
        return static_cast<bool>(std::ofstream(path) << value << std::flush);
    }
    bool mountSeparate(const std::string& controller) {
        return mount("cgroup", _mountPoint.c_str(), "cgroup", 0, controller.c_str()) == 0;
    }
    bool mountUnified(const std::string& controller) {
        _isUnified = mount("cgroup2", _mountPoint.c_str(), "cgroup2", 0, nullptr) == 0 &&
                     write(_mountPoint + "/cgroup.subtree_control", '+' + controller);
        return _isUnified;
    }

    test::TemporaryFolder _folder;
    std::string _mountPoint;
    std::string _group;
    bool _isMade = false;
    bool _isUnified = false;
};

bool limitMemory(RealGroup& group, const std::string& bytes) {
    return group.set(group.isUnified() ? "memory.max" : "memory.limit_in_bytes", bytes);
}

bool halveAProcessor(RealGroup& group) {
    return group.isUnified()
               ? group.set("cpu.max", "50000 100000")
               : group.set("cpu.cfs_period_us", "100000") && group.set("cpu.cfs_quota_us", "50000");
}

TEST(RealControlGroups, LimitTheMemoryOfThisProcess) {
    const std::string answer = test::runInChild([] {
        RealGroup group("memory");
        if (!group.isMade() || !limitMemory(group, "209715200") || !group.enter())
            return std::string("no group");
        const std::uint64_t left = SystemMem::MemGetEffectiveAvailMemSize();
        const bool isLeft = left > 0 && left <= 200 * kMegabyte;
        return std::to_string(SystemMem::MemGetEffectiveMemSize()) + (isLeft ? " left" : "");
    });
    EXPECT_EQ(answer, "209715200 left");
}

TEST(RealControlGroups, LimitTheProcessorsOfThisProcess) {
    const std::string answer = test::runInChild([] {
        RealGroup group("cpu");
        if (!group.isMade() || !halveAProcessor(group) || !group.enter())
            return std::string("no group");
        return std::to_string(thread::effectiveProcessorCount());
    });
    EXPECT_EQ(answer, "1");
}

TEST(EffectiveProcessors, AreThoseThatTheProcessMayRunOn) {
    const std::string answer = test::runInChild([] {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        if (sched_setaffinity(0, sizeof one, &one) != 0)
            return std::string("not bound");
        return std::to_string(thread::effectiveProcessorCount());
    });
    EXPECT_EQ(answer, "1");
}

TEST(EffectiveProcessors, AreNoMoreThanTheirShare) {
    EXPECT_EQ(thread::effectiveProcessorCount(8, std::nullopt), 8);
    EXPECT_EQ(thread::effectiveProcessorCount(8, 2.0), 2);
    EXPECT_EQ(thread::effectiveProcessorCount(8, 2.1), 3);
    EXPECT_EQ(thread::effectiveProcessorCount(8, 0.1), 1);
    EXPECT_EQ(thread::effectiveProcessorCount(8, 1e18), 8);
    EXPECT_EQ(thread::effectiveProcessorCount(0, std::nullopt), 1);
}

TEST(EffectiveMemory, IsNoMoreThanTheMachines) {
    EXPECT_LE(SystemMem::MemGetEffectiveMemSize(), SystemMem::MemGetPhysicalMemSize());
    EXPECT_GT(SystemMem::MemGetEffectiveMemSize(), 0u);
    EXPECT_GT(SystemMem::MemGetEffectiveAvailMemSize(), 0u);
}

}  // namespace
}  // namespace tav::memory
