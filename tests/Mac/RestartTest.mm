// SPDX-License-Identifier: MIT
// What is asked for when an application is to be opened anew, and a real application that is.
#include "ula/UniqueAppInstance.h"

#import <Foundation/Foundation.h>

#include "AppKit/ExecPlatformProgram.h"
#include "tests/support/ApplicationBundle.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RunningProgram.h"

#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <objc/runtime.h>
#include <sys/stat.h>

namespace {

using namespace tav::test;
using namespace tav::ula;
namespace fs = std::filesystem;
using testing::ElementsAre;

int executed = -1;  // where the words of what is run are written
bool isFailing = false;
NSString* firstArgument = nil;

void write(const std::string& text) {
    if (::write(executed, text.data(), text.size()) < 0)
        _exit(1);
}

NSArray* givenArguments(id, SEL) {
    return [NSArray arrayWithObjects:firstArgument, @"--other", nil];
}

}  // namespace

// In place of the frameworks': programs are not run here.
int appkit::execPlatformProgram(const char* path, char* const words[]) {
    write(std::string(path) + ":");
    for (; *words != nullptr; ++words)
        write(" " + std::string(*words));
    write("\n");
    if (!isFailing)
        _exit(0);
    errno = ENOENT;
    return -1;
}

namespace {

class Restart : public testing::Test {
protected:
    Restart()
        : _pool([[NSAutoreleasePool alloc] init]),
          _arguments(class_getInstanceMethod([NSProcessInfo class], @selector(arguments))),
          _original(method_setImplementation(_arguments, reinterpret_cast<IMP>(givenArguments))) {
        firstArgument = @"/Applications/App.app/Contents/MacOS/App";
        isFailing = false;
    }
    ~Restart() override {
        setRestartRequired(false);
        method_setImplementation(_arguments, _original);
        [_pool release];
    }

    /// The programs that were run, each with its words. A child that returns adds "returned".
    static std::string check() {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        executed = ends[1];
        const pid_t self = getpid();
        checkRestartApplicaiton();
        if (getpid() != self) {
            write("returned\n");
            _exit(0);
        }
        close(ends[1]);
        std::string text;
        char part[256];
        for (ssize_t size; (size = read(ends[0], part, sizeof part)) > 0;)
            text.append(part, static_cast<std::size_t>(size));
        close(ends[0]);
        while (waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        return text;
    }

    NSAutoreleasePool* _pool;
    Method _arguments;
    IMP _original;
};

TEST_F(Restart, IsNotRequiredAtFirst) {
    EXPECT_FALSE(restartRequired());
    setRestartRequired(true);
    EXPECT_TRUE(restartRequired());
    setRestartRequired(false);
    EXPECT_FALSE(restartRequired());
}

TEST_F(Restart, WithoutTheFlagNothingIsStartedOrLogged) {
    const LogCapture log;
    EXPECT_EQ(check(), "");
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(Restart, OpensTheBundleOfTheExecutable) {
    setRestartRequired(true);
    const LogCapture log;
    EXPECT_EQ(check(), "/usr/bin/open: /usr/bin/open /Applications/App.app\n");
    EXPECT_THAT(log.lines(),
                ElementsAre("1 src/Mac/UniqueAppInstance:40 executable path "
                            "/Applications/App.app/Contents/MacOS/App",
                            "1 src/Mac/UniqueAppInstance:48 executable path /Applications/App.app",
                            "1 src/Mac/UniqueAppInstance:49 path /Applications/App.app"));
    EXPECT_TRUE(restartRequired());
}

TEST_F(Restart, ANameThatIsNotAsciiIsOpenedAllTheSame) {
    firstArgument =
        [NSString stringWithUTF8String:"/Applications/Fr\u00fchling \u65e5.app/Contents/MacOS/App"];
    setRestartRequired(true);
    EXPECT_EQ(check(), "/usr/bin/open: /usr/bin/open /Applications/Fr\u00fchling \u65e5.app\n");
}

TEST_F(Restart, QuotesAndBlanksAreThePathsOwn) {
    firstArgument = @"/A'p \"p$(x)/B;c.app/Contents/MacOS/App";
    setRestartRequired(true);
    EXPECT_EQ(check(), "/usr/bin/open: /usr/bin/open /A'p \"p$(x)/B;c.app\n");
}

TEST_F(Restart, AChildThatCannotRunItReturns) {
    isFailing = true;
    setRestartRequired(true);
    EXPECT_EQ(check(), "/usr/bin/open: /usr/bin/open /Applications/App.app\nreturned\n");
}

/// Waits for the report of an application that is started anew.
class RealRestart : public testing::Test {
protected:
    RealRestart() {
        EXPECT_EQ(mkfifo((folder / "report").c_str(), 0600), 0);
        setenv("ULA_TEST_REPORT", (folder / "report").c_str(), 1);
        setenv("ULA_TEST_BEFORE", (folder / "before").c_str(), 1);
        _report = open((folder / "report").c_str(), O_RDWR | O_CLOEXEC);
    }
    ~RealRestart() override { close(_report); }

    /// Empty when none comes.
    std::string report() const {
        std::string line;
        pollfd ready = {_report, POLLIN, 0};
        char byte = 0;
        while (poll(&ready, 1, kPatienceMs) > 0 && read(_report, &byte, 1) == 1 && byte != '\n')
            line += byte;
        return line;
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    int _report = -1;
};

TEST_F(RealRestart, ABundleIsOpenedWhenItsProcessHasGone) {
    const ApplicationBundle bundle(folder.path().string(), "Photo Box", "com.maker.restart");
    RunningProgram program(bundle.program(), "restart");
    ASSERT_EQ(program.readLine(), "checked");
    program.finish();
    EXPECT_EQ(report(), bundle.program() + " in / after its end");
}

TEST_F(RealRestart, AProcessThatIsKilledIsOpenedAnewAsWell) {
    const ApplicationBundle bundle(folder.path().string(), "Fr\u00fchling", "com.maker.restart");
    RunningProgram program(bundle.program(), "restart");
    ASSERT_EQ(program.readLine(), "checked");
    program.kill();
    EXPECT_EQ(report(), bundle.program() + " in / after its end");
}

TEST_F(RealRestart, AnApplicationThatHasReplacedItselfIsOpenedInItsNewForm) {
    const ApplicationBundle bundle(folder.path().string(), "Photo Box", "com.maker.restart");
    RunningProgram program(bundle.program(), "update");
    ASSERT_EQ(program.readLine(), "checked");
    program.finish();
    EXPECT_EQ(report(), bundle.program() + " in / after its end");
}

TEST_F(RealRestart, AProgramInNoBundleIsStartedAgain) {
    const std::string plain = folder / "photo";
    fs::copy_file(ULA_APPLICATION_PROGRAM, plain);
    RunningProgram program(plain, "restart");
    ASSERT_EQ(program.readLine(), "checked");
    program.finish();
    EXPECT_EQ(report(), plain + " in / after its end");
}

}  // namespace
