// SPDX-License-Identifier: MIT
#include "ula/ModuleMac.h"

#include "ula/ScopedARPool.h"

#include "tests/support/ReplacedMethod.h"
#include "tests/support/TemporaryFolder.h"

#import <Foundation/Foundation.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <objc/runtime.h>

/// A bundle as far as modules ask one.
@interface ModuleTestBundle : NSObject {
    NSString* _identifier;
}
- (id)initWithIdentifier:(NSString*)identifier;
- (NSString*)bundleIdentifier;
- (NSString*)bundlePath;
@end

@implementation ModuleTestBundle
- (id)initWithIdentifier:(NSString*)identifier {
    self = [super init];
    _identifier = [identifier copy];
    return self;
}
- (void)dealloc {
    [_identifier release];
    [super dealloc];
}
- (NSString*)bundleIdentifier {
    return _identifier;
}
- (NSString*)bundlePath {
    return @"/Plug-ins/Gr\u00fcn.bundle";
}
@end

namespace {

/// What the platform is to answer, and what it was asked.
struct Platform {
    NSArray* bundles = nil;
    id found = nil;
    id main = nil;
    std::vector<std::string> calls;
};

Platform* platform = nullptr;

NSArray* allBundles(id, SEL) {
    platform->calls.push_back("all");
    return platform->bundles;
}

id bundleWithIdentifier(id, SEL, NSString* identifier) {
    platform->calls.push_back(std::string("find ") + [identifier UTF8String]);
    return platform->found;
}

id mainBundle(id, SEL) {
    platform->calls.push_back("main");
    return platform->main;
}

}  // namespace

namespace tav::ula {
namespace {

/// Puts a class method in place of another, and back.
class Replaced : public test::ReplacedMethod {
public:
    Replaced(SEL selector, IMP replacement)
        : ReplacedMethod(class_getClassMethod([NSBundle class], selector), replacement) {}
};

class ModuleSearch : public testing::Test {
protected:
    ModuleSearch() {
        platform = &_platform;
        _platform.main = bundle(@"org.example.main");
    }
    ~ModuleSearch() override { platform = nullptr; }

    static id bundle(NSString* identifier) {
        return [[[ModuleTestBundle alloc] initWithIdentifier:identifier] autorelease];
    }

    const ScopedARPool _pool;
    Platform _platform;

private:
    Replaced _all { @selector(allBundles), reinterpret_cast<IMP>(allBundles) };
    Replaced _find {
        @selector(bundleWithIdentifier:), reinterpret_cast<IMP>(bundleWithIdentifier)
    };
    Replaced _main { @selector(mainBundle), reinterpret_cast<IMP>(mainBundle) };
};

using Calls = std::vector<std::string>;

TEST_F(ModuleSearch, NullIsTheMainBundleUnderItsIdentifier) {
    const ModuleMac module(nullptr);
    EXPECT_EQ(module.getBundle(), _platform.main);
    EXPECT_EQ(module.getID(), "org.example.main");
    EXPECT_EQ(_platform.calls, Calls{"main"});
}

TEST_F(ModuleSearch, BundleIsWrappedAsItIs) {
    id const given = bundle(@"org.example.Gr\u00fcn");
    const NSUInteger count = [given retainCount];
    {
        const ModuleMac module(static_cast<void*>(given));
        EXPECT_EQ(module.getBundle(), given);
        EXPECT_EQ(module.getID(), "org.example.Gr\u00fcn");
        EXPECT_EQ(module.getPath(), "/Plug-ins/Gr\u00fcn.bundle");
        EXPECT_EQ([given retainCount], count);
    }
    EXPECT_EQ([given retainCount], count);
    EXPECT_TRUE(_platform.calls.empty());
}

TEST_F(ModuleSearch, BundleWithoutAnIdentifierHasAnEmptyOne) {
    EXPECT_EQ(ModuleMac(static_cast<void*>(bundle(nil))).getID(), "");
}

TEST_F(ModuleSearch, OfTwoListedBundlesWithOneIdentifierTheEarlierIsTaken) {
    _platform.bundles = @[ bundle(@"a"), bundle(@"b"), bundle(@"b"), bundle(@"c") ];
    const ModuleMac module(FastString("b"));
    EXPECT_EQ(module.getBundle(), [_platform.bundles objectAtIndex:1]);
    EXPECT_EQ(module.getID(), "b");
    EXPECT_EQ(_platform.calls, Calls{"all"});
}

TEST_F(ModuleSearch, IdentifiersAreComparedLetterByLetter) {
    _platform.bundles = @[ bundle(nil), bundle(@"org.example.a"), bundle(@"org.example.A") ];
    EXPECT_EQ(ModuleMac(FastString("org.example.A")).getBundle(),
              [_platform.bundles objectAtIndex:2]);
    EXPECT_EQ(ModuleMac(FastString("org.example")).getBundle(), _platform.main);
}

TEST_F(ModuleSearch, WhatIsNotListedIsAskedFor) {
    _platform.bundles = @[ bundle(@"a") ];
    _platform.found = bundle(@"b");
    const ModuleMac module(FastString("b"));
    EXPECT_EQ(module.getBundle(), _platform.found);
    EXPECT_EQ(_platform.calls, (Calls{"all", "find b"}));
}

TEST_F(ModuleSearch, UnknownIdentifierIsKeptForTheMainBundle) {
    _platform.bundles = @[ bundle(@"a") ];
    const ModuleMac module(FastString("unknown"));
    EXPECT_EQ(module.getBundle(), _platform.main);
    EXPECT_EQ(module.getID(), "unknown");
    EXPECT_EQ(_platform.calls, (Calls{"all", "find unknown", "main"}));
}

TEST_F(ModuleSearch, EmptyIdentifierIsSearchedForAndIsTheMainBundle) {
    _platform.bundles = @[ bundle(@"a"), bundle(nil) ];
    const ModuleMac module{FastString()};
    EXPECT_EQ(module.getBundle(), _platform.main);
    EXPECT_EQ(module.getID(), "");
    _platform.bundles = @[ bundle(@"") ];
    EXPECT_EQ(ModuleMac{FastString()}.getBundle(), [_platform.bundles objectAtIndex:0]);
}

TEST_F(ModuleSearch, WithoutAnyListTheBundleIsStillAskedFor) {
    EXPECT_EQ(ModuleMac(FastString("b")).getBundle(), _platform.main);
    _platform.found = bundle(@"b");
    EXPECT_EQ(ModuleMac(FastString("b")).getBundle(), _platform.found);
}

TEST(Module, RealBundlesAreFoundByTheirIdentifier) {
    const ScopedARPool pool;
    const test::TemporaryFolder folder;
    const std::string path = folder / "Plug.bundle";
    std::filesystem::create_directories(path + "/Contents/Resources");
    test::writeFile(path + "/Contents/Info.plist",
                    "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CFBundleIdentifier"
                    "</key><string>org.example.plug</string></dict></plist>");
    // Listed by the platform as long as it lives.
    NSBundle* const bundle = [NSBundle bundleWithPath:[NSString stringWithUTF8String:path.c_str()]];
    const ModuleMac module(FastString("org.example.plug"));
    EXPECT_EQ(module.getBundle(), bundle);
    EXPECT_EQ(module.getPath(), path.c_str());
    EXPECT_EQ(ModuleMac(static_cast<void*>(bundle)).getID(), "org.example.plug");
}

TEST(Module, TextsHoldAsModulesGo) {
    FastString id;
    {
        const std::unique_ptr<const Module> module =
            std::make_unique<ModuleMac>(FastString("some identifier that is long enough"));
        id = static_cast<const ModuleMac&>(*module).getID();
        EXPECT_FALSE(module->getPath().empty());
    }
    EXPECT_EQ(id, "some identifier that is long enough");
}

}  // namespace
}  // namespace tav::ula
